#define PCRE2_CODE_UNIT_WIDTH 8
#include "firmware/pattern.h"

#include "firmware/bounds.h"
#include "firmware/texts.h"

#include <Base/GCException.h>
#include <pcre2.h>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

struct FreeContext
{
    void operator()(pcre2_match_context* context) const { pcre2_match_context_free(context); }
};

struct FreeData
{
    void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
};

std::string TextOfError(int error)
{
    PCRE2_UCHAR text[256] = {};
    pcre2_get_error_message(error, text, sizeof text);
    return reinterpret_cast<const char*>(text);
}

PCRE2_SPTR Units(std::string_view text)
{
    return reinterpret_cast<PCRE2_SPTR>(text.empty() ? "" : text.data());
}

} // namespace

void Pattern::Free::operator()(pcre2_real_code_8* code) const
{
    pcre2_code_free(code);
}

Pattern::Pattern(std::string_view text) : pattern(text)
{
    if (pattern.size() > maxPatternSize)
    {
        throw RUNTIME_EXCEPTION(
            "The pattern '%s' has %zu bytes; at most %zu are taken", Shown(pattern).c_str(), pattern.size(),
            maxPatternSize);
    }
    int error = 0;
    PCRE2_SIZE place = 0;
    code.reset(pcre2_compile(Units(pattern), pattern.size(), 0, &error, &place, nullptr));
    if (!code)
    {
        throw RUNTIME_EXCEPTION(
            "The pattern '%s' is broken at byte %zu: %s", Shown(pattern).c_str(), size_t(place),
            TextOfError(error).c_str());
    }
}

bool Pattern::Matches(std::string_view text) const
{
    return Search(text).has_value();
}

std::optional<std::string> Pattern::Extract(std::string_view text) const
{
    const auto range = Search(text);
    if (!range || range->begin == PCRE2_UNSET) return std::nullopt;
    return std::string(text.substr(range->begin, range->end - range->begin));
}

// The range of the first group, or of the whole match without groups.
std::optional<Pattern::Range> Pattern::Search(std::string_view text) const
{
    if (text.size() > maxMatchedTextSize)
    {
        throw RUNTIME_EXCEPTION(
            "A text of %zu bytes is matched with the pattern '%s'; at most %zu are taken", text.size(),
            Shown(pattern).c_str(), maxMatchedTextSize);
    }
    const std::unique_ptr<pcre2_match_context, FreeContext> limits(pcre2_match_context_create(nullptr));
    const std::unique_ptr<pcre2_match_data, FreeData> data(pcre2_match_data_create_from_pattern(code.get(), nullptr));
    if (!limits || !data) throw BAD_ALLOC_EXCEPTION("Not enough memory to match a pattern");
    // The steps are counted separately for each position where a match may begin.
    const uint32_t steps = patternSteps / static_cast<uint32_t>(text.size() + 1);
    pcre2_set_match_limit(limits.get(), steps);
    pcre2_set_depth_limit(limits.get(), steps);
    pcre2_set_heap_limit(limits.get(), patternMemory_KiB);

    const int result = pcre2_match(code.get(), Units(text), text.size(), 0, 0, data.get(), limits.get());
    if (result == PCRE2_ERROR_NOMATCH) return std::nullopt;
    if (result < 0)
    {
        throw RUNTIME_EXCEPTION(
            "The pattern '%s' cannot be matched: %s", Shown(pattern).c_str(), TextOfError(result).c_str());
    }
    uint32_t groups = 0;
    pcre2_pattern_info(code.get(), PCRE2_INFO_CAPTURECOUNT, &groups);
    const PCRE2_SIZE* const places = pcre2_get_ovector_pointer(data.get()) + (groups > 0 ? 2 : 0);
    return Range{places[0], places[1]};
}

} // namespace GENAPI_NAMESPACE::runtime
