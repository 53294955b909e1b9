// Options that take one of some words. Any other word is a wrong command line, and help shows the words.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <map>
#include <string>

namespace koro::tool
{

// `value` becomes what the word stands for. `filter` is applied to words before they are compared.
template <typename Value>
CLI::Option* AddChoice(
    CLI::App& command, const std::string& option, Value& value, const std::map<std::string, Value>& choices,
    const std::string& help, const std::function<std::string(std::string)>& filter = {})
{
    // The transformers of the command line would take and show the numbers behind the words too.
    const auto choose = [&value, choices](const std::string& word) { value = choices.at(word); };
    return command.add_option_function<std::string>(option, choose, help)->transform(CLI::IsMember(choices, filter));
}

} // namespace koro::tool
