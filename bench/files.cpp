// Measures the cost of a camera's settings and files through the exports, beside the GenICam runtime without the
// library and beside plain accesses to the same registers. Then measures one feature of many that share a selector, and
// one of many that are bits of one register: their cost must not grow with their number.
#include "bench/measure.h"
#include "bench/producer_access.h"
#include "bench/runtime_map.h"
#include "bench/served_description.h"
#include "bench/three_roads.h"

#include <GenApi/Filestream.h>
#include <GenApi/Persistence.h>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <unistd.h>
#include <vector>

using namespace koro::bench;
using namespace GENAPI_NAMESPACE;

namespace
{

constexpr std::size_t fileSize = 4 << 20;
constexpr std::uint64_t fileControl = 0; // registers of eight bytes: offset, length, execute, status
constexpr std::uint64_t blockAddress = 64;
constexpr std::size_t numPlain = 200;
constexpr std::size_t numSelected = 10; // features, each with as many places
constexpr std::size_t numSelectors = 10;
constexpr std::size_t numRecords = numPlain + numSelected * numSelectors;
constexpr double microsecond = 1000;

std::string Described(const std::string& nodes)
{
    return "<RegisterDescription ModelName=\"Files\" VendorName=\"ZVR\" StandardNameSpace=\"None\" "
           "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" "
           "MinorVersion=\"0\" SubMinorVersion=\"0\" ProductGuid=\"p\" VersionGuid=\"v\" "
           "xmlns=\"http://www.genicam.org/GenApi/Version_1_1\"><Port Name=\"Device\"/>" +
           nodes + "</RegisterDescription>";
}

std::string Register(const std::string& name, std::uint64_t address, const char* mode, const std::string& elements = {})
{
    return "<IntReg Name=\"" + name + "\">" + elements + "<Address>" + std::to_string(address) +
           "</Address><Length>8</Length><AccessMode>" + mode +
           "</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable><Sign>Signed</Sign>"
           "<Endianess>LittleEndian</Endianess></IntReg>";
}

std::string Choice(const std::string& name, const std::vector<std::string>& entries, const std::string& value)
{
    std::string text = "<Enumeration Name=\"" + name + "\">";
    for (std::size_t number = 0; number < entries.size(); ++number)
        text += "<EnumEntry Name=\"" + entries[number] + "\"><Value>" + std::to_string(number) + "</Value></EnumEntry>";
    return text + value + "</Enumeration>";
}

// A camera that accepts and delivers every block as soon as it is requested.
std::string DescribedFile(std::size_t blockSize)
{
    const std::string constant = "<Value>0</Value>";
    return Described(
        Choice("FileSelector", {"User"}, constant) +
        Choice("FileOperationSelector", {"Open", "Close", "Read", "Write", "Delete"}, constant) +
        Choice("FileOpenMode", {"Read", "Write", "ReadWrite"}, constant) +
        Choice("FileOperationStatus", {"Success", "Failure"}, "<pValue>Status</pValue>") +
        Register("FileAccessOffset", fileControl, "RW") + Register("FileAccessLength", fileControl + 8, "RW") +
        Register("Execute", fileControl + 16, "WO") + Register("Status", fileControl + 24, "RO") +
        Register("FileOperationResult", fileControl + 8, "RO") +
        "<Command Name=\"FileOperationExecute\"><pValue>Execute</pValue><CommandValue>1</CommandValue></Command>"
        "<Register Name=\"FileAccessBuffer\"><Address>" +
        std::to_string(blockAddress) + "</Address><Length>" + std::to_string(blockSize) +
        "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable></Register>");
}

// The accesses of a transfer, block by block.
template <class Move>
void MoveBlocks(const DirectPort& port, std::size_t blockSize, const Move& move)
{
    const std::uint64_t one = 1;
    std::uint64_t answer = 0;
    for (std::uint64_t offset = 0; offset < fileSize; offset += blockSize)
    {
        port.Write(fileControl, &offset, sizeof offset);
        port.Write(fileControl + 8, &blockSize, sizeof blockSize);
        move(offset);
        port.Write(fileControl + 16, &one, sizeof one);
        port.Read(fileControl + 8, &answer, sizeof answer);
        port.Read(fileControl + 24, &answer, sizeof answer);
    }
}

void PrintTransfers(const Effort& effort, std::size_t blockSize)
{
    const std::string xml = DescribedFile(blockSize);
    const ServedDescription served(xml);
    const DirectPort port;
    const std::vector<char> zeros(64);
    port.Write(fileControl, zeros.data(), zeros.size());

    const RuntimeMap runtime(xml, port);
    FileProtocolAdapter below;
    below.attach(runtime.Get());
    Tree tree;
    const KORO_NodeMapHandle map = NodeMapOf(tree.OpenDevice(0));
    KORO_FileAdapterHandle above = nullptr;
    Require(KORO_FileAdapter_Construct(map, "User", sizeof "User", &above));

    std::vector<std::uint8_t> bytes(fileSize);
    char* const text = reinterpret_cast<char*>(bytes.data());
    const auto check = [](std::int64_t moved) {
        if (moved != static_cast<std::int64_t>(fileSize)) throw std::runtime_error("the file was not moved whole");
    };
    const std::string blocks = ", blocks of " + std::to_string(blockSize);
    PrintRow(
        effort, ("file read" + blocks).c_str(),
        [&] {
            MoveBlocks(port, blockSize, [&](std::uint64_t offset) {
                port.Read(blockAddress, bytes.data() + offset, blockSize);
            });
        },
        [&] { check(below.read(text, 0, fileSize, "User")); },
        [&] {
            std::uint64_t moved = 0;
            Require(KORO_FileAdapter_Read(above, fileSize, 0, bytes.data(), &moved));
        },
        microsecond);
    PrintRow(
        effort, ("file written" + blocks).c_str(),
        [&] {
            MoveBlocks(port, blockSize, [&](std::uint64_t offset) {
                port.Write(blockAddress, bytes.data() + offset, blockSize);
            });
        },
        [&] { check(below.write(text, 0, fileSize, "User")); },
        [&] { Require(KORO_FileAdapter_Write(above, bytes.data(), fileSize, 0)); }, microsecond);
    Require(KORO_FileAdapter_Destruct(above));
}

std::uint64_t AddressOf(std::size_t record)
{
    return 8 * record;
}

// Plain features, and features with a register for each entry of a selector.
std::string DescribedSettings()
{
    const std::string stored = "<Streamable>Yes</Streamable>";
    std::string nodes;
    std::string features;
    std::string selected;
    const auto add = [&](const std::string& name, std::uint64_t address, const std::string& elements) {
        nodes += Register(name, address, "RW", stored + elements);
        features += "<pFeature>" + name + "</pFeature>";
    };
    for (std::size_t plain = 0; plain < numPlain; ++plain)
        add("Plain" + std::to_string(plain), AddressOf(plain), "");
    for (std::size_t feature = 0; feature < numSelected; ++feature)
    {
        const std::string name = "Selected" + std::to_string(feature);
        add(name, AddressOf(numPlain + feature * numSelectors), "<pIndex Offset=\"8\">Selector</pIndex>");
        selected += "<pSelected>" + name + "</pSelected>";
    }
    std::vector<std::string> entries;
    for (std::size_t entry = 0; entry < numSelectors; ++entry)
        entries.push_back("Place" + std::to_string(entry));
    return Described(
        "<Category Name=\"Root\">" + features + "</Category>" +
        Choice("Selector", entries, "<Value>0</Value>" + selected) + nodes);
}

class TemporaryFile
{
public:
    TemporaryFile()
        : path((std::filesystem::temp_directory_path() / ("koro_bench_settings_" + std::to_string(getpid()))).string())
    {}
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile()
    {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }

