// FeatureMemory: registers without meaning, so that any description can be explored: every address can be read and
// written and keeps what was written; the rest is 0. The description itself lies high above, and above it a byte that
// makes all of them 0 again.
//
// Any thread.
#pragma once

#include "producers/kit/register_space.h"
#include "producers/simulator/kit.h"

#include <array>
#include <mutex>
#include <string>
#include <unordered_map>

namespace koro::simulator
{

class FeatureMemory final : public RegisterSpace
{
public:
    static constexpr std::uint64_t descriptionAddress = 0x7000'0000'0000'0000;

    static constexpr std::uint64_t resetAddress = 0x7800'0000'0000'0000;

    explicit FeatureMemory(std::string descriptionText) : description(std::move(descriptionText)) {}

    std::size_t DescriptionBytes() const noexcept { return description.size(); }

    void Read(std::uint64_t address, std::span<std::byte> out) const override;
    // GC_ERR_ACCESS_DENIED on the description, GC_ERR_RESOURCE_EXHAUSTED when too much was written. A write
    // from `resetAddress` on forgets everything that was written before, and is not kept itself.
    void Write(std::uint64_t address, std::span<const std::byte> in) override;

private:
    static constexpr std::size_t pageBytes = 4096;
    using Page = std::array<std::byte, pageBytes>;

    bool MeetsDescription(std::uint64_t address, std::size_t bytes) const noexcept;
    void ReserveLocked(std::uint64_t address, std::size_t bytes);

    const std::string description;
    mutable std::mutex mutex;
    std::unordered_map<std::uint64_t, Page> pages; // by address / pageBytes; guarded by mutex
};

} // namespace koro::simulator
