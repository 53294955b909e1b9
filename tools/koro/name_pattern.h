// NamePattern: a pattern over names with *, ? and [...]. A value. Any thread.
#pragma once

#include <string>
#include <vector>

namespace koro::tool
{

class NamePattern
{
public:
    explicit NamePattern(const std::string& pattern);

    // In a time that grows with the product of both lengths at most, since names of cameras may be of any length.
    bool Matches(const std::string& name) const;

private:
    // What one character of a name has to be, or "*" for any number of characters.
    static bool MatchesOne(const std::string& piece, char c);

    std::vector<std::string> pieces;
};

} // namespace koro::tool
