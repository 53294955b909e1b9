// Node maps and nodes through the C++ face, over registers of a scripted camera.
#include "tests/boundary/chunk_test.h"
#include "tests/boundary/described_camera.h"
#include "tests/boundary/event_nodes_test.h"
#include "tests/support/in_thread.h"
#include "tests/tool/koro_tree.h"
#include <koro/koro.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <type_traits>

namespace
{

using koro::CachePolicy;
using koro::test::CallsOf;
using koro::test::CodeOf;
using koro::test::DescriptionOf;
using koro::test::InThread;
using koro::test::IntRegister;
using koro::test::ScriptedProducer;
using koro::test::Tree;
using testing::ElementsAre;
using testing::IsEmpty;

// A producer whose first camera has these nodes.
class CameraOf : public ScriptedProducer
{
public:
    explicit CameraOf(const std::string& nodes)
    {
        (*this)->Edit([&](scripted::Tree& edited) {
            koro::test::DescribePort(edited.interfaces[0]->devices[0]->remotePort, DescriptionOf(nodes));
        });
    }
};

std::vector<std::string> NamesOf(const std::vector<koro::Node>& nodes)
{
    std::vector<std::string> names;
    for (const koro::Node& node : nodes)
        names.push_back(node.Name());
    return names;
}

const std::string limitedInteger =
    "<Integer Name=\"Size\"><Value>8</Value><Min>4</Min><Max>64</Max><Inc>4</Inc><Unit>pixel</Unit>"
    "<Representation>Logarithmic</Representation></Integer>";

TEST(KoroNodeMap, NodesAreFoundByNameOrNot)
{
    const CameraOf producer(koro::test::oneOfEach);
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    EXPECT_TRUE(map.HasNode("Integer"));
    EXPECT_FALSE(map.HasNode("integer"));
    EXPECT_EQ(map.Node("Float").Name(), "Float");
    EXPECT_EQ(map.TryNode("Float"), map.Node("Float"));
    EXPECT_FALSE(map.TryNode("Nothing"));
    EXPECT_THAT(
        NamesOf(map.Nodes()),
        testing::IsSupersetOf({"Category", "Integer", "EnumEntry_Enumeration_On", "Plain", "Device"}));
    EXPECT_EQ(map.Node("Float").ParentNodeMap(), map);
    try
    {
        map.Node("Nothing");
        FAIL() << "no error";
    }
    catch (const koro::Error& error)
    {
        EXPECT_EQ(error.Code(), KORO_RETURN_CODE_NOT_FOUND);
        EXPECT_STREQ(error.what(), "There is no node with the given name (Nothing)!");
    }
}

TEST(KoroNodeMap, EveryModuleHasItsMaps)
{
    const ScriptedProducer producer;
    const Tree tree(producer.Path());
    EXPECT_EQ(tree.system.NodeMaps().size(), 1u);
    EXPECT_EQ(tree.firstInterface.NodeMaps().size(), 1u);
    EXPECT_EQ(tree.device.NodeMaps().size(), 1u);
    EXPECT_EQ(tree.stream.NodeMaps().size(), 1u);
    EXPECT_EQ(tree.device.RemoteDevice().NodeMaps().at(0), tree.device.RemoteDevice().NodeMap());
    EXPECT_NE(tree.device.NodeMap(), tree.device.RemoteDevice().NodeMap());
    EXPECT_EQ(CodeOf([&] { tree.device.NodeMap(1); }), KORO_RETURN_CODE_OUT_OF_RANGE);
}

TEST(KoroNodeMap, BrokenDescriptionIsToldByTheFirstUse)
{
    const ScriptedProducer producer;
    producer->Edit([](scripted::Tree& edited) {
        koro::test::DescribePort(edited.interfaces[0]->devices[0]->remotePort, "<no description");
    });
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    EXPECT_EQ(CodeOf([&] { map.HasNode("Width"); }), KORO_RETURN_CODE_ERROR);
}

TEST(KoroNodeMap, ViewEndsWithItsModule)
{
    const CameraOf producer(koro::test::oneOfEach);
    Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    const koro::IntegerNode node = map.Integer("Integer");
    static_assert(std::is_copy_constructible_v<koro::IntegerNode>);
    tree.stream.Close();
    tree.device.Close();
    EXPECT_EQ(CodeOf([&] { map.Nodes(); }), KORO_RETURN_CODE_INVALID_HANDLE);
    EXPECT_EQ(CodeOf([&] { node.Value(); }), KORO_RETURN_CODE_INVALID_HANDLE);
}

TEST(KoroNodeMap, LockKeepsOtherThreadsOutUntilItsEnd)
{
    const CameraOf producer(koro::test::oneOfEach);
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    const auto freeElsewhere = [&] { return InThread([&] { return map.TryLock().has_value(); }); };
    {
        const koro::NodeMapLock lock = map.Lock();
        const koro::NodeMapLock again = map.Lock();
        EXPECT_FALSE(freeElsewhere());
    }
    EXPECT_TRUE(freeElsewhere());
    std::optional<koro::NodeMapLock> tried = map.TryLock();
    ASSERT_TRUE(tried);
    EXPECT_FALSE(freeElsewhere());
    tried.reset();
    EXPECT_TRUE(freeElsewhere());
}

TEST(KoroNodeMap, InvalidationAndPollingDropWhatIsRemembered)
{
    const CameraOf producer(IntRegister("Polled", 0, "<PollingTime>10</PollingTime>") + IntRegister("Other", 4));
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    EXPECT_EQ(map.Node("Polled").PollingTime_ms(), 10);
    EXPECT_EQ(map.Node("Other").PollingTime_ms(), -1);
    const auto readBoth = [&] {
        producer->ClearJournal();
        map.Integer("Polled").Value();
        map.Integer("Other").Value();
        return CallsOf(producer->Journal(), {"GCReadPort"}).size();
    };
    EXPECT_EQ(readBoth(), 2u);
    EXPECT_EQ(readBoth(), 0u);
    map.PollNodes(10);
    EXPECT_EQ(readBoth(), 1u);
    map.InvalidateNodes();
    EXPECT_EQ(readBoth(), 2u);
}

TEST(KoroNode, TellsWhatItIs)
{
    const CameraOf producer(
        "<Category Name=\"Root\"><pFeature>Size</pFeature></Category>"
        "<Integer Name=\"Size\" NameSpace=\"Standard\"><ToolTip>tip</ToolTip><Description>long</Description>"
        "<DisplayName>The size</DisplayName><Visibility>Guru</Visibility><IsDeprecated>Yes</IsDeprecated>"
        "<ImposedAccessMode>RO</ImposedAccessMode><Streamable>Yes</Streamable><Value>1</Value></Integer>");
    const Tree tree(producer.Path());
    const koro::Node node = tree.device.RemoteDevice().NodeMap().Node("Size");
    EXPECT_EQ(node.DisplayName(), "The size");
    EXPECT_EQ(node.ToolTip(), "tip");
    EXPECT_EQ(node.Description(), "long");
    EXPECT_EQ(node.Namespace(), KORO_NODE_NAMESPACE_STANDARD);
    EXPECT_EQ(node.Visibility(), KORO_NODE_VISIBILITY_GURU);
    EXPECT_EQ(node.Type(), KORO_NODE_TYPE_INTEGER);
    EXPECT_EQ(node.AccessStatus(), KORO_NODE_ACCESS_STATUS_READ_ONLY);
    EXPECT_TRUE(node.IsFeature());
    EXPECT_TRUE(node.IsDeprecated());
    EXPECT_TRUE(node.IsStreamable());
    EXPECT_TRUE(node.IsImplemented());
    EXPECT_TRUE(node.IsAvailable());
    EXPECT_TRUE(node.IsReadable());
    EXPECT_FALSE(node.IsWritable());
    EXPECT_TRUE(node.IsCacheable());
    EXPECT_TRUE(node.IsAccessStatusCacheable());
    EXPECT_EQ(node.CachingMode(), KORO_NODE_CACHING_MODE_WRITE_THROUGH);
}

TEST(KoroNode, AccessIsToldInWords)
{
    const auto integer = [](const std::string& name, const std::string& elements) {
        return "<Integer Name=\"" + name + "\">" + elements + "<Value>1</Value></Integer>";
    };
    const CameraOf producer(
        integer("No", "") + "<Integer Name=\"Zero\"><Value>0</Value></Integer>" +
        integer("Absent", "<pIsImplemented>Zero</pIsImplemented>") +
        integer("Off", "<pIsAvailable>Zero</pIsAvailable>") +
        integer("WriteOnly", "<ImposedAccessMode>WO</ImposedAccessMode>"));
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    const auto words = [&](const std::string& name) {
        const koro::Node node = map.Node(name);
        return std::vector<bool>{node.IsImplemented(), node.IsAvailable(), node.IsReadable(), node.IsWritable()};
    };
    EXPECT_THAT(words("No"), ElementsAre(true, true, true, true));
    EXPECT_THAT(words("Absent"), ElementsAre(false, false, false, false));
    EXPECT_THAT(words("Off"), ElementsAre(true, false, false, false));
    EXPECT_THAT(words("WriteOnly"), ElementsAre(true, true, false, true));
}

TEST(KoroNode, RelationsAreListsAndNames)
{
    const CameraOf producer("<Integer Name=\"Outer\"><Value>0</Value><pSelected>Selector</pSelected></Integer>"
                            "<Integer Name=\"Selector\"><Value>0</Value><pSelected>Level</pSelected></Integer>"
                            "<Integer Name=\"Level\"><pInvalidator>Mode</pInvalidator><Value>1</Value></Integer>"
                            "<Integer Name=\"Mode\"><Value>1</Value></Integer>");
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    const koro::Node selector = map.Node("Selector");
    const koro::Node level = map.Node("Level");
    const koro::Node mode = map.Node("Mode");
    EXPECT_THAT(NamesOf(selector.SelectedNodes()), ElementsAre("Level"));
    EXPECT_EQ(selector.SelectedNode("Level"), level);
    EXPECT_THAT(NamesOf(level.InvalidatingNodes()), ElementsAre("Mode", "Selector"));
    EXPECT_EQ(level.InvalidatingNode("Mode"), mode);
    EXPECT_THAT(NamesOf(mode.InvalidatedNodes()), ElementsAre("Level"));
    EXPECT_EQ(mode.InvalidatedNode("Level"), level);
    EXPECT_THAT(NamesOf(selector.SelectingNodes()), ElementsAre("Outer"));
    EXPECT_EQ(selector.SelectingNode("Outer"), map.Node("Outer"));
    EXPECT_EQ(CodeOf([&] { level.SelectedNode("Mode"); }), KORO_RETURN_CODE_NOT_FOUND);
}

TEST(KoroNode, CastToAnotherTypeIsRefused)
{
    const CameraOf producer(koro::test::oneOfEach);
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    EXPECT_EQ(map.Node("Integer").ToInteger().Node(), map.Node("Integer"));
    EXPECT_EQ(map.Float("Float").Node(), map.Node("Float"));
    EXPECT_EQ(map.Boolean("Boolean").Node(), map.Node("Boolean"));
    EXPECT_EQ(map.Command("Command").Node(), map.Node("Command"));
    EXPECT_EQ(map.String("String").Node(), map.Node("String"));
    EXPECT_EQ(map.Register("Register").Node(), map.Node("Register"));
    EXPECT_EQ(map.Category("Category").Node(), map.Node("Category"));
    EXPECT_EQ(map.Enumeration("Enumeration").Node(), map.Node("Enumeration"));
    EXPECT_EQ(CodeOf([&] { map.Float("Integer"); }), KORO_RETURN_CODE_INVALID_CAST);
    EXPECT_EQ(CodeOf([&] { map.Node("Plain").ToEnumerationEntry(); }), KORO_RETURN_CODE_INVALID_CAST);
}

TEST(KoroNode, NodeWithAValueIsUsableAsANode)
{
    const CameraOf producer(koro::test::oneOfEach + IntRegister("Size", 0));
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    const koro::FloatNode number = map.Float("Float");
    const koro::Node node = number;
    EXPECT_EQ(node, map.Node("Float"));
    EXPECT_THAT(NamesOf({number, map.Command("Command"), map.Enumeration("Enumeration")}),
                ElementsAre("Float", "Command", "Enumeration"));
    EXPECT_EQ(number.Name(), "Float");
    EXPECT_EQ(number.DisplayName(), node.DisplayName());
    EXPECT_EQ(number.Type(), KORO_NODE_TYPE_FLOAT);
    EXPECT_EQ(number.AccessStatus(), node.AccessStatus());
    EXPECT_TRUE(number.IsImplemented());
    EXPECT_TRUE(number.IsAvailable());
    EXPECT_TRUE(number.IsReadable());
    EXPECT_EQ(number.IsWritable(), node.IsWritable());
    int changes = 0;
    const koro::Registration news = map.Integer("Size").OnChanged([&](koro::Node) { ++changes; });
    map.Integer("Size").SetValue(3);
    EXPECT_EQ(changes, 1);
}

TEST(KoroNode, ChangesArriveUntilTheRegistrationEnds)
{
    const CameraOf producer(IntRegister("Size", 0));
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    std::vector<std::string> changed;
    koro::Registration news = map.Node("Size").OnChanged([&](koro::Node node) { changed.push_back(node.Name()); });
    EXPECT_THAT(changed, IsEmpty());
    map.Integer("Size").SetValue(3);
    EXPECT_THAT(changed, ElementsAre("Size"));
    news.End();
    map.Integer("Size").SetValue(4);
    EXPECT_THAT(changed, ElementsAre("Size"));
    EXPECT_EQ(
        CodeOf([&] { static_cast<void>(map.Node("Size").OnChanged(nullptr)); }), KORO_RETURN_CODE_INVALID_ARGUMENT);
}

TEST(KoroNode, FunctionThatEndsItsRegistrationLivesUntilItReturns)
{
    const CameraOf producer(IntRegister("Size", 0));
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    auto captured = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = captured;
    koro::Registration news;
    std::vector<bool> lived;
    news = map.Node("Size").OnChanged([&, captured = std::move(captured)](koro::Node) {
        const auto& watchedHere = watched;
        auto& livedHere = lived;
        news.End();
        livedHere.push_back(!watchedHere.expired());
    });
    map.Integer("Size").SetValue(3);
    EXPECT_THAT(lived, ElementsAre(true));
    EXPECT_TRUE(watched.expired());
    map.Integer("Size").SetValue(4);
    EXPECT_THAT(lived, ElementsAre(true));
}

TEST(KoroIntegerNode, ValueAndItsLimits)
{
    const CameraOf producer(
        limitedInteger + "<Integer Name=\"Listed\"><Value>1</Value><ValidValueSet>1;3;9</ValidValueSet></Integer>");
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    const koro::IntegerNode size = map.Integer("Size");
    EXPECT_EQ(size.Value(), 8);
    EXPECT_EQ(size.Minimum(), 4);
    EXPECT_EQ(size.Maximum(), 64);
    EXPECT_EQ(size.Increment(), 4);
    EXPECT_EQ(size.IncrementType(), KORO_NODE_INCREMENT_TYPE_FIXED);
    EXPECT_EQ(size.Representation(), KORO_NODE_REPRESENTATION_LOGARITHMIC);
    EXPECT_EQ(size.Unit(), "pixel");
    EXPECT_THAT(size.ValidValues(), IsEmpty());
    EXPECT_THAT(map.Integer("Listed").ValidValues(), ElementsAre(1, 3, 9));
    size.SetValue(12);
    EXPECT_EQ(size.Value(), 12);
    EXPECT_EQ(CodeOf([&] { size.SetValue(13); }), KORO_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_EQ(CodeOf([&] { size.SetValue(68); }), KORO_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_EQ(size.Value(), 12);
}

TEST(KoroIntegerNode, CachePolicyDecidesWhetherTheDeviceIsAsked)
{
    const CameraOf producer(IntRegister("Size", 0));
    const Tree tree(producer.Path());
    const koro::IntegerNode size = tree.device.RemoteDevice().NodeMap().Integer("Size");
    size.Value();
    producer->ClearJournal();
    size.Value(CachePolicy::UseCache);
    EXPECT_EQ(CallsOf(producer->Journal(), {"GCReadPort"}).size(), 0u);
    size.Value(CachePolicy::IgnoreCache);
    EXPECT_EQ(CallsOf(producer->Journal(), {"GCReadPort"}).size(), 1u);
}

TEST(KoroFloatNode, ValueAndItsLimits)
{
    const CameraOf producer(
        "<Float Name=\"Gain\"><Value>1.5</Value><Min>-2</Min><Max>6</Max><Inc>0.5</Inc><Unit>dB</Unit>"
        "<Representation>Linear</Representation><DisplayNotation>Fixed</DisplayNotation>"
        "<DisplayPrecision>3</DisplayPrecision></Float>"
        "<Float Name=\"Free\"><Value>1</Value></Float>");
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    const koro::FloatNode gain = map.Float("Gain");
    EXPECT_EQ(gain.Value(), 1.5);
    EXPECT_EQ(gain.Minimum(), -2);
    EXPECT_EQ(gain.Maximum(), 6);
    EXPECT_TRUE(gain.HasConstantIncrement());
    EXPECT_EQ(gain.Increment(), 0.5);
    EXPECT_EQ(gain.IncrementType(), KORO_NODE_INCREMENT_TYPE_FIXED);
    EXPECT_THAT(gain.ValidValues(), IsEmpty());
    EXPECT_EQ(gain.Representation(), KORO_NODE_REPRESENTATION_LINEAR);
    EXPECT_EQ(gain.Unit(), "dB");
    EXPECT_EQ(gain.DisplayNotation(), KORO_NODE_DISPLAY_NOTATION_FIXED);
    EXPECT_EQ(gain.DisplayPrecision(), 3);
    gain.SetValue(-0.5);
    EXPECT_EQ(gain.Value(CachePolicy::IgnoreCache), -0.5);
    EXPECT_EQ(CodeOf([&] { gain.SetValue(6.5); }), KORO_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_FALSE(map.Float("Free").HasConstantIncrement());
    EXPECT_EQ(CodeOf([&] { map.Float("Free").Increment(); }), KORO_RETURN_CODE_ERROR);
}

TEST(KoroBooleanNode, ValueIsReadAndWritten)
{
    const CameraOf producer(koro::test::oneOfEach);
    const Tree tree(producer.Path());
    const koro::BooleanNode node = tree.device.RemoteDevice().NodeMap().Boolean("Boolean");
    EXPECT_TRUE(node.Value());
    node.SetValue(false);
    EXPECT_FALSE(node.Value(CachePolicy::IgnoreCache));
}

TEST(KoroCommandNode, ExecutesAndWaits)
{
    const CameraOf producer(
        IntRegister("Busy", 0, "<Cachable>NoCache</Cachable>") +
        "<Command Name=\"Go\"><pValue>Busy</pValue><CommandValue>1</CommandValue></Command>");
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    const koro::CommandNode go = map.Command("Go");
    go.Execute();
    EXPECT_FALSE(go.IsDone());
    EXPECT_EQ(CodeOf([&] { go.WaitUntilDone(0); }), KORO_RETURN_CODE_TIMEOUT);
    map.Integer("Busy").SetValue(0);
    go.WaitUntilDone(60000);
    go.WaitUntilDone();
    EXPECT_TRUE(go.IsDone());
}

TEST(KoroStringNode, TextIsReadAndWritten)
{
    const CameraOf producer(koro::test::oneOfEach);
    const Tree tree(producer.Path());
    const koro::StringNode node = tree.device.RemoteDevice().NodeMap().String("String");
    EXPECT_EQ(node.MaximumLength(), 8);
    node.SetValue("camera");
    EXPECT_EQ(node.Value(CachePolicy::IgnoreCache), "camera");
    node.SetValue("");
    EXPECT_EQ(node.Value(), "");
    EXPECT_EQ(CodeOf([&] { node.SetValue("far too long"); }), KORO_RETURN_CODE_OUT_OF_RANGE);
}

TEST(KoroRegisterNode, BytesAreReadAndWrittenWhole)
{
    const CameraOf producer(koro::test::oneOfEach);
    const Tree tree(producer.Path());
    const koro::RegisterNode node = tree.device.RemoteDevice().NodeMap().Register("Register");
    EXPECT_EQ(node.Address(), 0u);
    EXPECT_EQ(node.Length(), 8u);
    node.Write({1, 2, 3, 4, 5, 6, 7, 8});
    EXPECT_THAT(node.Read(), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
    EXPECT_NO_THROW(node.Write({}));
    EXPECT_THAT(node.Read(), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
}

TEST(KoroRegisterNode, AbsurdLengthIsRefusedBeforeMemoryIsAskedFor)
{
    const CameraOf producer(
        "<Integer Name=\"Length\"><Value>0x4000000000</Value></Integer>"
        "<Register Name=\"Register\"><Address>0</Address><pLength>Length</pLength><AccessMode>RW</AccessMode>"
        "<pPort>Device</pPort></Register>");
    const Tree tree(producer.Path());
    const koro::RegisterNode node = tree.device.RemoteDevice().NodeMap().Register("Register");
    try
    {
        node.Read();
        FAIL() << "no error";
    }
    catch (const koro::Error& error)
    {
        EXPECT_EQ(error.Code(), KORO_RETURN_CODE_ERROR);
        EXPECT_STREQ(error.what(), "A register claims a length of 274877906944 bytes!");
    }
}

TEST(KoroCategoryNode, ListsItsFeatures)
{
    const CameraOf producer(koro::test::oneOfEach);
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    EXPECT_THAT(NamesOf(map.Category("Category").SubNodes()), ElementsAre("Integer"));
}

TEST(KoroEnumerationNode, EntriesAreFoundAndChosen)
{
    const CameraOf producer("<Enumeration Name=\"Mode\"><EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry>"
                            "<EnumEntry Name=\"Once\"><Value>5</Value><IsSelfClearing>Yes</IsSelfClearing></EnumEntry>"
                            "<Value>0</Value></Enumeration>");
    const Tree tree(producer.Path());
    const koro::EnumerationNode mode = tree.device.RemoteDevice().NodeMap().Enumeration("Mode");
    ASSERT_EQ(mode.Entries().size(), 2u);
    const koro::EnumerationEntryNode once = mode.Entries().at(1);
    EXPECT_EQ(once.SymbolicValue(), "Once");
    EXPECT_EQ(once.Value(), 5);
    EXPECT_TRUE(once.IsSelfClearing());
    EXPECT_EQ(once.Node().ToEnumerationEntry(), once);
    EXPECT_EQ(mode.Entry(5), once);
    EXPECT_EQ(mode.Entry("Once"), once);
    EXPECT_EQ(mode.TryEntry(5), once);
    EXPECT_EQ(mode.TryEntry("Once"), once);
    EXPECT_FALSE(mode.TryEntry(7));
    EXPECT_FALSE(mode.TryEntry("Twice"));
    EXPECT_TRUE(mode.HasEntry(5));
    EXPECT_FALSE(mode.HasEntry("Twice"));
    EXPECT_EQ(CodeOf([&] { mode.Entry(7); }), KORO_RETURN_CODE_NOT_FOUND);

    EXPECT_EQ(mode.CurrentEntry().SymbolicValue(), "Off");
    mode.SetCurrentEntry(once);
    EXPECT_EQ(mode.CurrentEntry(), once);
    mode.SetCurrentEntry(0);
    EXPECT_EQ(mode.CurrentEntry(CachePolicy::IgnoreCache).SymbolicValue(), "Off");
    mode.SetCurrentEntry("Once");
    EXPECT_EQ(mode.CurrentEntry(), once);
    EXPECT_EQ(CodeOf([&] { mode.SetCurrentEntry("Twice"); }), KORO_RETURN_CODE_NOT_FOUND);
}

TEST(KoroNodeMap, ShowsTheChunksOfABuffer)
{
    const CameraOf producer(koro::test::ChunkFeature("Counter", "a1"));
    Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    scripted::Frame frame;
    frame.bytes = koro::test::GEVChunk(0xa1, koro::test::LittleEndian(7, 4));
    frame.info[GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA] = scripted::Bool8(true);
    std::string memory(frame.bytes.size(), ' ');
    const koro::Buffer buffer = tree.stream.AnnounceBuffer(memory.data(), memory.size());
    EXPECT_FALSE(map.HasBufferSupportedChunks(buffer));
    tree.stream.QueueBuffer(buffer);
    tree.stream.StartAcquisition();
    ASSERT_TRUE(producer->Deliver("if0-dev0-stream0", frame));
    const koro::Buffer finished = tree.stream.WaitForFinishedBuffer(0);
    EXPECT_TRUE(map.HasBufferSupportedChunks(finished));
    map.UpdateChunkNodes(finished);
    EXPECT_EQ(map.Integer("Counter").Value(), 7);
    EXPECT_EQ(CodeOf([&] { map.UpdateChunkNodes(koro::Buffer()); }), KORO_RETURN_CODE_INVALID_HANDLE);
    EXPECT_EQ(CodeOf([&] { map.HasBufferSupportedChunks(koro::Buffer()); }), KORO_RETURN_CODE_INVALID_HANDLE);
}

TEST(KoroNodeMap, ShowsTheDataOfAnEvent)
{
    const CameraOf producer(koro::test::EventFeature("Exposure", "9001", 16, "BigEndian"));
    const Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    const koro::EventController controller = tree.device.EnableEvents(koro::EventType::RemoteDevice);
    const std::string message = koro::test::GEVEvent(0x9001, koro::test::BigEndian(7, 4));
    ASSERT_TRUE(producer->Fire("if0-dev0", KORO_EVENT_REMOTE_DEVICE, message));
    {
        const koro::Event event = controller.WaitForEvent(0);
        EXPECT_TRUE(map.HasEventSupportedData(event));
        EXPECT_FALSE(tree.device.NodeMap().HasEventSupportedData(event));
        map.UpdateEventNodes(event);
        EXPECT_EQ(CodeOf([&] { tree.device.NodeMap().UpdateEventNodes(event); }), KORO_RETURN_CODE_INVALID_ARGUMENT);
    }
    EXPECT_EQ(map.Integer("Exposure").Value(), 7);
    EXPECT_EQ(CodeOf([&] { map.HasEventSupportedData(koro::Event()); }), KORO_RETURN_CODE_INVALID_HANDLE);
}

} // namespace
