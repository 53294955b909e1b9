// The table of chunks over buffers of a scripted camera.
#include "tests/boundary/chunk_test.h"
#include "tests/boundary/described_camera.h"
#include "tests/support/temporary_folder.h"
#include "tests/tool/koro_tree.h"
#include "tools/koro/chunk_table.h"

#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

namespace
{

using koro::test::ChunkFeature;
using koro::test::GEVChunk;
using koro::test::LittleEndian;

TEST(ChunkTable, ChunkWhoseAccessCannotBeToldHidesNoOther)
{
    const koro::test::ScriptedProducer producer;
    producer->Edit([&](scripted::Tree& edited) {
        koro::test::DescribePort(
            edited.interfaces[0]->devices[0]->remotePort,
            koro::test::DescriptionOf(
                "<Category Name=\"Root\"><pFeature>ChunkAbsent</pFeature><pFeature>ChunkCount</pFeature>"
                "<pFeature>ChunkDoubt</pFeature></Category>" +
                ChunkFeature("ChunkAbsent", "b2") + ChunkFeature("ChunkCount", "a1") +
                "<Integer Name=\"ChunkDoubt\"><pIsAvailable>Doubt</pIsAvailable><Value>1</Value></Integer>"
                "<IntSwissKnife Name=\"Doubt\"><pVariable Name=\"COUNT\">ChunkCount</pVariable>"
                "<Formula>1/(COUNT-7)</Formula></IntSwissKnife>"));
    });
    koro::test::Tree tree(producer.Path());
    const koro::NodeMap map = tree.device.RemoteDevice().NodeMap();
    const koro::test::TemporaryFolder folder;
    koro::tool::ChunkTable table(folder.File("chunks.csv"));
    table.FindChunks(map);

    scripted::Frame frame;
    frame.bytes = GEVChunk(0xa1, LittleEndian(7, 4));
    frame.info[GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA] = scripted::Bool8(true);
    std::string memory(frame.bytes.size(), ' ');
    const koro::Buffer buffer = tree.stream.AnnounceBuffer(memory.data(), memory.size());
    tree.stream.StartAcquisition();
    for (uint64_t number = 1; number <= 2; ++number)
    {
        tree.stream.QueueBuffer(buffer);
        ASSERT_TRUE(producer->Deliver("if0-dev0-stream0", frame));
        EXPECT_EQ(table.Add(map, tree.stream.WaitForFinishedBuffer(0), number), "ChunkCount=7");
    }
    table.Finish();
    std::ifstream file(folder.File("chunks.csv"));
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "frame,ChunkCount\n1,7\n2,7\n");
}

} // namespace
