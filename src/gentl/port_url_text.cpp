#include "gentl/port_url_text.h"

#include "gentl/api/gentl.h"

#include <algorithm>
#include <exception>
#include <string_view>
#include <vector>

namespace koro::internal
{

namespace
{

// Every delimiter ends a token, and the rest after the last one is a token too: "a;b;" has three.
std::vector<std::string> Split(std::string_view text, char delimiter)
{
    std::vector<std::string> tokens;
    std::size_t begin = 0;
    for (std::size_t end; (end = text.find(delimiter, begin)) != std::string_view::npos; begin = end + 1)
        tokens.emplace_back(text.substr(begin, end - begin));
    tokens.emplace_back(text.substr(begin));
    return tokens;
}

// Location, address and size, or nothing.
std::vector<std::string> Sections(const std::string& url)
{
    auto sections = Split(url, ';');
    if (sections.size() != 3) sections.clear();
    return sections;
}

// Accepts leading blanks, a sign and 0x, and ignores any text after the digits.
std::optional<std::uint64_t> ParseHexadecimal(const std::string& text)
{
    try
    {
        return std::stoull(text, nullptr, 16);
    }
    catch (const std::exception&)
    {
        return std::nullopt;
    }
}

char ToLower(char letter)
{
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

} // namespace

std::optional<std::int32_t> ParseURLScheme(const std::string& url)
{
    const auto tokens = Split(url, ':');
    if (tokens.size() < 2) return std::nullopt;
    std::string scheme = tokens[0];
    std::transform(scheme.begin(), scheme.end(), scheme.begin(), ToLower);
    if (scheme == "local") return GenTL::URL_SCHEME_LOCAL;
    if (scheme == "http") return GenTL::URL_SCHEME_HTTP;
    if (scheme == "file") return GenTL::URL_SCHEME_FILE;
    return std::nullopt;
}

std::optional<std::string> ParseURLFileName(const std::string& url)
{
    const auto sections = Sections(url);
    if (sections.empty()) return std::nullopt;
    const auto& location = sections[0];
    const auto colon = location.find(':');
    const auto begin = location.find_first_not_of('/', colon == std::string::npos ? 0 : colon + 1);
    return begin == std::string::npos ? std::string() : location.substr(begin);
}

std::optional<std::uint64_t> ParseURLRegisterAddress(const std::string& url)
{
    const auto sections = Sections(url);
    return sections.empty() ? std::nullopt : ParseHexadecimal(sections[1]);
}

std::optional<std::uint64_t> ParseURLFileSize(const std::string& url)
{
    const auto sections = Sections(url);
    return sections.empty() ? std::nullopt : ParseHexadecimal(Split(sections[2], '?')[0]);
}

std::string URLSchemeName(std::int32_t scheme)
{
    switch (scheme)
    {
    case GenTL::URL_SCHEME_LOCAL:
        return "Local";
    case GenTL::URL_SCHEME_HTTP:
        return "HTTP";
    case GenTL::URL_SCHEME_FILE:
        return "File";
    default:
        return scheme >= GenTL::URL_SCHEME_CUSTOM_ID ? "Custom" : "";
    }
}

} // namespace koro::internal
