// The table of chunks over buffers of a scripted camera.
#include "tests/boundary/chunk_test.h"
#include "tests/boundary/described_camera.h"
#include "tests/support/file_size_limit.h"
#include "tests/support/temporary_folder.h"
#include "tests/tool/koro_tree.h"
#include "tools/koro/chunk_table.h"
#include "tools/koro/tool_error.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <string>

namespace
{

using koro::test::ChunkFeature;
using koro::test::GEVChunk;
using koro::test::LittleEndian;

// A scripted camera, from which each frame comes with the chunk ChunkCount=7.
class ChunkTable : public testing::Test
{
protected:
    ChunkTable()
    {
        frame.bytes = GEVChunk(0xa1, LittleEndian(7, 4));
        frame.info[GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA] = scripted::Bool8(true);
    }

    void Describe(const std::string& features, const std::string& nodes)
    {
        producer->Edit([&](scripted::Tree& edited) {
            koro::test::DescribePort(
                edited.interfaces[0]->devices[0]->remotePort,
                koro::test::DescriptionOf(
                    "<Category Name=\"Root\"><pFeature>ChunkCount</pFeature>" + features + "</Category>" +
                    ChunkFeature("ChunkCount", "a1") + nodes));
        });
        tree.emplace(producer.Path());
        map = tree->device.RemoteDevice().NodeMap();
        memory.resize(frame.bytes.size());
        buffer = tree->stream.AnnounceBuffer(memory.data(), memory.size());
        tree->stream.StartAcquisition();
    }

    std::string AddFrame(koro::tool::ChunkTable& table, uint64_t number)
    {
        tree->stream.QueueBuffer(buffer);
        EXPECT_TRUE(producer->Deliver("if0-dev0-stream0", frame));
        return table.Add(map, tree->stream.WaitForFinishedBuffer(0), number);
    }

    const koro::test::ScriptedProducer producer;
    const koro::test::TemporaryFolder folder;
    scripted::Frame frame;
    std::string memory;
    std::optional<koro::test::Tree> tree;
    koro::NodeMap map;
    koro::Buffer buffer;
};

TEST_F(ChunkTable, ChunkWhoseAccessCannotBeToldHidesNoOther)
{
    Describe(
        "<pFeature>ChunkAbsent</pFeature><pFeature>ChunkDoubt</pFeature>",
        ChunkFeature("ChunkAbsent", "b2") +
            "<Integer Name=\"ChunkDoubt\"><pIsAvailable>Doubt</pIsAvailable><Value>1</Value></Integer>"
            "<IntSwissKnife Name=\"Doubt\"><pVariable Name=\"COUNT\">ChunkCount</pVariable>"
            "<Formula>1/(COUNT-7)</Formula></IntSwissKnife>");
    koro::tool::ChunkTable table(folder.File("chunks.csv"));
    table.FindChunks(map);
    for (uint64_t number = 1; number <= 2; ++number)
        EXPECT_EQ(AddFrame(table, number), "ChunkCount=7");
    table.Finish();
    std::ifstream file(folder.File("chunks.csv"));
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "frame,ChunkCount\n1,7\n2,7\n");
}

TEST_F(ChunkTable, ThatDoesNotFitOnTheDiskIsGivenUpAndLeavesItsRoomAtOnce)
{
    Describe("", "");
    koro::tool::ChunkTable table(folder.File("chunks.csv"));
    table.FindChunks(map);
    const koro::test::FileSizeLimit disk(100);
    // What is written to a file stands in a buffer first.
    const auto addMany = [&] {
        for (uint64_t number = 1; number <= 10000; ++number)
            AddFrame(table, number);
    };
    EXPECT_THROW(addMany(), koro::tool::ToolError);
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
    EXPECT_NO_THROW(table.Finish());
    EXPECT_TRUE(std::filesystem::is_empty(folder.Path()));
}

} // namespace
