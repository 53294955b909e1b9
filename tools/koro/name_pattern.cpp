#include "tools/koro/name_pattern.h"

#include <fnmatch.h>

namespace koro::tool
{

namespace
{

// Of the bracket that begins at `start`, the place behind its end; `start + 1` for one that has no end.
size_t EndOfBracket(const std::string& pattern, size_t start)
{
    size_t first = start + 1;
    if (first < pattern.size() && (pattern[first] == '!' || pattern[first] == '^')) ++first;
    const size_t end = pattern.find(']', first + 1); // a "]" in front is a member
    return end == pattern.npos ? start + 1 : end + 1;
}

} // namespace

NamePattern::NamePattern(const std::string& pattern)
{
    for (size_t start = 0, end = 0; start < pattern.size(); start = end)
    {
        end = pattern[start] == '[' ? EndOfBracket(pattern, start) : start + 1;
        pieces.push_back(pattern.substr(start, end - start));
    }
}

bool NamePattern::Matches(const std::string& name) const
{
    size_t piece = 0;
    size_t at = 0;
    // Behind the last star, and up to where that star reaches. An earlier one never has to give way again.
    size_t afterStar = 0;
    size_t starEnd = 0;
    bool hasStar = false;
    while (at < name.size())
    {
        if (piece < pieces.size() && pieces[piece] == "*")
        {
            hasStar = true;
            afterStar = ++piece;
            starEnd = at;
        }
        else if (piece < pieces.size() && MatchesOne(pieces[piece], name[at]))
        {
            ++piece;
            ++at;
        }
        else if (hasStar)
        {
            piece = afterStar;
            at = ++starEnd;
        }
        else
        {
            return false;
        }
    }
    while (piece < pieces.size() && pieces[piece] == "*")
        ++piece;
    return piece == pieces.size();
}

bool NamePattern::MatchesOne(const std::string& piece, char c)
{
    if (piece == "?") return true;
    if (piece.size() == 1) return piece.front() == c;
    const char text[] = {c, '\0'};
    return c != '\0' && fnmatch(piece.c_str(), text, FNM_NOESCAPE) == 0;
}

} // namespace koro::tool
