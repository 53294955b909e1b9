#include "tools/koro/file_prefix.h"

#include <algorithm>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <string_view>
#include <tuple>

namespace koro::tool
{

namespace
{

// One device may be listed twice, by a producer that lies twice in the path.
bool IsSameCamera(const CameraChoice& one, const CameraChoice& other)
{
    const auto identity = [](const CameraChoice& choice) {
        return std::tie(choice.interfaceRecord->id, choice.camera->id, choice.camera->serialNumber);
    };
    return identity(one) == identity(other);
}

std::string SerialNumberOf(const CameraChoice& camera)
{
    return camera.camera->serialNumber.value_or("");
}

std::string IDOf(const CameraChoice& camera)
{
    return camera.camera->id;
}

std::string FullIDOf(const CameraChoice& camera)
{
    return camera.interfaceRecord->id + ":" + camera.camera->id;
}

// FNV-1a: the same on every machine and in every version.
std::string HashOf(const std::string& text)
{
    uint32_t hash = 2166136261U;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    char digits[16];
    std::snprintf(digits, sizeof digits, "%08" PRIx32, hash);
    return digits;
}

} // namespace

std::string FilePrefix(const CameraChoice& camera, const std::vector<CameraChoice>& listed)
{
    for (const auto name : {SerialNumberOf, IDOf, FullIDOf})
    {
        if (name(camera).empty()) continue;
        std::string prefix = FileNamePrefix(name(camera));
        const bool isShared = std::any_of(listed.begin(), listed.end(), [&](const CameraChoice& other) {
            return !IsSameCamera(camera, other) && FileNamePrefix(name(other)) == prefix;
        });
        if (!isShared) return prefix;
    }
    // The names differ only in what a file name cannot hold.
    return FileNamePrefix(IDOf(camera)) + "-" + HashOf(FullIDOf(camera));
}

std::string FileNamePrefix(const std::string& text)
{
    constexpr std::string_view allowed = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789._-";
    std::string name = text.substr(0, 64);
    std::replace_if(
        name.begin(), name.end(), [&](char c) { return allowed.find(c) == std::string_view::npos; }, '_');
    if (name.empty() || name.front() == '.') name.insert(0, "camera");
    return name;
}

} // namespace koro::tool
