// Description: a GenICam description file, embedded at build time; cmake/EmbedDescription.cmake makes one of a file.
//
// The schema version is 1.1.0 and the version of the file 1.0.0.
#pragma once

#include <array>
#include <string_view>

namespace koro::kit
{

struct Description
{
    std::string_view fileName;
    std::string_view text; // XML, or an archive of it where the name ends in .zip
    std::array<unsigned char, 20> sha1;
};

} // namespace koro::kit
