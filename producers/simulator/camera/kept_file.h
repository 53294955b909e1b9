// KeptFile: the content of a camera's file, beside the memory that processes share.
//
// A plain value; without a path it keeps nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace koro::simulator
{

class KeptFile
{
public:
    KeptFile() = default;
    explicit KeptFile(std::filesystem::path keptAt) : path(std::move(keptAt)) {}

    bool Keeps() const noexcept { return !path.empty(); }
    // Bytes; 0 when nothing was saved yet.
    std::uint64_t Size() const noexcept;
    // Empty when nothing was saved yet; nothing for what cannot be read or is longer.
    std::optional<std::vector<std::byte>> Load(std::uint64_t maxBytes) const;
    // As a whole or not at all; whether it went well. What replaces an older content is on the disk afterwards.
    bool Save(std::span<const std::byte> content) const;

private:
    std::filesystem::path path;
};

} // namespace koro::simulator
