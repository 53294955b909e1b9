// NodeMapDescription: the source of a node map's description: bytes from a port, or a file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace koro::internal
{

struct NodeMapDescription
{
    bool isZipped = false;            // `data` holds an archive
    std::vector<std::uint8_t> data{}; // text or archive, unchanged
    std::string filePath{};           // of a plain text file; takes precedence over `data` when it is not empty
};

} // namespace koro::internal
