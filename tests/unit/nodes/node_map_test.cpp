#include "base/exceptions.h"
#include "nodes/node.h"
#include "nodes/node_map.h"
#include "tests/support/journal.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/nodes/open_port.h"

#include <string>
#include <vector>

namespace koro::test
{

using namespace internal;

namespace
{

using Strings = std::vector<std::string>;
using NodeMapOfPort = OpenPort;

} // namespace

TEST_F(NodeMapOfPort, NullPortIsRefused)
{
    EXPECT_THAT(
        [] { NodeMap(nullptr, {}); }, ThrowsExactly<InternalErrorException>("port must not be a null pointer!"));
}

TEST_F(NodeMapOfPort, MakingOneMakesNoProducerCallAndParsesNothing)
{
    producer->ClearJournal();
    const auto map = std::make_shared<NodeMap>(port, NodeMapDescription{.data = {'x'}});
    EXPECT_EQ(map->Port(), port);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(NodeMapOfPort, FileWinsOverBytesAndIsPlainTextWhateverTheFlagSays)
{
    const auto path = producer.Folder().MakeFile("a.xml", Described("<Category Name=\"OfFile\"/>"));
    NodeMapDescription description = DescriptionOf("<Category Name=\"OfBytes\"/>");
    description.isZipped = true;
    description.filePath = path;
    const auto map = std::make_shared<NodeMap>(port, description);
    EXPECT_TRUE(map->HasNode("OfFile"));
    EXPECT_FALSE(map->HasNode("OfBytes"));
}

TEST_F(NodeMapOfPort, FailedConnectionRaisesAtEachUseAndCreatesAnewEachTime)
{
    producer->SetInfo("GCGetPortInfo", GenTL::PORT_INFO_PORTNAME, scripted::Text("Other"));
    const auto map = MapOf("");
    const auto failure =
        ThrowsExactly<InternalErrorException>("Could not connect node map with port (Port-Name: Other)!");
    EXPECT_THAT([&] { map->Nodes(); }, failure);
    EXPECT_THAT([&] { map->FindNode("TLPort"); }, failure);
    EXPECT_THAT([&] { map->GenApiNodeMap(); }, failure);
    EXPECT_THAT([&] { map->GenApiLock(); }, failure);

    producer->SetInfo("GCGetPortInfo", GenTL::PORT_INFO_PORTNAME, scripted::Text("TLPort"));
    EXPECT_EQ(map->Nodes().size(), 1u);
}

TEST_F(NodeMapOfPort, StandardFailuresOfItsOwnAreInternalErrors)
{
    NodeMap unshared(port, DescriptionOf("")); // whose nodes could not refer to it
    EXPECT_THROW(unshared.Nodes(), InternalErrorException);
    EXPECT_THROW(unshared.FindNode("TLPort"), InternalErrorException);
    EXPECT_THROW(unshared.TryFindNode("TLPort"), InternalErrorException);
    EXPECT_THROW(unshared.HasNode("TLPort"), InternalErrorException);
}

TEST_F(NodeMapOfPort, FailuresOfGenApiAreTranslatedButForTheLock)
{
    const auto map = std::make_shared<NodeMap>(port, NodeMapDescription{.data = {'x'}});
    EXPECT_THROW(map->Nodes(), InternalErrorException);
    EXPECT_THROW(map->GenApiNodeMap(), InternalErrorException);
    EXPECT_THROW(map->InvalidateNodes(), InternalErrorException);
    EXPECT_THROW(map->PollNodes(1), InternalErrorException);
    EXPECT_THROW(map->GenApiLock(), GENICAM_NAMESPACE::RuntimeException);
    EXPECT_THROW(std::make_shared<NodeMap>(port, NodeMapDescription{})->Nodes(), InvalidArgumentException);
}

TEST_F(NodeMapOfPort, GenApiMapAndLockAreTheSameEachTime)
{
    const auto map = MapOf("");
    EXPECT_EQ(map->GenApiNodeMap(), map->GenApiNodeMap());
    EXPECT_EQ(&map->GenApiLock(), &map->GenApiNodeMap()->GetLock());
    EXPECT_EQ(map->GenApiNodeMap()->GetDeviceName(), "Device");
}

TEST_F(NodeMapOfPort, ListAndTableHoldTheSameNodes)
{
    const auto map = MapOf("<Category Name=\"A\"/>");
    ASSERT_EQ(map->Nodes().size(), 2u);
    EXPECT_EQ(map->Nodes()[0], map->FindNode("A"));
    EXPECT_EQ(map->Nodes()[1], map->TryFindNode("TLPort"));
    EXPECT_EQ(map->TryFindNode("a"), nullptr);
    EXPECT_THAT(
        [&] { map->FindNode("a"); }, ThrowsExactly<NotFoundException>("There is no node with the given name (a)!"));
}

TEST_F(NodeMapOfPort, HoldsItsPortAndIsHeldByNoNode)
{
    auto map = MapOf("<Category Name=\"A\"/>");
    const std::weak_ptr<Port> heldPort = port;
    port.reset();
    EXPECT_FALSE(heldPort.expired());
    const auto node = map->FindNode("A");
    const std::weak_ptr<NodeMap> watched = map;
    map.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_TRUE(heldPort.expired());
}

} // namespace koro::test