    const std::string path;
};

void PrintSettings(const Effort& effort)
{
    const std::string xml = DescribedSettings();
    const ServedDescription served(xml);
    const DirectPort port;
    const RuntimeMap runtime(xml, port);
    Tree tree;
    const KORO_NodeMapHandle map = NodeMapOf(tree.OpenDevice(0));
    const TemporaryFile file;
    std::uint64_t value = 0;
    const Step readAll = [&] {
        for (std::size_t record = 0; record < numRecords; ++record)
            port.Read(AddressOf(record), &value, sizeof value);
    };
    PrintRow(
        effort, "settings stored", readAll,
        [&] {
            CFeatureBag bag;
            bag.StoreToBag(runtime.Get());
            std::ofstream(file.path, std::ios::binary) << bag;
        },
        [&] { Require(KORO_NodeMap_StoreToFile(map, file.path.c_str(), file.path.size() + 1)); }, microsecond);
    // Each value is read back.
    PrintRow(
        effort, "settings loaded",
        [&] {
            for (std::size_t record = 0; record < numRecords; ++record)
                port.Write(AddressOf(record), &value, sizeof value);
            readAll();
        },
        [&] {
            std::ifstream stream(file.path, std::ios::binary);
            CFeatureBag bag;
            stream >> bag;
            if (!bag.LoadFromBag(runtime.Get())) throw std::runtime_error("the settings were refused");
        },
        [&] { Require(KORO_NodeMap_LoadFromFile(map, file.path.c_str(), file.path.size() + 1)); }, microsecond);
}

// Features with a register for each of two values of one selector. The producer keeps all registers in 4 KiB; none of
// these overlaps the selector there.
std::string DescribedBehindOneSelector(std::size_t count)
{
    std::string names;
    std::string selected;
    std::string nodes;
    for (std::size_t number = 0; number < count; ++number)
    {
        const std::string name = "Feature" + std::to_string(number);
        names += "<pFeature>" + name + "</pFeature>";
        selected += "<pSelected>" + name + "</pSelected>";
        nodes += "<Integer Name=\"" + name + "\"><Streamable>Yes</Streamable><pValue>" + name +
                 "Reg</pValue></Integer>" +
                 Register(name + "Reg", 32 * number, "RW", "<pIndex Offset=\"8\">Selector</pIndex>");
    }
    return Described(
        "<Category Name=\"Root\">" + names + "</Category><Integer Name=\"Selector\"><pValue>SelectorReg</pValue>" +
        "<Min>0</Min><Max>1</Max>" + selected + "</Integer>" + Register("SelectorReg", 16, "RW") + nodes);
}

// Features that are bits of one register.
std::string DescribedInOneRegister(std::size_t count)
{
    std::string names;
    std::string nodes;
    for (std::size_t number = 0; number < count; ++number)
    {
        const std::string name = "Feature" + std::to_string(number);
        names += "<pFeature>" + name + "</pFeature>";
        nodes += "<Integer Name=\"" + name + "\"><Streamable>Yes</Streamable><pValue>" + name +
                 "Reg</pValue></Integer><MaskedIntReg Name=\"" + name +
                 "Reg\"><Address>0</Address><Length>8</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Bit>" +
                 std::to_string(number % 64) + "</Bit><Endianess>LittleEndian</Endianess></MaskedIntReg>";
    }
    return Described("<Category Name=\"Root\">" + names + "</Category>" + nodes);
}

// Microseconds for one of the features: stored, loaded.
std::vector<double> OneFeatureOf(const std::string& xml, std::size_t count)
{
    const ServedDescription served(xml);
    Tree tree;
    const KORO_NodeMapHandle map = NodeMapOf(tree.OpenDevice(0));
    const TemporaryFile file;
    const auto store = [&] { Require(KORO_NodeMap_StoreToFile(map, file.path.c_str(), file.path.size() + 1)); };
    const auto load = [&] { Require(KORO_NodeMap_LoadFromFile(map, file.path.c_str(), file.path.size() + 1)); };
    store(); // the first use creates the nodes
    const double scale = microsecond * static_cast<double>(count);
    return {ProcessorNanosecondsPerCall(1, store) / scale, ProcessorNanosecondsPerCall(1, load) / scale};
}

void PrintGrowth(const char* title, std::string (*describe)(std::size_t), bool quick)
{
    const std::size_t few = quick ? 50 : 2000;
    std::vector<std::vector<double>> columns;
    std::printf("\n%-34s", title);
    for (const std::size_t count : {few, 2 * few, 4 * few})
    {
        columns.push_back(OneFeatureOf(describe(count), count));
        std::printf(" %10zu", count);
    }
    const char* const names[] = {"settings stored", "settings loaded"};
    for (std::size_t row = 0; row < 2; ++row)
    {
        std::printf("\n%-34s", names[row]);
        for (const std::vector<double>& column : columns)
            std::printf(" %10.1f", column[row]);
    }
    std::printf("\n");
}

} // namespace

int main(int argc, char** argv)
{
    Effort effort = EffortFromArguments(argc, argv);
    effort.iterations = effort.rounds == 1 ? 1 : 20;
    try
    {
        PrintRoads("us");
        PrintTransfers(effort, 65536);
        PrintTransfers(effort, 512);
        PrintSettings(effort);
        PrintGrowth("us per feature behind one selector", DescribedBehindOneSelector, effort.rounds == 1);
        PrintGrowth("us per feature in one register", DescribedInOneRegister, effort.rounds == 1);
    }
    catch (const std::exception& exception)
    {
        std::fprintf(stderr, "bench_files: %s\n", exception.what());
        return 1;
    }
    return 0;
}
