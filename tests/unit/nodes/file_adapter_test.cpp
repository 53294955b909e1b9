#include "base/exceptions.h"
#include "nodes/file_adapter.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/nodes/open_port.h"

#include <string>
#include <type_traits>
#include <vector>

namespace koro::test
{

using namespace internal;

namespace
{

using Strings = std::vector<std::string>;
using FileAdapterOfMap = OpenPort;

const std::string selector = "<Enumeration Name=\"FileSelector\"><EnumEntry Name=\"User\"><Value>0</Value></EnumEntry>"
                             "<Value>0</Value></Enumeration>";

std::string FileSize(const std::string& elements)
{
    return "<Integer Name=\"FileSize\">" + elements + "</Integer>";
}

} // namespace

static_assert(std::is_base_of_v<GENAPI_NAMESPACE::FileProtocolAdapter, FileAdapter>);

TEST_F(FileAdapterOfMap, MakingOneCreatesTheMapAndTouchesNoRegister)
{
    const auto map = MapOf(selector);
    producer->ClearJournal();
    const FileAdapter adapter(map, "User");
    EXPECT_EQ(producer->Journal(), (Strings{"GCGetPortInfo(system, 12, size)", "GCGetPortInfo(system, 12, data)"}))
        << "the name of the port, for the connection";
}

TEST_F(FileAdapterOfMap, BrokenDescriptionIsToldWhenOneIsMade)
{
    const auto map = std::make_shared<NodeMap>(port, NodeMapDescription{.data = {'x'}});
    EXPECT_THROW(FileAdapter(map, "User"), InternalErrorException);
}

TEST_F(FileAdapterOfMap, HasTheFilesThatTheSelectorHasEntriesFor)
{
    EXPECT_TRUE(FileAdapter::HasFile(*MapOf(selector), "User"));
    EXPECT_FALSE(FileAdapter::HasFile(*MapOf(selector), "user"));
    EXPECT_FALSE(FileAdapter::HasFile(*MapOf(""), "User"));
    EXPECT_FALSE(FileAdapter::HasFile(*MapOf("<Integer Name=\"FileSelector\"><Value>0</Value></Integer>"), "User"));
}

TEST_F(FileAdapterOfMap, MapWithoutSelectorIsToldAsALockThatFailed)
{
    for (const std::string nodes : {"", "<Integer Name=\"FileSelector\"><Value>0</Value></Integer>"})
    {
        const auto map = MapOf(nodes);
        FileAdapter adapter(map, "User");
        const auto failure = ThrowsExactly<BadAccessException>("Failed to lock the NodeMap!");
        char byte = 0;
        EXPECT_THAT([&] { adapter.Size(); }, failure);
        EXPECT_THAT([&] { adapter.MaxSize(); }, failure);
        EXPECT_THAT([&] { adapter.Read(&byte, 1, 0); }, failure);
        EXPECT_THAT([&] { adapter.Write(&byte, 1, 0); }, failure);
        EXPECT_NO_THROW(adapter.Delete());
    }
}

TEST_F(FileAdapterOfMap, FileWithoutEntryIsNotAvailable)
{
    const auto map = MapOf(selector + FileSize("<Value>1</Value>"));
    FileAdapter adapter(map, "Other");
    EXPECT_THAT([&] { adapter.Size(); }, ThrowsExactly<BadAccessException>("File selector entry not available!"));
}

TEST_F(FileAdapterOfMap, MapWithoutTheNodesOfTransfersMovesNothing)
{
    const auto map = MapOf(selector);
    FileAdapter adapter(map, "User");
    char byte = 0;
    EXPECT_EQ(adapter.Read(&byte, 1, 0), 0u);
    EXPECT_EQ(adapter.Write(&byte, 1, 0), 0u);
    EXPECT_NO_THROW(adapter.Delete());
}

TEST_F(FileAdapterOfMap, NegativeSizeIsNoSize)
{
    const auto map = MapOf(selector + FileSize("<Value>-2</Value><Min>-3</Min><Max>-1</Max>"));
    FileAdapter adapter(map, "User");
    EXPECT_THAT([&] { adapter.Size(); }, ThrowsExactly<InternalErrorException>("FileSize tells a negative size (-2)!"));
    EXPECT_THAT(
        [&] { adapter.MaxSize(); }, ThrowsExactly<InternalErrorException>("FileSize tells a negative size (-1)!"));
}

TEST_F(FileAdapterOfMap, ExpiresWithItsMapWhichItDoesNotHold)
{
    auto map = MapOf(selector);
    FileAdapter adapter(map, "User");
    const std::weak_ptr<NodeMap> watched = map;
    map.reset();
    EXPECT_TRUE(watched.expired());
    const auto failure = ThrowsExactly<InternalErrorException>("Pointer has expired!");
    char byte = 0;
    EXPECT_THAT([&] { adapter.Size(); }, failure);
    EXPECT_THAT([&] { adapter.MaxSize(); }, failure);
    EXPECT_THAT([&] { adapter.Read(&byte, 1, 0); }, failure);
    EXPECT_THAT([&] { adapter.Write(&byte, 1, 0); }, failure);
    EXPECT_THAT([&] { adapter.Delete(); }, failure);
}

} // namespace koro::test
