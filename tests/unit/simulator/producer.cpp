#include "tests/unit/simulator/producer.h"

#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <stdexcept>

namespace koro::simulator::test
{
namespace
{

constexpr const char* variable = "KORO_SIMULATOR_CONFIG";
constexpr const char* settingsFile = "simulator-settings.json";

void* Load(const std::string& settings)
{
    if (settings.empty())
        unsetenv(variable);
    else
    {
        std::ofstream(settingsFile, std::ios::binary) << settings;
        setenv(variable, settingsFile, 1);
    }
    const char* folder = std::getenv("KORO_TEST_PRODUCERS");
    const std::string file = std::string(folder == nullptr ? "." : folder) + "/zvr_koro_simulator.cti";
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) throw std::runtime_error(dlerror());
    return library;
}

} // namespace

std::string PacedCamera(double rate, const std::string& extra)
{
    return R"({"interfaces": [{"id": "I", "tlType": "GEV", "cameras": [{"serial": "A", "userName": "left", "width": 16,
        "height": 4, "startWithStream": true, "rate": )" +
           std::to_string(rate) + "}]}]" + extra + "}";
}

std::string OneCamera(const std::string& extra)
{
    return PacedCamera(0, extra);
}

Producer::Producer(const std::string& settings, bool initialise) : library(Load(settings))
{
    if (initialise) RequireSuccess(GCInitLib());
}

Producer::~Producer()
{
    while (GCCloseLib() == GC_ERR_SUCCESS)
    {}
    dlclose(library);
}

void* Producer::Symbol(const char* name) const
{
    void* symbol = dlsym(library, name);
    if (symbol == nullptr) throw std::runtime_error(std::string(name) + " is not exported");
    return symbol;
}

void Producer::RequireSuccess(GC_ERROR result) const
{
    if (result != GC_ERR_SUCCESS) throw std::runtime_error(std::to_string(result) + ": " + Last().text);
}

void Producer::RequireSize(std::size_t size, std::size_t expected)
{
    if (size != expected) throw std::runtime_error("an answer has " + std::to_string(size) + " bytes");
}

LastError Producer::Last() const
{
    LastError last{};
    std::vector<char> text(4096);
    std::size_t size = text.size();
    if (const GC_ERROR result = GCGetLastError(&last.code, text.data(), &size)) return {result, "(no last error)"};
    last.text = text.data();
    return last;
}

Tree::Tree(const Producer& loaded, const std::string& interfaceId, const std::string& camera) : producer(loaded)
{
    const auto require = [this](GC_ERROR result) {
        if (result != GC_ERR_SUCCESS) throw std::runtime_error(std::to_string(result) + ": " + producer.Last().text);
    };
    require(producer.TLOpen(&system));
    require(producer.TLUpdateInterfaceList(system, nullptr, 0));
    require(producer.TLOpenInterface(system, interfaceId.c_str(), &interface));
    require(producer.IFUpdateDeviceList(interface, nullptr, 0));
    require(producer.IFOpenDevice(interface, camera.c_str(), DEVICE_ACCESS_EXCLUSIVE, &device));
    require(producer.DevGetPort(device, &remote));
    require(producer.DevOpenDataStream(device, "Stream0", &stream));
    require(producer.GCRegisterEvent(stream, EVENT_NEW_BUFFER, &event));
}

BUFFER_HANDLE Tree::Announce(bool queued, std::size_t bytes, void* userPointer) const
{
    if (bytes == 0) bytes = StreamInfo<std::size_t>(STREAM_INFO_PAYLOAD_SIZE);
    BUFFER_HANDLE buffer = nullptr;
    if (producer.DSAllocAndAnnounceBuffer(stream, bytes, userPointer, &buffer) != GC_ERR_SUCCESS ||
        (queued && producer.DSQueueBuffer(stream, buffer) != GC_ERR_SUCCESS))
        throw std::runtime_error(producer.Last().text);
    return buffer;
}

void Tree::Start(std::uint64_t number) const
{
    if (producer.DSStartAcquisition(stream, ACQ_START_FLAGS_DEFAULT, number) != GC_ERR_SUCCESS)
        throw std::runtime_error(producer.Last().text);
}

EVENT_NEW_BUFFER_DATA Tree::Next() const
{
    EVENT_NEW_BUFFER_DATA data{};
    std::size_t size = sizeof data;
    if (producer.EventGetData(event, &data, &size, 60000) != GC_ERR_SUCCESS)
        throw std::runtime_error(producer.Last().text);
    return data;
}

GC_ERROR Tree::TryNext(std::uint64_t timeout_ms) const
{
    EVENT_NEW_BUFFER_DATA data{};
    std::size_t size = sizeof data;
    return producer.EventGetData(event, &data, &size, timeout_ms);
}

std::vector<std::uint8_t> Tree::Pixels(BUFFER_HANDLE buffer) const
{
    const auto* base = static_cast<const std::uint8_t*>(BufferInfo<void*>(buffer, BUFFER_INFO_BASE));
    return {base, base + BufferInfo<std::size_t>(buffer, BUFFER_INFO_SIZE_FILLED)};
}

} // namespace koro::simulator::test
