// Recorded answers as files: a folder with descriptions, and beside each what the reference runtime answered, large
// ones packed. KORO_REFERENCE_DATA names the folder.
#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

namespace koro::test
{

inline std::string ContentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

inline std::string Unpacked(const std::filesystem::path& path)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(("xz -dc '" + path.string() + "'").c_str(), "r"), pclose);
    std::string content;
    char part[65536];
    for (std::size_t size; pipe && (size = fread(part, 1, sizeof part, pipe.get())) > 0;)
        content.append(part, size);
    return content;
}

// The answers beside a description, of the kind that the suffix names: ".nodes", ".persist", ...
inline std::string RecordedAnswer(std::filesystem::path description, const std::string& suffix)
{
    const auto plain = description.replace_extension(suffix);
    return std::filesystem::exists(plain) ? ContentOf(plain) : Unpacked(plain.string() + ".xz");
}

} // namespace koro::test
