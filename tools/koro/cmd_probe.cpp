#include "gentl/api/function_names.h"
#include "tools/koro/camera_tree_json.h"
#include "tools/koro/commands.h"
#include "tools/koro/producer_probe.h"
#include "tools/koro/read_producer.h"
#include <koro/koro.hpp>

#include <CLI/CLI.hpp>
#include <dlfcn.h>
#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace koro::tool
{

namespace
{

using nlohmann::json;

void Send(const json& line)
{
    const std::string text = Dump(line) + "\n";
    size_t sent = 0;
    while (sent < text.size())
    {
        const ssize_t size = write(probePipe, text.data() + sent, text.size() - sent);
        if (size < 0 && errno == EINTR) continue;
        if (size <= 0) _exit(exitFailure); // the parent has gone
        sent += static_cast<size_t>(size);
    }
}

std::string LoaderText()
{
    const char* text = dlerror();
    return text ? text : "unknown reason";
}

// What the system's loader says: why the file cannot be loaded, or each function that it lacks.
std::vector<std::string> AskLoader(const std::string& path)
{
    const bool hasFolder = path.find('/') != std::string::npos;
    void* file = dlopen((hasFolder ? path : "./" + path).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!file) return {LoaderText()};

    std::vector<std::string> texts;
    for (const char* name : GenTL::mandatoryFunctions)
    {
        if (!dlsym(file, name)) texts.push_back(LoaderText());
    }
    dlclose(file);
    return texts;
}

} // namespace

int RunProbe(const std::string& path)
{
    fcntl(probePipe, F_SETFD, FD_CLOEXEC);
    Send({{"stage", "load"}});
    Send({{"loader", AskLoader(path)}});
    try
    {
        const Library library = Library::Initialize();
        const ProducerRecord record = ReadProducer(path, [](const char* stage) { Send({{"stage", stage}}); });
        Send({{"producer", ToJSON(record)}});
    }
    catch (const Error& error)
    {
        Send({{"refused", error.what()}});
        return exitFailure;
    }
    return exitSuccess;
}

Action DefineProbe(CLI::App& command)
{
    const auto path = std::make_shared<std::string>();
    command.add_option("file", *path)->required();
    command.group(""); // hidden: the tool starts it for itself
    return [path] { return RunProbe(*path); };
}

} // namespace koro::tool
