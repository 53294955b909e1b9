// Measures commands of the tool over long lists: the processor time of whole runs. Work that grows linearly has equal
// columns, except for the start of the process and the producer, which weighs more in a short list.
#include "bench/genapi_descriptions.h"
#include "bench/measure.h"
#include "bench/served_description.h"

#include <cstddef>
#include <cstdio>
#include <exception>
#include <fcntl.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace
{

using namespace koro::bench;

using Words = std::vector<std::string>;

double Microseconds(const timeval& time)
{
    return 1e6 * static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec);
}

// The processor time of one run, whose output is discarded.
double ProcessorMicroseconds(Words words)
{
    words.insert(words.begin(), KORO_BENCH_TOOL);
    words.insert(words.end(), {"--producer", ZERO_COST_PRODUCER});
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = -1;
    const int failure = posix_spawn(&child, KORO_BENCH_TOOL, &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = -1;
    rusage used = {};
    if (failure != 0 || wait4(child, &status, 0, &used) != child || status != 0)
        throw std::runtime_error("the tool failed: " + words[1]);
    return Microseconds(used.ru_utime) + Microseconds(used.ru_stime);
}

const std::vector<Words> commands = {
    {"features", "interface:0"},
    {"features", "interface:0", "--json"},
    {"describe", "interface:0", "Long"},
    {"describe", "interface:0", "Selector"},
};

std::string NameOf(const Words& command)
{
    std::string name;
    for (const std::string& word : command)
        name += word == "interface:0" ? "" : (name.empty() ? "" : " ") + word;
    return name;
}

std::vector<double> MicrosecondsPerElement(std::size_t count, std::size_t rounds)
{
    const ServedDescription served(DescriptionOfLongLists(count));
    std::vector<double> medians;
    for (const Words& command : commands)
    {
        std::vector<double> times;
        for (std::size_t round = 0; round < rounds; ++round)
            times.push_back(ProcessorMicroseconds(command));
        medians.push_back(Median(times) / static_cast<double>(count));
    }
    return medians;
}

} // namespace

int main(int argc, char** argv)
{
    const bool quick = argc > 1 && std::string_view(argv[1]) == "--quick";
    const std::size_t few = quick ? 20 : 2000;
    try
    {
        const std::vector<double> first = MicrosecondsPerElement(few, quick ? 1 : 5);
        const std::vector<double> second = MicrosecondsPerElement(10 * few, quick ? 1 : 5);
        std::printf("%-34s %10zu %10zu\n", "us per element of a list of", few, 10 * few);
        for (std::size_t row = 0; row < commands.size(); ++row)
            std::printf("%-34s %10.1f %10.1f\n", NameOf(commands[row]).c_str(), first[row], second[row]);
    }
    catch (const std::exception& exception)
    {
        std::fprintf(stderr, "bench_tool: %s\n", exception.what());
        return 1;
    }
    return 0;
}
