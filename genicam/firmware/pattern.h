// Pattern: a Perl-compatible regular expression from an update file, matched with limits on time and memory.
//
// A value, used by one thread. Patterns and texts are bytes; it is enough that a part of a text matches.
#pragma once

#include <Base/GCNamespace.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct pcre2_real_code_8;

namespace GENAPI_NAMESPACE::runtime
{

class Pattern
{
public:
    // RuntimeException, with the place, when the pattern does not compile.
    explicit Pattern(std::string_view text);

    // Both raise RuntimeException when the search would take too long or the text is too long.
    bool Matches(std::string_view text) const;
    // What the first group holds, without groups the whole match; nothing when there is no match or the group has no
    // part in it.
    std::optional<std::string> Extract(std::string_view text) const;

private:
    struct Free
    {
        void operator()(pcre2_real_code_8* code) const;
    };
    struct Range
    {
        size_t begin;
        size_t end;
    };
    std::optional<Range> Search(std::string_view text) const;

    std::string pattern;
    std::unique_ptr<pcre2_real_code_8, Free> code;
};

} // namespace GENAPI_NAMESPACE::runtime
