// Files and settings of the simulated cameras, through the exports.
#include "tests/support/boundary.h"
#include "tests/support/environment_variable.h"
#include "tests/support/scripted_producer.h"
#include "tests/support/temporary_folder.h"

#include <cstdint>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Bytes = std::vector<std::uint8_t>;

// One of the cameras that are there without settings, by its place.
class SimulatedCamera
{
public:
    SimulatedCamera(std::size_t interfaceIndex, std::size_t deviceIndex)
        : tree(BuiltProducer("zvr_koro_simulator"), interfaceIndex, deviceIndex)
    {
        const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
        map = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
    }

    KORO_FileAdapterHandle File(const std::string& name) const
    {
        return Get<KORO_FileAdapterHandle>(KORO_FileAdapter_Construct, map, name.c_str(), name.size() + 1);
    }

    KORO_NodeMapHandle map = nullptr;

private:
    const EnvironmentVariable settings{"KORO_SIMULATOR_CONFIG", ""};
    const KoroLibrary library;
    const OpenTree tree;
};

struct Place
{
    std::size_t interface;
    std::size_t device;
};

class SimulatedFiles : public testing::TestWithParam<Place>
{
protected:
    static Bytes Read(KORO_FileAdapterHandle file, std::uint64_t size, std::uint64_t offset = 0)
    {
        Bytes bytes(size);
        std::uint64_t count = 0;
        EXPECT_EQ(Outcome(KORO_FileAdapter_Read(file, size, offset, bytes.data(), &count)), Error{});
        EXPECT_EQ(count, size);
        return bytes;
    }
    static std::uint64_t SizeOf(KORO_FileAdapterHandle file)
    {
        return Get<std::uint64_t>(KORO_FileAdapter_GetSize, file);
    }

    const SimulatedCamera camera{GetParam().interface, GetParam().device};
};

} // namespace

TEST_P(SimulatedFiles, LongFileIsReadBlockByBlockWholeAndFromTheMiddle)
{
    const auto file = camera.File("CalibrationData");
    ASSERT_EQ(SizeOf(file), 300'001u);
    Bytes expected(300'001);
    for (std::size_t i = 0; i < expected.size(); ++i)
        expected[i] = static_cast<std::uint8_t>(7 * i + i / 256);
    EXPECT_TRUE(Read(file, expected.size()) == expected);
    EXPECT_TRUE(Read(file, 100'000, 123'456) == Bytes(expected.begin() + 123'456, expected.begin() + 223'456));
    Bytes tail(10);
    std::uint64_t count = 0;
    EXPECT_EQ(KORO_FileAdapter_Read(file, 10, 299'999, tail.data(), &count), KORO_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_EQ(count, 2u);
    EXPECT_EQ(tail[1], expected.back());
}

TEST_P(SimulatedFiles, UsersFileIsWrittenReadAndDeleted)
{
    const auto file = camera.File("UserFile");
    EXPECT_EQ(SizeOf(file), 0u);
    EXPECT_EQ(Get<std::uint64_t>(KORO_FileAdapter_GetMaxSize, file), 33'554'432u);
    Bytes content(200'003);
    for (std::size_t i = 0; i < content.size(); ++i)
        content[i] = static_cast<std::uint8_t>(i * 31 + i / 1000);
    EXPECT_EQ(Outcome(KORO_FileAdapter_Write(file, content.data(), content.size(), 0)), Error{});
    EXPECT_EQ(SizeOf(file), content.size());
    EXPECT_TRUE(Read(file, content.size()) == content);

    const Bytes patch(5, 0xaa);
    EXPECT_EQ(Outcome(KORO_FileAdapter_Write(file, patch.data(), patch.size(), 100'000)), Error{});
    std::copy(patch.begin(), patch.end(), content.begin() + 100'000);
    EXPECT_TRUE(Read(file, content.size()) == content);

    EXPECT_EQ(KORO_FileAdapter_Write(file, patch.data(), patch.size(), 33'554'430), KORO_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_EQ(Outcome(KORO_FileAdapter_Delete(file)), Error{});
    EXPECT_EQ(SizeOf(file), 0u);
}

TEST_P(SimulatedFiles, FileThatIsReadOnlyTakesNothing)
{
    const auto file = camera.File("FactoryData");
    const Bytes before = Read(file, SizeOf(file));
    const std::uint8_t byte = 0;
    EXPECT_NE(KORO_FileAdapter_Write(file, &byte, 1, 0), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(Outcome(KORO_FileAdapter_Delete(file)), Error{}) << "which does not tell";
    EXPECT_EQ(Read(file, SizeOf(file)), before);
}

TEST_P(SimulatedFiles, FileThatIsNotAvailableIsToldByWords)
{
    std::uint64_t size = 0;
    EXPECT_EQ(
        Outcome(KORO_FileAdapter_GetSize(camera.File("MemoryCard"), &size)),
        (Error{KORO_RETURN_CODE_BAD_ACCESS, "File selector entry not available!"}));
}

TEST_P(SimulatedFiles, SettingsAreStoredAndBroughtBack)
{
    const TemporaryFolder folder;
    const auto store = [&](const std::string& name) {
        const std::string path = folder.File(name);
        EXPECT_EQ(Outcome(KORO_NodeMap_StoreToFile(camera.map, path.c_str(), path.size() + 1)), Error{});
        std::ifstream file(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    };
    const std::string before = store("before");
    EXPECT_NE(before.find("\nWidth\t"), std::string::npos);

    const auto node = Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, camera.map, "Width", sizeof "Width");
    const auto width = Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, node);
    const auto former = Get<std::int64_t>(KORO_IntegerNode_GetValue, width, KORO_NODE_CACHE_POLICY_USE_CACHE);
    Require(KORO_IntegerNode_SetValue(width, Get<std::int64_t>(KORO_IntegerNode_GetMinimum, width)));
    EXPECT_NE(store("changed"), before);

    const std::string path = folder.File("before");
    EXPECT_EQ(Outcome(KORO_NodeMap_LoadFromFile(camera.map, path.c_str(), path.size() + 1)), Error{});
    EXPECT_EQ(Get<std::int64_t>(KORO_IntegerNode_GetValue, width, KORO_NODE_CACHE_POLICY_USE_CACHE), former);
    EXPECT_EQ(store("after"), before);
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, SimulatedFiles, testing::Values(Place{0, 0}, Place{0, 1}, Place{1, 0}));

} // namespace koro::test
