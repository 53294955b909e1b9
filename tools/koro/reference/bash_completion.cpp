#include "tools/koro/reference/bash_completion.h"

#include "tools/koro/reference/command_tree.h"

namespace koro::tool
{

namespace
{

// Single quotes; the command line has no word with one inside.
std::string Quoted(const std::string& text)
{
    return "'" + text + "'";
}

std::string Joined(const std::vector<std::string>& words)
{
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : " ") + word;
    return text;
}

template <class Visit>
void ForEachCommand(const CLI::App& command, Visit&& visit)
{
    visit(command);
    for (const CLI::App* part : VisibleCommands(command))
        ForEachCommand(*part, visit);
}

// Lines of a `case` that knows which words are commands.
std::string Steps(const CLI::App& tool)
{
    std::string lines;
    ForEachCommand(tool, [&](const CLI::App& command) {
        if (command.get_parent()) lines += "        " + Quoted(PathOf(command)) + ") path+=\" $word\" ;;\n";
    });
    return lines;
}

// Lines of a `case` for what follows an option that takes a value.
std::string Values(const CLI::App& tool)
{
    std::string lines;
    ForEachCommand(tool, [&](const CLI::App& command) {
        for (const CLI::Option* option : NamedOptions(command))
        {
            if (!TakesValue(*option)) continue;
            std::string patterns;
            for (const std::string& spelling : SpellingsOf(*option))
                patterns += (patterns.empty() ? "" : "|") + Quoted(PathOf(command) + " " + spelling);
            lines += "    " + patterns + ") kind=value words=" + Quoted(Joined(ChoicesOf(*option))) + " ;;\n";
        }
    });
    return lines;
}

// Lines of a `case` for the next word of a command.
std::string Words(const CLI::App& tool)
{
    std::string lines;
    ForEachCommand(tool, [&](const CLI::App& command) {
        std::vector<std::string> parts;
        for (const CLI::App* part : VisibleCommands(command))
            parts.push_back(part->get_name());
        std::vector<std::string> options;
        for (const CLI::Option* option : NamedOptions(command))
            for (const std::string& spelling : SpellingsOf(*option))
                options.push_back(spelling);
        lines += "    " + Quoted(PathOf(command)) + ") commands=" + Quoted(Joined(parts)) +
                 " options=" + Quoted(Joined(options)) + " ;;\n";
    });
    return lines;
}

} // namespace

std::string BashCompletion(const CLI::App& tool)
{
    const std::string name = tool.get_name();
    const std::string function = "_" + name;
    return "# Completion of " + name + " for bash.\n" + function + R"(()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD-1]}
    local path=)" +
           name + R"( word kind=next words= commands= options=
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case "$path $word" in
)" + Steps(tool) +
           R"(        esac
    done

    case "$path $previous" in
)" + Values(tool) +
           R"(    esac
    case $path in
)" + Words(tool) +
           R"(    esac

    if [[ $kind == next ]]; then
        words=$commands
        [[ $current == -* ]] && words=$options
    fi
    if [[ -n $words ]]; then
        COMPREPLY=($(compgen -W "$words" -- "$current"))
    else
        local IFS=$'\n'
        COMPREPLY=($(compgen -f -- "$current"))
    fi
}
complete -o filenames -F )" +
           function + " " + name + "\n";
}

} // namespace koro::tool
