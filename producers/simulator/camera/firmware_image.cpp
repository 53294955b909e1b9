#include "producers/simulator/camera/firmware_image.h"

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <zlib.h>

namespace koro::simulator
{
namespace
{

constexpr std::string_view magic = "KOROFWIM";
constexpr std::size_t lengthPlace = 8;
constexpr std::size_t checkPlace = 12;
constexpr std::size_t headBytes = 16;
constexpr std::size_t maxVersionLength = 63; // with its terminator it fills a register of the camera

std::uint32_t NumberAt(std::span<const std::byte> bytes, std::size_t place) noexcept
{
    std::uint32_t number = 0;
    for (std::size_t index = 4; index-- > 0;)
        number = number << 8 | static_cast<std::uint32_t>(bytes[place + index]);
    return number;
}

bool IsPrintable(char letter) noexcept
{
    return letter >= ' ' && letter <= '~';
}

} // namespace

std::optional<std::string> FirmwareVersionIn(std::span<const std::byte> image)
{
    if (image.size() < headBytes) return std::nullopt;
    const std::string_view text(reinterpret_cast<const char*>(image.data()), image.size());
    const std::string_view content = text.substr(headBytes);
    if (text.substr(0, magic.size()) != magic || NumberAt(image, lengthPlace) != content.size()) return std::nullopt;
    const auto check = crc32_z(0, reinterpret_cast<const Bytef*>(content.data()), content.size());
    if (check != NumberAt(image, checkPlace)) return std::nullopt;
    const std::string_view version = content.substr(0, content.find('\n'));
    const bool isOne = !version.empty() && version.size() <= maxVersionLength && version.size() < content.size() &&
                       std::all_of(version.begin(), version.end(), IsPrintable);
    if (!isOne) return std::nullopt;
    return std::string(version);
}

} // namespace koro::simulator
