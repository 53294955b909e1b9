// Measures the cost of the GenICam runtime: creating node maps from a description, beside a plain pass of the XML
// parser over the same bytes; their memory; and single operations of nodes, beside the cost of the port.
//
//     bench_genapi [--quick] [description.xml]
//
// Without a file it uses the largest one of camera-descriptions/ below KORO_REFERENCE_DATA, otherwise a generated one.
#include "bench/genapi_descriptions.h"
#include "bench/measure.h"
#include "bench/parse_only.h"

#include <GenApi/NodeMapFactory.h>
#include <GenICam.h>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <memory>
#include <string>

using namespace koro::bench;
using namespace GENAPI_NAMESPACE;

namespace
{

class MemoryPort : public IPort
{
public:
    void Read(void* buffer, std::int64_t address, std::int64_t length) override
    {
        std::memcpy(buffer, At(address), static_cast<std::size_t>(length));
    }
    void Write(const void* buffer, std::int64_t address, std::int64_t length) override
    {
        std::memcpy(At(address), buffer, static_cast<std::size_t>(length));
    }
    EAccessMode GetAccessMode() const override { return RW; }

private:
    // Cameras use a large range of addresses: all addresses share these bytes.
    std::uint8_t* At(std::int64_t address) { return bytes + static_cast<std::uint64_t>(address) % 4096; }

