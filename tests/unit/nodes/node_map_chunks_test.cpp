#include "base/exceptions.h"
#include "gentl/port.h"
#include "modules/buffer.h"
#include "nodes/node_map.h"
#include "tests/support/chunk_buffers.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/modules/open_objects.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <tuple>

namespace koro::test
{

using namespace GenTL;
using namespace internal;

namespace
{

const std::string description =
    "<RegisterDescription ModelName=\"Test\" VendorName=\"ZVR\" StandardNameSpace=\"None\" SchemaMajorVersion=\"1\" "
    "SchemaMinorVersion=\"1\" SchemaSubMinorVersion=\"0\" MajorVersion=\"1\" MinorVersion=\"0\" SubMinorVersion=\"0\" "
    "ProductGuid=\"\" VersionGuid=\"\" xmlns=\"http://www.genicam.org/GenApi/Version_1_1\">"
    "<Port Name=\"One\"><ChunkID>a1</ChunkID></Port><Port Name=\"OneToo\"><ChunkID>a1</ChunkID></Port>"
    "<Port Name=\"Two\"><ChunkID>b2</ChunkID></Port><Port Name=\"Device\"/></RegisterDescription>";

// A map of the camera, held by the test alone, and announced buffers that say what they are.
class ChunksOfBuffers : public testing::Test
{
protected:
    ChunksOfBuffers()
    {
        objects.producer->SetInfo("DSGetBufferInfo", BUFFER_INFO_CONTAINS_CHUNKDATA, scripted::Bool8(true));
        TellLayout(1);
    }
    void TellLayout(std::uint64_t id)
    {
        objects.producer->SetInfo("DSGetBufferInfo", BUFFER_INFO_CHUNKLAYOUTID, scripted::UInt64(id));
    }
    std::shared_ptr<Buffer> Announce(std::string& bytes) const
    {
        return objects.stream->AnnounceBuffer(bytes.data(), bytes.size(), nullptr, {});
    }
    // Ports, chunks, attachments.
    std::tuple<int, int, int> Statistics() const
    {
        const auto& statistics = map->AttachStatistics();
        return {statistics.NumChunkPorts, statistics.NumChunks, statistics.NumAttachedChunks};
    }

    OpenObjects objects;
    std::shared_ptr<NodeMap> map = std::make_shared<NodeMap>(
        objects.remoteDevice->Port(), NodeMapDescription{.data = {description.begin(), description.end()}});
    std::string one = GEVChunk(0xa1, "data");
    std::string two = GEVChunk(1, "") + GEVChunk(0xb2, "da");
};

} // namespace

TEST_F(ChunksOfBuffers, StatisticsAreThoseOfTheLatestAttachment)
{
    EXPECT_EQ(Statistics(), std::tuple(0, 0, 0));
    map->UpdateChunkNodes(*Announce(one));
    EXPECT_EQ(Statistics(), std::tuple(3, 1, 2));
    TellLayout(2);
    map->UpdateChunkNodes(*Announce(two));
    EXPECT_EQ(Statistics(), std::tuple(3, 2, 1));
}

TEST_F(ChunksOfBuffers, ShortRoadAndRefusalLeaveTheStatistics)
{
    map->UpdateChunkNodes(*Announce(one));
    std::string other(one.size() + 100, 'x');
    map->UpdateChunkNodes(*Announce(other));
    EXPECT_EQ(Statistics(), std::tuple(3, 1, 2));
    TellLayout(2);
    EXPECT_THROW(map->UpdateChunkNodes(*Announce(two = std::string(20, 'x'))), InternalErrorException);
    EXPECT_EQ(Statistics(), std::tuple(3, 1, 2));
}

TEST_F(ChunksOfBuffers, NoticeKeepsNoMapAlive)
{
    const auto buffer = Announce(one);
    map->UpdateChunkNodes(*buffer);
    const std::weak_ptr<NodeMap> watched = map;
    map.reset();
    EXPECT_TRUE(watched.expired());
    objects.stream->RevokeBuffer(buffer);
}

// As long as the buffer has the notice, no other map can lie where the first one lay.
TEST_F(ChunksOfBuffers, NextMapHasANoticeOfItsOwn)
{
    const auto buffer = Announce(one);
    for (int time = 0; time < 100; ++time)
    {
        map = std::make_shared<NodeMap>(
            objects.remoteDevice->Port(), NodeMapDescription{.data = {description.begin(), description.end()}});
        map->UpdateChunkNodes(*buffer);
    }
    const auto mode = [&] {
        return dynamic_cast<GENAPI_NAMESPACE::IPort&>(*map->GenApiNodeMap()->GetNode("One")).GetAccessMode();
    };
    EXPECT_EQ(mode(), GENAPI_NAMESPACE::RW);
    objects.stream->RevokeBuffer(buffer);
    EXPECT_EQ(mode(), GENAPI_NAMESPACE::NA);
}

TEST_F(ChunksOfBuffers, BufferThatWasRevokedHasExpired)
{
    const auto buffer = Announce(one);
    objects.stream->RevokeBuffer(buffer);
    EXPECT_THAT([&] { map->UpdateChunkNodes(*buffer); }, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
    EXPECT_THAT(
        [&] { map->HasBufferSupportedChunks(*buffer); }, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
}

// Between the last question to the producer and the notice.
TEST_F(ChunksOfBuffers, BufferThatIsRevokedDuringTheUpdateIsNotLeftAttached)
{
    const auto buffer = Announce(one);
    map->UpdateChunkNodes(*buffer); // makes the adapter, for which more is asked
    int asked = 0;
    objects.producer->OnEntry("DSGetBufferInfo", [&] { ++asked; });
    map->UpdateChunkNodes(*buffer);
    const int last = asked;
    for (int revokedAt = 1; revokedAt <= last; ++revokedAt)
    {
        std::string bytes = GEVChunk(0xa1, "data");
        const auto next = Announce(bytes);
        TellLayout(static_cast<std::uint64_t>(revokedAt) + 1);
        asked = 0;
        objects.producer->OnEntry("DSGetBufferInfo", [&] {
            if (++asked == revokedAt) objects.stream->RevokeBuffer(next);
        });
        EXPECT_THROW(map->UpdateChunkNodes(*next), InternalErrorException);
        objects.producer->OnEntry("DSGetBufferInfo", {});
    }
    objects.stream->RevokeBuffer(buffer);
    EXPECT_EQ(
        dynamic_cast<GENAPI_NAMESPACE::IPort&>(*map->GenApiNodeMap()->GetNode("One")).GetAccessMode(),
        GENAPI_NAMESPACE::NA);
}

} // namespace koro::test
