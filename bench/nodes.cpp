// Measures the cost of features through the exports, beside the same access by the GenICam runtime without the library
// and beside the plain call of the producer. Then walks over long lists, where the cost of one element must not grow
// with the length. Then the first use of a large description, beside a plain pass of the XML parser over it.
//
//     bench_nodes [--quick] [description.xml]
//
// Without a file it uses the largest one of camera-descriptions/ below KORO_REFERENCE_DATA, otherwise a generated one.
#include "bench/genapi_descriptions.h"
#include "bench/measure.h"
#include "bench/parse_only.h"
#include "bench/producer_access.h"
#include "bench/runtime_map.h"
#include "bench/served_description.h"
#include "bench/three_roads.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

using namespace koro::bench;
using namespace GENAPI_NAMESPACE;

namespace
{

template <typename Handle>
Handle Cast(KORO_ReturnCode (*cast)(KORO_NodeHandle, Handle*), KORO_NodeHandle node)
{
    Handle typed = nullptr;
    Require(cast(node, &typed));
    return typed;
}

void PrintOperations(const Effort& effort)
{
    const std::string xml = DescriptionOfSingleNodes();
    const ServedDescription served(xml);
    const DirectPort port;
    const RuntimeMap runtime(xml, port);
    Tree tree;
    const KORO_NodeMapHandle map = NodeMapOf(tree.OpenDevice(0));

    const Step nothing = [] {};
    const Step read = [&] {
        std::uint8_t bytes[4];
        port.Read(8, bytes, sizeof bytes);
    };
    const Step write = [&] {
        const std::uint8_t bytes[4] = {};
        port.Write(8, bytes, sizeof bytes);
    };
    const auto row = [&](const char* name, const Step& producer, const Step& below, const Step& exported) {
        PrintRow(effort, name, producer, below, exported);
    };

    PrintRoads("ns per call");
    row(
        "find a node by name", nothing, [&] { runtime.Node("Dependant100"); }, [&] { Find(map, "Dependant100"); });

    std::int64_t number = 0;
    const CIntegerPtr cached = runtime.Node("Cached");
    const auto cachedHandle = Cast(KORO_Node_ToIntegerNode, Find(map, "Cached"));
    row(
        "integer read, cached", nothing, [&] { cached->GetValue(); },
        [&] { KORO_IntegerNode_GetValue(cachedHandle, KORO_NODE_CACHE_POLICY_USE_CACHE, &number); });

    const CIntegerPtr uncached = runtime.Node("Uncached");
    const auto uncachedHandle = Cast(KORO_Node_ToIntegerNode, Find(map, "Uncached"));
    row(
        "integer read, uncached", read, [&] { uncached->GetValue(); },
        [&] { KORO_IntegerNode_GetValue(uncachedHandle, KORO_NODE_CACHE_POLICY_USE_CACHE, &number); });
    row(
        "integer write", write, [&] { uncached->SetValue(5); }, [&] { KORO_IntegerNode_SetValue(uncachedHandle, 5); });

    double real = 0;
    const CFloatPtr scaled = runtime.Node("Scaled");
    const auto scaledHandle = Cast(KORO_Node_ToFloatNode, Find(map, "Scaled"));
    row(
        "float read through two converters", read, [&] { scaled->GetValue(); },
        [&] { KORO_FloatNode_GetValue(scaledHandle, KORO_NODE_CACHE_POLICY_USE_CACHE, &real); });

    const CEnumerationPtr format = runtime.Node("Format");
    const auto formatHandle = Cast(KORO_Node_ToEnumerationNode, Find(map, "Format"));
    row(
        "enumeration read as text, cached", nothing, [&] { format->ToString(); },
        [&] {
            KORO_EnumerationEntryNodeHandle entry = nullptr;
            char text[64];
            std::size_t size = sizeof text;
            KORO_EnumerationNode_GetCurrentEntry(formatHandle, KORO_NODE_CACHE_POLICY_USE_CACHE, &entry);
            KORO_EnumerationEntryNode_GetSymbolicValue(entry, text, &size);
        });
    row(
        "enumeration written by name", write, [&] { format->FromString("Entry20"); },
        [&] { KORO_EnumerationNode_SetCurrentEntryBySymbolicValue(formatHandle, "Entry20", sizeof "Entry20"); });
}

// Nanoseconds for one element of each list.
std::vector<double> WalkLists(KORO_NodeMapHandle map, std::size_t count)
{
    const auto category = Cast(KORO_Node_ToCategoryNode, Find(map, "Root"));
    const auto enumeration = Cast(KORO_Node_ToEnumerationNode, Find(map, "Long"));
    const auto selector = Find(map, "Selector");
    const auto walk = [count](const auto& at) {
        std::size_t index = 0;
        return ProcessorNanosecondsPerCall(count, [&] { Require(at(index++)); });
    };
    KORO_NodeHandle node = nullptr;
    KORO_EnumerationEntryNodeHandle entry = nullptr;
    return {
        walk([&](std::size_t index) { return KORO_EnumerationNode_GetEntry(enumeration, index, &entry); }),
        walk([&](std::size_t index) { return KORO_NodeMap_GetNode(map, index, &node); }),
        walk([&](std::size_t index) { return KORO_CategoryNode_GetSubNode(category, index, &node); }),
        walk([&](std::size_t index) { return KORO_Node_GetSelectedNode(selector, index, &node); }),
        walk([&](std::size_t index) {
            const std::string name = "E" + std::to_string(index);
            return KORO_EnumerationNode_FindEntryBySymbolicValue(enumeration, name.c_str(), name.size() + 1, &entry);
        })};
}

void PrintLongLists()
{
    const std::size_t counts[] = {2000, 20000};
    std::vector<double> columns[2];
    for (std::size_t column = 0; column < 2; ++column)
    {
        const ServedDescription served(DescriptionOfLongLists(counts[column]));
        Tree tree;
        const KORO_NodeMapHandle map = NodeMapOf(tree.OpenDevice(0));
        WalkLists(map, counts[column]); // the first walk creates the tables and the handles
        columns[column] = WalkLists(map, counts[column]);
    }
    std::printf("%-34s %10s %10s\n", "ns per element of a walk over", "2,000", "20,000");
    const char* const names[] = {
        "entries of an enumeration", "nodes of a map", "nodes of a category", "selected nodes",
        "entries found by name"};
    for (std::size_t row = 0; row < columns[0].size(); ++row)
        std::printf("%-34s %10.1f %10.1f\n", names[row], columns[0][row], columns[1][row]);
}

// The first ten features that can be read and are whole numbers, as an application would look for them.
void ReadTenFeatures(KORO_NodeMapHandle map)
{
    std::size_t numNodes = 0;
    Require(KORO_NodeMap_GetNumNodes(map, &numNodes));
    int numRead = 0;
    for (std::size_t index = 0; index < numNodes && numRead < 10; ++index)
    {
        KORO_NodeHandle node = nullptr;
        KORO_Bool8 isFeature = 0;
        KORO_NodeType type = KORO_NODE_TYPE_OTHER;
        Require(KORO_NodeMap_GetNode(map, index, &node));
        Require(KORO_Node_GetIsFeature(node, &isFeature));
        Require(KORO_Node_GetType(node, &type));
        if (isFeature == 0 || type != KORO_NODE_TYPE_INTEGER) continue;
        std::int64_t value = 0;
        const auto integer = Cast(KORO_Node_ToIntegerNode, node);
        const KORO_ReturnCode code = KORO_IntegerNode_GetValue(integer, KORO_NODE_CACHE_POLICY_USE_CACHE, &value);
        numRead += code == KORO_RETURN_CODE_SUCCESS ? 1 : 0;
    }
    if (numRead < 10) throw std::runtime_error("the description has less than ten whole numbers to read");
}

// Starts with the opened camera; the opening itself, which fetches the description, is part of the time.
void PrintFirstUse(const Effort& effort, const std::string& xml)
{
    const ServedDescription served(xml);
    Tree tree;
    const auto open = [&](const std::function<void(KORO_NodeMapHandle)>& use) {
        return [&tree, use] {
            const KORO_DeviceHandle device = tree.OpenDevice(0);
            use(NodeMapOf(device));
            Require(KORO_Device_Destruct(device));
        };
    };
    const Step steps[] = {
        [&] { ParseOnly(xml); },
        open([](KORO_NodeMapHandle) {}),
        open([](KORO_NodeMapHandle map) { Find(map, "Root"); }),
        open(ReadTenFeatures),
    };
    std::vector<double> columns[4];
    for (std::size_t round = 0; round < effort.rounds; ++round)
    {
        for (std::size_t step = 0; step < 4; ++step)
            columns[step].push_back(NanosecondsPerCall(1, steps[step]) / 1e6);
    }
    const double pass = Median(columns[0]);
    const char* const names[] = {
        "bare pass of the XML parser", "open, number of node maps", "open, first node found",
        "open, ten features read"};
    for (std::size_t step = 0; step < 4; ++step)
    {
        const double time = Median(columns[step]);
        std::printf("%-34s %10.2f ms, ratio %5.2f\n", names[step], time, time / pass);
    }
}

// The features of the generated description are available when a bit in their register is set.
void SetAllBits()
{
    const std::vector<std::uint8_t> ones(4096, 0xFF);
    DirectPort().Write(0, ones.data(), ones.size());
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
        PrintOperations(effort);
        std::printf("\n");
        PrintLongLists();
        const std::string xml = path.empty() ? GeneratedDescription(400) : Load(path);
        std::printf("\n%s, %zu bytes\n", path.empty() ? "made up description" : path.c_str(), xml.size());
        if (path.empty()) SetAllBits();
        PrintFirstUse(effort, xml);
    }
    catch (const std::exception& exception)
    {
        std::fprintf(stderr, "bench_nodes: %s\n", exception.what());
        return 1;
    }
    return 0;
}
