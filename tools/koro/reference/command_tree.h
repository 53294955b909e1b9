// What manual pages and completion ask of the definitions of a command line: the parts that users see.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace koro::tool
{

// "koro settings save"
inline std::string PathOf(const CLI::App& command)
{
    return command.get_parent() ? PathOf(*command.get_parent()) + " " + command.get_name() : command.get_name();
}

// In the order of their definition, without hidden ones.
inline std::vector<const CLI::App*> VisibleCommands(const CLI::App& command)
{
    return command.get_subcommands([](const CLI::App* part) { return !part->get_group().empty(); });
}

inline std::vector<const CLI::Option*> Positionals(const CLI::App& command)
{
    return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

inline std::vector<const CLI::Option*> NamedOptions(const CLI::App& command)
{
    return command.get_options(
        [](const CLI::Option* option) { return option->nonpositional() && !option->get_group().empty(); });
}

inline bool TakesValue(const CLI::Option& option)
{
    return option.get_items_expected_max() > 0;
}

// {"-h", "--help"}
inline std::vector<std::string> SpellingsOf(const CLI::Option& option)
{
    std::vector<std::string> spellings;
    for (const std::string& name : option.get_snames())
        spellings.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        spellings.push_back("--" + name);
    return spellings;
}

// The words of an option that takes one of a list, which CLI11 shows as "TEXT:{png,raw}"; empty for others.
inline std::vector<std::string> ChoicesOf(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    const auto begin = type.find('{');
    const auto end = type.find('}', begin);
    if (begin == std::string::npos || end == std::string::npos) return {};
    return CLI::detail::split(type.substr(begin + 1, end - begin - 1), ',');
}

} // namespace koro::tool
