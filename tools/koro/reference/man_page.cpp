#include "tools/koro/reference/man_page.h"

#include "tools/koro/reference/command_tree.h"

#include <cctype>

namespace koro::tool
{

namespace
{

// A backslash and a hyphen mean something to man, and so do a dot and an apostrophe at the start of a line.
std::string Escaped(const std::string& text)
{
    std::string escaped;
    bool isLineStart = true;
    for (const char character : text)
    {
        if (isLineStart && (character == '.' || character == '\'')) escaped += "\\&";
        if (character == '\\')
            escaped += "\\e";
        else if (character == '-')
            escaped += "\\-";
        else
            escaped += character;
        isLineStart = character == '\n';
    }
    return escaped;
}

std::string Upper(std::string text)
{
    for (char& character : text)
        character = static_cast<char>(std::toupper(static_cast<unsigned char>(character)));
    return text;
}

std::string Bold(const std::string& text)
{
    return "\\fB" + Escaped(text) + "\\fR";
}

std::string Section(const std::string& name, const std::string& text)
{
    return text.empty() ? "" : ".SH " + Escaped(name) + "\n" + text;
}

std::string Entry(const std::string& term, const std::string& text)
{
    return ".TP\n" + term + "\n" + Escaped(text) + "\n";
}

std::string PositionalInSynopsis(const CLI::Option& positional)
{
    std::string text = "\\fI" + Escaped(positional.get_name(true)) + "\\fR";
    if (positional.get_items_expected_max() > 1) text += "...";
    return positional.get_required() ? text : "[" + text + "]";
}

std::string Synopsis(const CLI::App& command)
{
    std::string line = Bold(PathOf(command)) + " [\\fIoptions\\fR]";
    for (const CLI::Option* positional : Positionals(command))
        line += " " + PositionalInSynopsis(*positional);
    if (command.get_require_subcommand_min() > 0) line += " \\fIcommand\\fR ...";
    return line + "\n";
}

// "--frames UINT:1 to 10", with what else CLI11 shows behind the name.
std::string OptionTerm(const CLI::Option& option)
{
    std::string term;
    for (const std::string& spelling : SpellingsOf(option))
        term += (term.empty() ? "" : ", ") + Bold(spelling);
    if (!TakesValue(option)) return term;
    term += " \\fI" + Escaped(option.get_type_name()) + "\\fR";
    if (!option.get_default_str().empty()) term += " (default: " + Escaped(option.get_default_str()) + ")";
    return option.get_required() ? term + " (required)" : term;
}

std::string Arguments(const CLI::App& command)
{
    std::string text;
    for (const CLI::Option* positional : Positionals(command))
        text += Entry("\\fI" + Escaped(positional->get_name(true)) + "\\fR", positional->get_description());
    return text;
}

std::string Options(const CLI::App& command)
{
    std::string text;
    for (const CLI::Option* option : NamedOptions(command))
        text += Entry(OptionTerm(*option), option->get_description());
    return text;
}

std::string Commands(const CLI::App& command)
{
    std::string text;
    for (const CLI::App* part : VisibleCommands(command))
    {
        const bool hasPage = !command.get_parent();
        const std::string term = hasPage ? Bold(ManPageName(*part)) + "(1)" : Bold(PathOf(*part));
        text += Entry(term, part->get_description() + ".");
    }
    return text;
}

// The subcommands of a command are sections of its page.
std::string Parts(const CLI::App& command)
{
    std::string text;
    if (!command.get_parent()) return text;
    for (const CLI::App* part : VisibleCommands(command))
    {
        text += Section(Upper(PathOf(*part)), Synopsis(*part) + ".PP\n" + Escaped(part->get_description()) + ".\n");
        text += Arguments(*part) + Options(*part);
    }
    return text;
}

const CLI::App& Top(const CLI::App& command)
{
    return command.get_parent() ? Top(*command.get_parent()) : command;
}

} // namespace

std::string ManPageName(const CLI::App& command)
{
    std::string name = PathOf(command);
    for (char& character : name)
        if (character == ' ') character = '-';
    return name;
}

std::string ManPage(const CLI::App& command)
{
    const std::string name = ManPageName(command);
    std::string summary = command.get_description();
    if (!summary.empty() && summary.back() == '.') summary.pop_back();
    std::string page = ".TH " + Escaped(Upper(name)) + " 1 \"\" \"koro " KORO_TOOL_VERSION "\" \"User Commands\"\n";
    page += Section("NAME", Escaped(name) + " \\- " + Escaped(summary) + "\n");
    page += Section("SYNOPSIS", Synopsis(command));
    page += Section("ARGUMENTS", Arguments(command));
    page += Section("COMMANDS", Commands(command));
    page += Section("OPTIONS", Options(command));
    page += Parts(command);
    page += Section("ENVIRONMENT AND EXIT STATUS", Escaped(Top(command).get_footer()) + "\n");
    if (command.get_parent()) page += Section("SEE ALSO", Bold(ManPageName(Top(command))) + "(1)\n");
    return page;
}

} // namespace koro::tool
