// Parsers for the text of a port's URL, for producers that do not answer queries about its parts:
//
//     local:///name.xml;F0F00000;3BF?SchemaVersion=1.0.0      scheme : name ; register address ; size ? query
//
// Address and size are hexadecimal, with or without 0x. Each parser reads only its own part and returns empty if that
// part cannot be read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace koro::internal
{

// URL_SCHEME_LOCAL, URL_SCHEME_HTTP or URL_SCHEME_FILE; upper and lower case are equal.
std::optional<std::int32_t> ParseURLScheme(const std::string& url);
// Without scheme and leading slashes; may be an empty text.
std::optional<std::string> ParseURLFileName(const std::string& url);
std::optional<std::uint64_t> ParseURLRegisterAddress(const std::string& url);
std::optional<std::uint64_t> ParseURLFileSize(const std::string& url); // bytes

// "Local", "HTTP", "File", "Custom"; empty for a number without a name.
std::string URLSchemeName(std::int32_t scheme);

} // namespace koro::internal
