#include "gentl/api/function_names.h"
#include "gentl/api/gentl.h"
#include "tools/koro/accidents.h"
#include "tools/koro/camera_tree_json.h"
#include "tools/koro/commands.h"
#include "tools/koro/process_end.h"
#include "tools/koro/producer_probe.h"
#include "tools/koro/producer_watch.h"
#include "tools/koro/read_producer.h"
#include "tools/koro/standard_streams.h"
#include <koro/koro.hpp>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <csignal>
#include <dlfcn.h>
#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace koro::tool
{

namespace
{

using nlohmann::json;

// A reason is a sentence or two.
constexpr size_t maxReason = 4096;

// A file in this process, unloaded with the object; a null handle when it cannot be loaded.
struct LoadedFile
{
    // A file that throws while it is loaded ends the process, as it does where the library loads it.
    explicit LoadedFile(const std::string& path) noexcept
        : handle(dlopen((path.find('/') != path.npos ? path : "./" + path).c_str(), RTLD_NOW | RTLD_LOCAL))
    {}
    LoadedFile(const LoadedFile&) = delete;
    LoadedFile& operator=(const LoadedFile&) = delete;
    ~LoadedFile()
    {
        if (handle) dlclose(handle);
    }

    void* const handle;
};

// A copy of the pipe, which outlives most producers that close all descriptors.
int pipeCopy = probePipe;

void Send(const json& line)
{
    const std::string text = Dump(line) + "\n";
    size_t sent = 0;
    while (sent < text.size())
    {
        const ssize_t size = write(pipeCopy, text.data() + sent, text.size() - sent);
        if (size < 0 && errno == EINTR) continue;
        if (size < 0 && errno == EBADF) EndNow(exitPipeClosed);
        if (size <= 0) EndNow(exitFailure); // the parent has gone
        sent += static_cast<size_t>(size);
    }
}

// False when the producer has closed it; another file may have its number then.
bool PipeIsStillThere()
{
    struct stat pipe = {};
    struct stat copy = {};
    if (fstat(probePipe, &pipe) != 0 || fstat(pipeCopy, &copy) != 0) return false;
    return pipe.st_dev == copy.st_dev && pipe.st_ino == copy.st_ino;
}

std::string LoaderText()
{
    const char* text = dlerror();
    return text ? text : "unknown reason";
}

// What the system's loader says: why the file cannot be loaded, or each function that it lacks.
void AskLoader(const std::string& path)
{
    const LoadedFile file(path);
    json lacks = json::array();
    json texts = json::array();
    if (!file.handle) texts.push_back(LoaderText());
    for (const char* name : GenTL::mandatoryFunctions)
    {
        if (!file.handle || dlsym(file.handle, name)) continue;
        lacks.push_back(name);
        texts.push_back(LoaderText());
    }
    Send({{"loader", texts}, {"lacks", lacks}});
}

template <typename Function>
Function* Find(const LoadedFile& file, const char* name)
{
    return file.handle ? reinterpret_cast<Function*>(dlsym(file.handle, name)) : nullptr;
}

// The producer's own reason why it does not start, which the library does not ask for; empty when there is none.
std::string AskForReason(const std::string& path)
{
    const LoadedFile file(path);
    const auto start = Find<decltype(GenTL::GCInitLib)>(file, "GCInitLib");
    const auto getLastError = Find<decltype(GenTL::GCGetLastError)>(file, "GCGetLastError");
    if (!start || !getLastError) return {};
    if (start() == GenTL::GC_ERR_SUCCESS)
    {
        const auto end = Find<decltype(GenTL::GCCloseLib)>(file, "GCCloseLib");
        if (end) end();
        return {};
    }
    std::vector<char> text(maxReason);
    size_t size = text.size() - 1; // a text without terminator gets one
    GenTL::GC_ERROR code = GenTL::GC_ERR_SUCCESS;
    return getLastError(&code, text.data(), &size) == GenTL::GC_ERR_SUCCESS ? text.data() : "";
}

} // namespace

void RunProbe(const std::string& path, const std::string& wanted)
{
    fcntl(probePipe, F_SETFD, FD_CLOEXEC);
    const int copy = CopyBeyondReach(probePipe);
    if (copy >= 0) pipeCopy = copy;
    ReportAccidentsTo(pipeCopy);
    ProducerWatch::OfProcess().SwitchOff(); // the parent watches
    prctl(PR_SET_PDEATHSIG, SIGKILL);       // and nobody else ends a producer that hangs
    Send({{"stage", "load"}});
    AskLoader(path);
    try
    {
        const ProducerRecord record = ReadProducer(path, wanted, [](const char* stage) { Send({{"stage", stage}}); });
        if (!PipeIsStillThere()) Send({{"closes", true}});
        Send({{"producer", ToJSON(record)}});
        EndNow(exitSuccess); // no static destructor of the producer is to run: its result is there
    }
    catch (const std::runtime_error& error)
    {
        // The result goes first: the producer may do worse than before when it is called again.
        Send({{"refused", error.what()}});
    }
    Send({{"producerText", AskForReason(path)}});
    EndNow(exitFailure);
}

Action DefineProbe(CLI::App& command)
{
    struct Candidate
    {
        std::string path;
        std::string wanted;
    };
    const auto candidate = std::make_shared<Candidate>();
    command.add_option("file", candidate->path)->required();
    command.add_option("--wanted", candidate->wanted);
    command.group(""); // hidden: the tool starts it for itself
    return [candidate]() -> int { RunProbe(candidate->path, candidate->wanted); };
}

} // namespace koro::tool
