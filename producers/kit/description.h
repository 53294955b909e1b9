// Description: a GenICam description file, embedded at build time from descriptions/*.xml.
#pragma once

#include <array>
#include <string_view>

namespace koro::simulator
{

struct Description
{
    std::string_view fileName;
    std::string_view text; // XML, or an archive of it where the name ends in .zip
    std::array<unsigned char, 20> sha1;
};

// All have schema version 1.1.0 and file version 1.0.0.
extern const Description systemDescription;
extern const Description interfaceDescription;
extern const Description deviceDescription;
extern const Description streamDescription;

// Of cameras, by transport; the same zipped.
extern const Description gevDescription;
extern const Description gevArchiveDescription;
extern const Description u3vDescription;
extern const Description u3vArchiveDescription;
extern const Description clDescription;
extern const Description clArchiveDescription;
extern const Description plainDescription;
extern const Description plainArchiveDescription;
extern const Description iidcDescription;
extern const Description iidcArchiveDescription;

} // namespace koro::simulator
