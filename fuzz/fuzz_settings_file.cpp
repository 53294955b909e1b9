// Feature files, loaded by the exports into a camera of a scripted producer: each file is accepted or refused with a
// text, and the file that the camera stores afterwards can be loaded again.
#include "fuzz/fuzz_target.h"
#include "fuzz/stored_features.h"
#include "tests/support/boundary.h"
#include "tests/support/scripted_producer.h"
#include <koro/koro.h>

#include <cstdlib>
#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

namespace
{

using namespace koro::test;
using koro::fuzz::Require;

const std::string description = koro::fuzz::storedFeatures;

const std::string head = "{05D8C294-F295-4dfb-9D01-096BD04049F4}\n";

// A file in memory, which has a path all the same.
class MemoryFile
{
public:
    explicit MemoryFile(std::string_view content) : file(memfd_create("settings", 0))
    {
        Require(file >= 0, "there is memory for a file");
        Require(write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size()), "and its content");
    }
    ~MemoryFile() { close(file); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string Path() const { return "/proc/self/fd/" + std::to_string(file); }
    std::string Content() const
    {
        std::string content(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
        const auto size = static_cast<ssize_t>(content.size());
        Require(pread(file, content.data(), content.size(), 0) == size, "it can be read");
        return content;
    }

private:
    const int file;
};

class Camera
{
public:
    Camera()
    {
        const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
        map = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
        producer->KeepJournal(false);
    }

    KORO_ReturnCode Load(const MemoryFile& file) const
    {
        const std::string path = file.Path();
        return KORO_NodeMap_LoadFromFile(map, path.c_str(), path.size() + 1);
    }
    KORO_ReturnCode Store(const MemoryFile& file) const
    {
        const std::string path = file.Path();
        return KORO_NodeMap_StoreToFile(map, path.c_str(), path.size() + 1);
    }

private:
    static const ScriptedProducer& Describe(const ScriptedProducer& described)
    {
        described->Edit([](scripted::Tree& edited) {
            auto& port = edited.interfaces[0]->devices[0]->remotePort;
            constexpr std::uint64_t place = 0x20000;
            port.registers[place] = description;
            port.urls.assign(
                1, {{GenTL::URL_INFO_URL, scripted::Text("local:fuzz.xml;20000;0")},
                    {GenTL::URL_INFO_SCHEME, scripted::Int32(GenTL::URL_SCHEME_LOCAL)},
                    {GenTL::URL_INFO_FILE_REGISTER_ADDRESS, scripted::UInt64(place)},
                    {GenTL::URL_INFO_FILE_SIZE, scripted::UInt64(description.size())},
                    {GenTL::URL_INFO_FILENAME, scripted::Text("fuzz.xml")}});
        });
        return described;
    }

    const ScriptedProducer producer;
    const KoroLibrary library;
    const OpenTree tree{Describe(producer).Path()};
    KORO_NodeMapHandle map = nullptr;
};

const Camera& TheCamera()
{
    setenv("KORO_TEST_PRODUCERS", KORO_FUZZ_PRODUCERS, 0);
    static const Camera camera;
    return camera;
}

// A text that is empty or begins with a brace does not survive a round trip; the format has no escapes.
bool CanBeReadBack(const std::string& stored)
{
    return stored.find("\nT\t\n") == std::string::npos && stored.find("\nT\t{") == std::string::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const Camera& camera = TheCamera();
    // Each input starts with the same camera.
    Require(
        camera.Load(MemoryFile(head + "I\t0\nS\tA\nF\t1\nT\tx\nG\t{I=0\tS=A}\t0\n")) == KORO_RETURN_CODE_SUCCESS,
        "a good file is accepted");

    const auto code = camera.Load(MemoryFile({reinterpret_cast<const char*>(data), size}));
    // The last selector belongs to the device: a value out of its range leads to an address without a register.
    Require(
        code == KORO_RETURN_CODE_SUCCESS || code == KORO_RETURN_CODE_ERROR || code == KORO_RETURN_CODE_INVALID_ADDRESS,
        "a file is accepted or refused");
    Require(code == KORO_RETURN_CODE_SUCCESS || !LastError().text.empty(), "and its refusal has words");

    const MemoryFile stored("before");
    if (camera.Store(stored) != KORO_RETURN_CODE_SUCCESS) return 0; // a selector that is out of its range
    const std::string content = stored.Content();
    if (!CanBeReadBack(content)) return 0;
    Require(camera.Load(stored) == KORO_RETURN_CODE_SUCCESS, "what was stored can be loaded");
    const MemoryFile again("");
    Require(camera.Store(again) == KORO_RETURN_CODE_SUCCESS, "and be stored again");
    Require(again.Content() == content, "as the same");
    return 0;
}
