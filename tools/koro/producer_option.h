// ProducerChoice: which producers a command uses, as its command line says. A value.
#pragma once

#include <string>

namespace CLI
{
class App;
class Option;
}

namespace koro::tool
{

struct ProducerChoice
{
    std::string file;           // this one and no other; empty for the environment
    bool withSimulator = false; // the simulated cameras that came with the tool too
};

// The option takes the file of a producer: a path that is not empty. Whether the file is there is asked when it is
// used.
CLI::Option* TakesProducer(CLI::Option* option);

// Defines --producer and --simulator. `choice` is filled when the command line is read and must live until then.
void DefineProducer(CLI::App& command, ProducerChoice& choice);

} // namespace koro::tool
