#include "tools/koro/producer_option.h"

#include "tools/koro/path_option.h"

#include <CLI/CLI.hpp>

namespace koro::tool
{

CLI::Option* TakesProducer(CLI::Option* option)
{
    const auto refuseEmpty = [](const std::string& path) {
        return path.empty() ? std::string("the name of the .cti file is empty") : std::string();
    };
    return TakesPath(option)->check(refuseEmpty, "", "");
}

void DefineProducer(CLI::App& command, ProducerChoice& choice)
{
    CLI::Option* const file =
        TakesProducer(command.add_option("--producer", choice.file, "Use this .cti file only, not the environment"));
    command.add_flag("--simulator", choice.withSimulator, "Use the simulated cameras that came with the tool, too")
        ->excludes(file);
}

} // namespace koro::tool
