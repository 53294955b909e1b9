// Whole descriptions, queried for every property of every node: those of the simulated cameras, and, where
// KORO_REFERENCE_DATA names the folder that holds them, those of real cameras.
#include "tests/boundary/described_camera.h"
#include "tests/support/environment_variable.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace koro::test
{

namespace
{

using WholeDescriptions = DescribedCamera;

// Node by node; registers may fail, and the last error then has a text.
class Questions
{
public:
    explicit Questions(KORO_NodeMapHandle askedMap) : map(askedMap) {}

    void AskAll()
    {
        const auto count = Get<std::size_t>(KORO_NodeMap_GetNumNodes, map);
        EXPECT_GT(count, 0u);
        for (std::size_t index = 0; index < count; ++index)
        {
            const auto node = Get<KORO_NodeHandle>(KORO_NodeMap_GetNode, map, index);
            const std::string name = GetText(KORO_Node_GetName, node);
            SCOPED_TRACE(name);
            EXPECT_TRUE(names.insert(name).second);
            EXPECT_EQ(Get<KORO_NodeHandle>(KORO_NodeMap_FindNode, map, name.c_str(), name.size() + 1), node);
            AskAttributes(node);
            AskLists(node, name);
            AskType(node);
        }
    }

    std::size_t failures = 0; // of registers

private:
    static void AskAttributes(KORO_NodeHandle node)
    {
        for (const auto getText : {KORO_Node_GetDisplayName, KORO_Node_GetToolTip, KORO_Node_GetDescription})
            GetText(getText, node);
        for (const auto getFlag :
             {KORO_Node_GetIsFeature, KORO_Node_GetIsDeprecated, KORO_Node_GetIsStreamable, KORO_Node_GetIsCacheable,
              KORO_Node_GetIsAccessStatusCacheable})
            EXPECT_LE(Get<KORO_Bool8>(getFlag, node), 1);
        EXPECT_LE(Get<KORO_NodeNamespace>(KORO_Node_GetNamespace, node), KORO_NODE_NAMESPACE_UNDEFINED);
        EXPECT_LE(Get<KORO_NodeCachingMode>(KORO_Node_GetCachingMode, node), KORO_NODE_CACHING_MODE_UNDEFINED);
        EXPECT_GE(Get<std::int64_t>(KORO_Node_GetPollingTime, node), -1);
        EXPECT_LE(Get<KORO_NodeVisibility>(KORO_Node_GetVisibility, node), KORO_NODE_VISIBILITY_UNDEFINED);
    }

    void AskLists(KORO_NodeHandle node, const std::string& name)
    {
        const std::pair<decltype(&KORO_Node_GetNumSelectedNodes), decltype(&KORO_Node_GetSelectedNode)> lists[] = {
            {KORO_Node_GetNumInvalidatedNodes, KORO_Node_GetInvalidatedNode},
            {KORO_Node_GetNumInvalidatingNodes, KORO_Node_GetInvalidatingNode},
            {KORO_Node_GetNumSelectedNodes, KORO_Node_GetSelectedNode},
            {KORO_Node_GetNumSelectingNodes, KORO_Node_GetSelectingNode}};
        for (const auto& [getCount, getNode] : lists)
        {
            const auto count = Get<std::size_t>(getCount, node);
            if (count == 0) continue;
            EXPECT_NE(Get<KORO_NodeHandle>(getNode, node, count - 1), nullptr);
        }
        // Selecting is the other direction of being selected.
        for (std::size_t index = 0; index < Get<std::size_t>(KORO_Node_GetNumSelectedNodes, node); ++index)
        {
            const auto selected = Get<KORO_NodeHandle>(KORO_Node_GetSelectedNode, node, index);
            if (Get<std::size_t>(KORO_Node_GetNumSelectedNodes, selected) == 0) continue;
            EXPECT_EQ(Get<KORO_NodeHandle>(KORO_Node_FindSelectingNode, selected, name.c_str(), name.size() + 1), node);
        }
    }

    void AskType(KORO_NodeHandle node)
    {
        const auto type = Get<KORO_NodeType>(KORO_Node_GetType, node);
        EXPECT_GE(type, 0);
        EXPECT_LE(type, KORO_NODE_TYPE_OTHER);
        KORO_IntegerNodeHandle integer = nullptr;
        EXPECT_EQ(KORO_Node_ToIntegerNode(node, &integer) == KORO_RETURN_CODE_SUCCESS, type == KORO_NODE_TYPE_INTEGER);

        KORO_NodeAccessStatus status = -1;
        if (KORO_Node_GetAccessStatus(node, &status) == KORO_RETURN_CODE_SUCCESS)
        {
            EXPECT_GE(status, 0);
            EXPECT_LE(status, KORO_NODE_ACCESS_STATUS_CYCLE_DETECTED);
            return;
        }
        ++failures;
        EXPECT_NE(LastError().text, "");
    }

    KORO_NodeMapHandle map;
    std::set<std::string> names;
};

std::string ContentOf(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

} // namespace

TEST(SimulatedCameras, TellEverythingOfEveryNodeOfEveryModule)
{
    const EnvironmentVariable settings("KORO_SIMULATOR_CONFIG", "");
    const KoroLibrary library;
    const OpenTree tree(BuiltProducer("zvr_koro_simulator"));
    for (const auto module :
         {Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system),
          Get<KORO_ModuleHandle>(KORO_Interface_ToModule, tree.interface),
          Get<KORO_ModuleHandle>(KORO_Device_ToModule, tree.device),
          Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, tree.stream),
          Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice)})
    {
        ASSERT_EQ(Get<std::size_t>(KORO_Module_GetNumNodeMaps, module), 1u);
        Questions questions(Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0}));
        questions.AskAll();
        EXPECT_EQ(questions.failures, 0u);
    }
}

// Their registers do not exist, so many access states cannot be determined; but nothing breaks.
TEST_F(WholeDescriptions, OfRealCamerasTellEverythingOfEveryNode)
{
    const char* const data = std::getenv("KORO_REFERENCE_DATA");
    if (!data) GTEST_SKIP() << "KORO_REFERENCE_DATA does not name a folder";
    std::size_t asked = 0;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(data) / "camera-descriptions"))
    {
        if (entry.path().extension() != ".xml") continue;
        SCOPED_TRACE(entry.path().filename().string());
        DescribeBy(ContentOf(entry.path()));
        producer->KeepJournal(false);
        Questions(NodeMapOf(tree.remoteDevice)).AskAll();
        ++asked;
    }
    EXPECT_GT(asked, 0u);
}

} // namespace koro::test
