// Texts in several languages, and untrusted texts in messages.
#pragma once

#include <Base/GCNamespace.h>
#include <string>
#include <string_view>
#include <vector>

namespace GENAPI_NAMESPACE::runtime
{

struct LanguageText
{
    std::string language; // ISO 639-1; empty: for all
    std::string text;

    bool operator==(const LanguageText&) const = default;
};

// The preferred language, else "en", else without language, else the first; the first of equals. Null when there are
// none.
const LanguageText* ChooseText(const std::vector<LanguageText>& texts, std::string_view preferredLanguage);

// Without control characters, and of bounded length.
std::string Shown(std::string_view text, size_t maxSize = 200);
std::string ShownPath(std::string_view path);

} // namespace GENAPI_NAMESPACE::runtime
