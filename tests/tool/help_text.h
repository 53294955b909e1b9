// What the help of the tool says, line by line.
#pragma once

#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace koro::test
{

inline std::vector<std::string> SplitLines(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// The words at the start of the indented lines under a heading of a help text.
inline std::vector<std::string> FirstWordsUnder(const std::string& help, const std::string& heading)
{
    std::vector<std::string> words;
    bool isUnder = false;
    for (const std::string& line : SplitLines(help))
    {
        std::smatch match;
        if (!line.empty() && line[0] != ' ')
            isUnder = line == heading;
        else if (isUnder && std::regex_search(line, match, std::regex("^  ([^ ]+)")))
            words.push_back(match[1]);
    }
    return words;
}

} // namespace koro::test
