#include "firmware/texts.h"

#include <algorithm>

namespace GENAPI_NAMESPACE::runtime
{

const LanguageText* ChooseText(const std::vector<LanguageText>& texts, std::string_view preferredLanguage)
{
    const std::string_view preferred = preferredLanguage.empty() ? "en" : preferredLanguage;
    for (const std::string_view language : {preferred, std::string_view("en"), std::string_view()})
    {
        const auto found = std::find_if(
            texts.begin(), texts.end(), [language](const LanguageText& text) { return text.language == language; });
        if (found != texts.end()) return &*found;
    }
    return texts.empty() ? nullptr : &texts.front();
}

std::string Shown(std::string_view text, size_t maxSize)
{
    std::string shown(text.substr(0, maxSize));
    for (char& letter : shown)
    {
        if (static_cast<unsigned char>(letter) < ' ' || letter == 0x7f) letter = '?';
    }
    return shown;
}

std::string ShownPath(std::string_view path)
{
    return Shown(path, 1000);
}

} // namespace GENAPI_NAMESPACE::runtime
