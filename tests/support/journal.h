// Reads a scripted producer's journal.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace koro::test
{

// Returns the function's name in a line such as "TLClose(system)".
inline std::string FunctionOf(const std::string& line)
{
    return line.substr(0, line.find('('));
}

// Returns the lines of the named functions, in their order: a promise about some calls says nothing about others.
inline std::vector<std::string> CallsOf(
    const std::vector<std::string>& journal, const std::vector<std::string>& functions)
{
    std::vector<std::string> calls;
    std::copy_if(journal.begin(), journal.end(), std::back_inserter(calls), [&](const std::string& line) {
        return std::find(functions.begin(), functions.end(), FunctionOf(line)) != functions.end();
    });
    return calls;
}

} // namespace koro::test