    std::uint8_t bytes[4096 + 65536] = {};
};

struct Destroyer
{
    void operator()(INodeMap* map) const { CastToIDestroy(map)->Destroy(); }
};
using Map = std::unique_ptr<INodeMap, Destroyer>;

Map MakeMap(CNodeMapFactory& factory, MemoryPort& port)
{
    Map map(factory.CreateNodeMap());
    map->Connect(&port);
    return map;
}

Map MakeMap(const std::string& xml, MemoryPort& port)
{
    CNodeMapFactory factory(ContentType_Xml, xml.data(), xml.size());
    return MakeMap(factory, port);
}

std::int64_t Status_KiB(const char* name)
{
    std::ifstream status("/proc/self/status");
    const std::string wanted = std::string(name) + ":";
    for (std::string word; status >> word;)
    {
        std::int64_t number = 0;
        if (word == wanted && status >> number) return number;
    }
    return 0;
}

// The first ten features that can be read, as an application would look for them.
void ReadTenFeatures(INodeMap& map)
{
    NodeList_t nodes;
    map.GetNodes(nodes);
    int read = 0;
    for (INode* const node : nodes)
    {
        IValue* const value = node->IsFeature() ? dynamic_cast<IValue*>(node) : nullptr;
        if (!value || dynamic_cast<ICategory*>(node) || !IsReadable(node)) continue;
        try
        {
            value->ToString();
        }
        catch (const GENICAM_NAMESPACE::GenericException&)
        { // plain memory is not a camera: some numbers have no entry
        }
        if (++read == 10) return;
    }
}

void ListAllLinks(INodeMap& map)
{
    NodeList_t nodes;
    map.GetNodes(nodes);
    for (INode* const node : nodes)
    {
        for (const ELinkType type :
             {ctParentNodes, ctReadingChildren, ctWritingChildren, ctInvalidatingChildren, ctDependingNodes,
              ctTerminalNodes, ctValueChangingChildren})
        {
            NodeList_t children;
            node->GetChildren(children, type);
        }
    }
}

void PrintMemory(const std::string& xml)
{
    MemoryPort port;
    MakeMap(DescriptionOfSingleNodes(), port); // the code itself is in memory from here on
    malloc_trim(0);
    const std::int64_t before = Status_KiB("VmRSS");
    CNodeMapFactory factory(ContentType_Xml, xml.data(), xml.size());
    const Map map = MakeMap(factory, port);
    malloc_trim(0);
    const std::int64_t first = Status_KiB("VmRSS");
    const std::int64_t peak = Status_KiB("VmHWM");
    const Map second = MakeMap(factory, port);
    malloc_trim(0);
    std::printf(
        "%-46s %8lld KiB, peak %lld KiB\n", "resident growth by a node map", static_cast<long long>(first - before),
        static_cast<long long>(peak - before));
    std::printf(
        "%-46s %8lld KiB\n", "  by a second one of the same factory",
        static_cast<long long>(Status_KiB("VmRSS") - first));
}

using Step = std::function<void()>;

// Both columns alternate after `count` operations, in processor time: no step waits for anything.
void PrintRow(
    std::size_t rounds, std::size_t count, const char* name, const char* unit, double scale, const Step& floor,
    const Step& step)
{
    std::vector<double> floors;
    std::vector<double> times;
    for (std::size_t round = 0; round < rounds; ++round)
    {
        floors.push_back(ProcessorNanosecondsPerCall(count, floor) / scale);
        times.push_back(ProcessorNanosecondsPerCall(count, step) / scale);
    }
    const double low = Median(floors);
    const double time = Median(times);
    std::printf(
        "%-46s %8.2f %s, floor %8.2f, above %8.2f, ratio %6.2f\n", name, time, unit, low, time - low, time / low);
}

void PrintMaps(const Effort& effort, const std::string& xml)
{
    MemoryPort port;
    const auto row = [&](const char* name, const Step& floor, const Step& step) {
        PrintRow(effort.rounds, 1, name, "ms", 1e6, floor, step);
    };
    const Step parse = [&] { ParseOnly(xml); };
    row("creation of a node map", parse, [&] { MakeMap(xml, port); });
    row("creation, ten features read", parse, [&] { ReadTenFeatures(*MakeMap(xml, port)); });
    CNodeMapFactory factory(ContentType_Xml, xml.data(), xml.size());
    MakeMap(factory, port);
    row("further map of the same factory", parse, [&] { MakeMap(factory, port); });
    const Map map = MakeMap(factory, port);
    row("all link lists of all nodes", parse, [&] { ListAllLinks(*map); });
}

void PrintOperations(const Effort& effort)
{
    MemoryPort port;
    const Map map = MakeMap(DescriptionOfSingleNodes(), port);
    IPort* volatile called = &port; // prevents the compiler from inlining the call
    const Step read = [&] {
        std::uint8_t bytes[4];
        called->Read(bytes, 8, sizeof bytes);
    };
    const Step write = [&] {
        const std::uint8_t bytes[4] = {};
        called->Write(bytes, 8, sizeof bytes);
    };
    const Step readAndWrite = [&] {
        read();
        write();
    };
    const auto row = [&](const char* name, const Step& floor, const Step& step, std::size_t fraction = 1) {
        PrintRow(effort.rounds, effort.iterations / fraction, name, "ns", 1, floor, step);
    };

    const CIntegerPtr cached = map->GetNode("Cached");
    const CIntegerPtr uncached = map->GetNode("Uncached");
    const CIntegerPtr masked = map->GetNode("Masked");
    const CFloatPtr scaled = map->GetNode("Scaled");
    const CEnumerationPtr format = map->GetNode("Format");
    const CEnumerationPtr channel = map->GetNode("Channel");
    const CIntegerPtr level = map->GetNode("Level");
    INode* const invalidated = map->GetNode("Invalidated");

    row("integer read, cached", read, [&] { cached->GetValue(); });
    row("integer read, uncached", read, [&] { uncached->GetValue(); });
    row("integer read, uncached masked", read, [&] { masked->GetValue(); });
    row("integer write", write, [&] { uncached->SetValue(5); });
    row("integer write, masked", readAndWrite, [&] { masked->SetValue(5); });
    row("float read through two converters", read, [&] { scaled->GetValue(); });
    row("enumeration read as text, cached", read, [&] { format->ToString(); });
    row("enumeration written by name", write, [&] { format->FromString("Entry20"); });
    int next = 0;
    row("one step of a selector walk", read, [&] {
        channel->SetIntValue(next = (next + 1) % channels);
        level->GetValue();
    });
    row(
        "invalidation of a node with 200 dependants", read, [&] { invalidated->InvalidateNode(); }, 10);
    row("node by name", read, [&] { map->GetNode("Dependant100"); });
}

std::string LargestReference()
{
    const char* const data = std::getenv("KORO_REFERENCE_DATA");
    const std::filesystem::path folder = std::filesystem::path(data ? data : "") / "camera-descriptions";
    std::filesystem::path largest;
    std::error_code absent;
    for (const auto& entry : std::filesystem::directory_iterator(folder, absent))
    {
        if (entry.path().extension() != ".xml") continue;
        if (largest.empty() || entry.file_size() > std::filesystem::file_size(largest)) largest = entry.path();
    }
    return largest.string();
}

std::string Load(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot open " + path);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

} // namespace

int main(int argc, char** argv)
{
    const Effort effort = EffortFromArguments(argc, argv);
    const bool named = argc > 1 && std::string_view(argv[argc - 1]) != "--quick";
    const std::string path = named ? argv[argc - 1] : LargestReference();
    try
    {
        const std::string xml = path.empty() ? GeneratedDescription(400) : Load(path);
        std::printf("%s, %zu bytes\n", path.empty() ? "made up description" : path.c_str(), xml.size());
        PrintMemory(xml);
        PrintMaps(effort, xml);
        PrintOperations(effort);
    }
    catch (const std::exception& exception)
    {
        std::fprintf(stderr, "bench_genapi: %s\n", exception.what());
        return 1;
    }
    return 0;
}
