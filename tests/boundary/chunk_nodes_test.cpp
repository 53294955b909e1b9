// Chunks of buffers as nodes: which adapter reads them, which road a buffer takes, and what its revocation does.
#include "tests/boundary/chunk_test.h"
#include "tests/boundary/connection_changes.h"
#include "tests/boundary/lock_elsewhere.h"
#include "tests/support/in_thread.h"

#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace koro::test
{

namespace
{

using namespace GenTL;
using testing::HasSubstr;

class ChunkNodes : public ChunkTest
{
protected:
    ~ChunkNodes() override
    {
        callback = [] {};
    } // the end of the stream changes nodes once more

    // Chunks in the form of the transport layer.
    static std::string ChunksOf(const std::string& tlType)
    {
        const std::string counter = LittleEndian(7, 4);
        if (tlType == "IIDC") return IIDCChunk(idBytes, counter) + IIDCChunk(std::string(16, 'x'), "");
        if (tlType == "U3V") return U3VChunk(1, "image") + U3VChunk(0xa1, counter);
        return GEVChunk(1, "image") + GEVChunk(0xa1, counter);
    }
    static const char* FeatureOf(const std::string& tlType) { return tlType == "IIDC" ? "Wide" : "Counter"; }

    std::size_t Asked(BUFFER_INFO_CMD command) const
    {
        const auto calls = CallsOf(producer->Journal(), {"DSGetBufferInfo"});
        const std::string query = ", " + std::to_string(command) + ", size)";
        return static_cast<std::size_t>(std::count_if(calls.begin(), calls.end(), [&](const std::string& line) {
            return line.find(query) != std::string::npos;
        }));
    }

    static Error Unsupported(const std::string& tlType)
    {
        return {KORO_RETURN_CODE_ERROR, "Chunk adapter for TLType " + tlType + " not supported!"};
    }

    // Calls `function` at each change of the feature.
    void OnChange(const std::string& feature, std::function<void()> function)
    {
        callback = std::move(function);
        KORO_NodeChangedCallbackHandle ignored = nullptr;
        Require(KORO_Node_RegisterChangedCallback(
            Find(map, feature), [](KORO_NodeHandle, void* context) { static_cast<ChunkNodes*>(context)->callback(); },
            this, &ignored));
    }
    std::function<void()> callback;
};

} // namespace

TEST_F(ChunkNodes, BufferWithoutChunksIsNotSupportedAndMakesNoAdapter)
{
    auto frame = FrameOf("no chunks", "CL");
    frame.info[BUFFER_INFO_CONTAINS_CHUNKDATA] = scripted::Bool8(false);
    const auto without = Deliver(frame);
    EXPECT_FALSE(IsSupported(without));
    EXPECT_EQ(Update(without), Error{});
    EXPECT_EQ(Asked(BUFFER_INFO_TLTYPE), 0u);

    // The first buffer with chunks decides, and not that one, which would have been refused.
    const auto buffer = Deliver(Chunks(7, 8));
    EXPECT_TRUE(IsSupported(buffer));
    EXPECT_EQ(Update(buffer), Error{});
    EXPECT_EQ(Value("Counter"), 7);
}

TEST_F(ChunkNodes, BufferWithoutChunksNeedsNeitherTheDescriptionNorTheLock)
{
    auto frame = FrameOf("no chunks");
    frame.info[BUFFER_INFO_CONTAINS_CHUNKDATA] = scripted::Bool8(false);
    const auto without = Deliver(frame);
    Require(KORO_NodeMap_Lock(map));
    EXPECT_FALSE(InThread([&] { return IsSupported(without); }));
    EXPECT_EQ(InThread([&] { return Update(without); }), Error{});
    Require(KORO_NodeMap_Unlock(map));

    DescribeBy("no description");
    map = NodeMapOf(tree.remoteDevice);
    OpenStream();
    const auto other = Deliver(frame);
    EXPECT_FALSE(IsSupported(other));
    EXPECT_EQ(Update(other), Error{});
    EXPECT_EQ(Update(Deliver(Chunks(7, 8))).code, KORO_RETURN_CODE_ERROR);
}

TEST_F(ChunkNodes, ChunksOfEachTransportLayerWithAnAdapterAreRead)
{
    for (const std::string tlType : {"GEV", "U3V", "IIDC"})
    {
        SCOPED_TRACE(tlType);
        Open(chunkFeatures);
        const auto buffer = Deliver(FrameOf(ChunksOf(tlType), tlType));
        EXPECT_EQ(Value(FeatureOf(tlType)), std::nullopt);
        EXPECT_TRUE(IsSupported(buffer));
        EXPECT_EQ(Value(FeatureOf(tlType)), std::nullopt);
        EXPECT_EQ(Update(buffer), Error{});
        EXPECT_EQ(Value(FeatureOf(tlType)), 7);
    }
}

// A buffer that was kept while the frames got smaller: the end of the larger frame still lies in its memory.
TEST_F(ChunkNodes, ChunksOfASmallerFrameInALargerBufferAreThoseOfThatFrame)
{
    const auto chunksOf = [](const std::string& tlType, std::size_t image, std::uint64_t value) {
        const std::string pixels(image, 'x');
        const std::string counter = LittleEndian(value, 4);
        if (tlType == "IIDC")
            return WithChecksum(IIDCChunk(std::string(16, 'x'), pixels) + IIDCChunk(idBytes, counter));
        if (tlType == "U3V") return U3VChunk(1, pixels) + U3VChunk(0xa1, counter);
        return GEVChunk(1, pixels) + GEVChunk(0xa1, counter);
    };
    for (const std::string tlType : {"GEV", "U3V", "IIDC"})
    {
        SCOPED_TRACE(tlType);
        Open(chunkFeatures);
        const auto buffer = Deliver(FrameOf(chunksOf(tlType, 64, 4), tlType, 1));
        EXPECT_EQ(Update(buffer), Error{});
        EXPECT_EQ(Value(FeatureOf(tlType)), 4);

        Fill(buffer, FrameOf(chunksOf(tlType, 32, 5), tlType, 2));
        EXPECT_TRUE(IsSupported(buffer));
        EXPECT_EQ(Update(buffer), Error{});
        EXPECT_EQ(Value(FeatureOf(tlType)), 5);

        const auto fresh = Announce(500);
        Fill(fresh, FrameOf(chunksOf(tlType, 48, 6), tlType, 3));
        EXPECT_TRUE(IsSupported(fresh));
        EXPECT_EQ(Update(fresh), Error{});
        EXPECT_EQ(Value(FeatureOf(tlType)), 6);
    }
}

TEST_F(ChunkNodes, BufferCountsWholeWhereTheFilledSizeIsUnknownOrImplausible)
{
    const std::string chunks = Chunks(7, 8);
    for (const auto& filled :
         {scripted::Failing(GC_ERR_NOT_IMPLEMENTED), scripted::Failing(GC_ERR_NOT_AVAILABLE),
          scripted::Failing(GC_ERR_IO), scripted::Size(0), scripted::Size(chunks.size() + 1)})
    {
        auto frame = FrameOf(chunks);
        frame.info[BUFFER_INFO_SIZE_FILLED] = filled;
        const auto buffer = Deliver(frame);
        EXPECT_TRUE(IsSupported(buffer));
        EXPECT_EQ(Update(buffer), Error{});
        EXPECT_EQ(Value("Counter"), 7);
        Revoke(buffer);
    }
}

TEST_F(ChunkNodes, EveryOtherTransportLayerIsRefusedByItsText)
{
    for (const std::string tlType : {"CL", "1394", "CXP", "CLHS", "UVC", "Mixed", "Custom", "gev", "GEV ", "U3", ""})
    {
        SCOPED_TRACE(tlType);
        const auto buffer = Deliver(FrameOf(Chunks(7, 8), tlType));
        EXPECT_EQ(OutcomeOfSupport(buffer), Unsupported(tlType));
        EXPECT_EQ(Update(buffer), Unsupported(tlType));
    }
    // None of them has made an adapter.
    EXPECT_EQ(Update(Deliver(FrameOf(ChunksOf("U3V"), "U3V"))), Error{});
    EXPECT_EQ(Value("Counter"), 7);
}

TEST_F(ChunkNodes, AdapterOfTheFirstBufferStaysForTheLifeOfTheMap)
{
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(Chunks(7, 8))));
    producer->ClearJournal();
    EXPECT_FALSE(IsSupported(Deliver(FrameOf(ChunksOf("U3V"), "U3V"))));
    EXPECT_FALSE(IsSupported(Deliver(FrameOf(ChunksOf("IIDC"), "IIDC"))));
    EXPECT_THAT(Update(Deliver(FrameOf(ChunksOf("U3V"), "U3V", 2))).text, HasSubstr("The chunk layout of the buffer"));
    EXPECT_TRUE(IsSupported(Deliver(FrameOf(Chunks(1, 2), "CL"))));
    EXPECT_EQ(Update(Deliver(FrameOf(Chunks(9, 10), "CL", 3))), Error{});
    EXPECT_EQ(Value("Counter"), 9);
    EXPECT_EQ(Asked(BUFFER_INFO_TLTYPE), 0u);
}

TEST_F(ChunkNodes, MapsOfTwoModulesReadOneBufferSideBySide)
{
    producer->Edit([](scripted::Tree& edited) {
        DescribePort(
            edited.interfaces[0]->devices[0]->port, DescriptionOf(ChunkFeature("Counter", "a1"), "DevicePort"));
    });
    Open(chunkFeatures);
    const auto module = Get<KORO_ModuleHandle>(KORO_Device_ToModule, tree.device);
    auto other = Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
    const auto buffer = Deliver(Chunks(7, 8));
    EXPECT_EQ(Update(buffer), Error{});
    EXPECT_EQ(Outcome(KORO_NodeMap_UpdateChunkNodes(other, buffer)), Error{});
    EXPECT_EQ(Value("Counter"), 7);
    std::swap(map, other);
    EXPECT_EQ(Value("Counter"), 7);
    Revoke(buffer);
    EXPECT_EQ(Value("Counter"), std::nullopt);
    std::swap(map, other);
    EXPECT_EQ(Value("Counter"), std::nullopt);
}

TEST_F(ChunkNodes, NodesReadAndWriteTheMemoryOfTheBuffer)
{
    const auto buffer = Deliver(Chunks(7, 8));
    Require(KORO_NodeMap_UpdateChunkNodes(map, buffer));
    const auto counter = Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, Find(map, "Counter"));
    Require(KORO_IntegerNode_SetValue(counter, 0x01020304));
    EXPECT_EQ(std::string(memory.back().get() + 13, 4), LittleEndian(0x01020304, 4));

    memory.back()[13] = 5; // by somebody else, so the cache does not know
    Require(KORO_NodeMap_InvalidateNodes(map));
    EXPECT_EQ(Value("Counter"), 0x01020305);
}

TEST_F(ChunkNodes, NodeWhoseChunkIsMissingIsNotAvailable)
{
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(Chunks(7, 8))));
    EXPECT_EQ(Value("Gain"), 8);
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(FrameOf(GEVChunk(0xa1, LittleEndian(9, 4)), "GEV", 2))));
    EXPECT_EQ(Value("Counter"), 9);
    EXPECT_EQ(Value("Gain"), std::nullopt);
}

TEST_F(ChunkNodes, ReadBehindTheChunkIsAFailureOfGenApi)
{
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(GEVChunk(0xa1, "ab"))));
    const auto counter = Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, Find(map, "Counter"));
    std::int64_t value = 0;
    const Error outcome = Outcome(KORO_IntegerNode_GetValue(counter, KORO_NODE_CACHE_POLICY_USE_CACHE, &value));
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    EXPECT_THAT(outcome.text, HasSubstr("The access to 4 bytes at 0 is outside of the data, 2 bytes at 0."));
}

// The first road looks at the bytes, the second one does not.
TEST_F(ChunkNodes, SecondBufferOfAnEqualLayoutTellsItsAddressAlone)
{
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(Chunks(7, 8))));
    std::string withoutTrailers = Chunks(9, 10);
    withoutTrailers.replace(withoutTrailers.size() - 8, 8, 8, '\xff');
    const auto second = Deliver(withoutTrailers);
    EXPECT_FALSE(IsSupported(second));
    producer->ClearJournal();
    EXPECT_EQ(Update(second), Error{});
    EXPECT_EQ(Attaches(), 0u);
    EXPECT_EQ(Value("Counter"), 9);
    EXPECT_EQ(Value("Gain"), 10);

    const auto otherLayout = Deliver(FrameOf(withoutTrailers, "GEV", 2));
    EXPECT_THAT(Update(otherLayout).text, HasSubstr("The chunk layout of the buffer is broken at"));
}

TEST_F(ChunkNodes, RunOfEqualLayoutsIsAttachedOnceAndAChangeAttachesAgain)
{
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(Chunks(1, 2))));
    producer->ClearJournal();
    const auto buffer = Announce(Chunks(0, 0).size());
    for (const std::uint32_t counter : {3u, 4u, 5u})
    {
        Fill(buffer, FrameOf(Chunks(counter, 2)));
        EXPECT_EQ(Update(buffer), Error{});
        EXPECT_EQ(Value("Counter"), counter);
    }
    EXPECT_EQ(Attaches(), 0u);
    Fill(buffer, FrameOf(Chunks(6, 2), "GEV", 2));
    EXPECT_EQ(Update(buffer), Error{});
    EXPECT_EQ(Attaches(), 1u);
    Fill(buffer, FrameOf(Chunks(6, 2), "GEV", 2));
    EXPECT_EQ(Update(buffer), Error{});
    EXPECT_EQ(Attaches(), 1u);
}

TEST_F(ChunkNodes, ProducerThatFailsTheLayoutQueryGetsAnAttachmentForEveryBuffer)
{
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(FrameOf(Chunks(1, 2), "GEV", 0))));
    const scripted::Info failures[] = {
        scripted::Failing(GC_ERR_NOT_IMPLEMENTED), scripted::Failing(GC_ERR_NOT_AVAILABLE),
        scripted::Failing(GC_ERR_INVALID_PARAMETER), scripted::Failing(GC_ERR_ERROR), scripted::Text("layout")};
    for (const auto& failure : failures)
    {
        producer->SetInfo("DSGetBufferInfo", BUFFER_INFO_CHUNKLAYOUTID, failure);
        for (const std::uint32_t counter : {3u, 4u})
        {
            producer->ClearJournal();
            EXPECT_EQ(Update(Deliver(Chunks(counter, 2))), Error{});
            EXPECT_EQ(Attaches(), 1u);
            EXPECT_EQ(Value("Counter"), counter);
        }
    }
    // A number that could not be queried counts as 0 afterwards.
    producer->SetInfo("DSGetBufferInfo", BUFFER_INFO_CHUNKLAYOUTID, scripted::UInt64(0));
    producer->ClearJournal();
    EXPECT_EQ(Update(Deliver(Chunks(5, 2))), Error{});
    EXPECT_EQ(Attaches(), 0u);
    EXPECT_EQ(Value("Counter"), 5);
}

TEST_F(ChunkNodes, OtherFailuresOfTheLayoutQueryAreTold)
{
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(Chunks(1, 2))));
    const auto buffer = Deliver(Chunks(3, 4));
    for (const auto code : {GC_ERR_IO, GC_ERR_INVALID_ID})
    {
        producer->SetInfo("DSGetBufferInfo", BUFFER_INFO_CHUNKLAYOUTID, scripted::Failing(code));
        EXPECT_EQ(
            Update(buffer), InfoFailure({"DSGetBufferInfo", 24, "BUFFER_INFO_CHUNKLAYOUTID"}, ProducerErrorOf(code)));
        EXPECT_EQ(Value("Counter"), 1);
    }
}

TEST_F(ChunkNodes, OtherQueriesThatFailLeaveWhatWasAttached)
{
    const auto first = Deliver(Chunks(1, 2));
    Require(KORO_NodeMap_UpdateChunkNodes(map, first));
    const std::pair<BUFFER_INFO_CMD, const char*> queries[] = {
        {BUFFER_INFO_BASE, "BUFFER_INFO_BASE"},
        {BUFFER_INFO_SIZE, "BUFFER_INFO_SIZE"},
        {BUFFER_INFO_CONTAINS_CHUNKDATA, "BUFFER_INFO_CONTAINS_CHUNKDATA"}};
    for (const auto& [command, name] : queries)
    {
        auto frame = FrameOf(Chunks(3, 4));
        frame.info[command] = scripted::Failing(GC_ERR_ERROR);
        const auto buffer = Deliver(frame);
        const Error failure = InfoFailure({"DSGetBufferInfo", command, name}, ProducerErrorOf(GC_ERR_ERROR));
        EXPECT_EQ(Update(buffer), failure);
        EXPECT_EQ(OutcomeOfSupport(buffer), failure);
        EXPECT_EQ(Value("Counter"), 1);
    }
    Revoke(first);
    EXPECT_EQ(Value("Counter"), std::nullopt);
}

TEST_F(ChunkNodes, TransportLayerThatCannotBeAskedMakesNoAdapter)
{
    auto frame = FrameOf(Chunks(3, 4));
    frame.info[BUFFER_INFO_TLTYPE] = scripted::Failing(GC_ERR_ERROR);
    const Error failure =
        InfoFailure({"DSGetBufferInfo", BUFFER_INFO_TLTYPE, "BUFFER_INFO_TLTYPE"}, ProducerErrorOf(GC_ERR_ERROR));
    const auto buffer = Deliver(frame);
    EXPECT_EQ(Update(buffer), failure);
    EXPECT_EQ(OutcomeOfSupport(buffer), failure);
    EXPECT_EQ(Update(Deliver(Chunks(3, 4))), Error{});
    EXPECT_EQ(Value("Counter"), 3);
}

TEST_F(ChunkNodes, SmallerBufferIsLookedAtThoughItsLayoutIdIsEqual)
{
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(Chunks(7, 8))));
    producer->ClearJournal();
    EXPECT_EQ(Update(Deliver(GEVChunk(0xa1, LittleEndian(9, 4)))), Error{});
    EXPECT_EQ(Attaches(), 1u);
    EXPECT_EQ(Value("Counter"), 9);
    EXPECT_EQ(Value("Gain"), std::nullopt);
    EXPECT_THAT(Update(Deliver("short")).text, HasSubstr("broken at 5: no room for a trailer"));
    EXPECT_EQ(Value("Counter"), 9);
}

TEST_F(ChunkNodes, RevocationDetachesTheAttachedBufferAndNoOther)
{
    const auto first = Deliver(Chunks(7, 8));
    const auto second = Deliver(Chunks(9, 10));
    Require(KORO_NodeMap_UpdateChunkNodes(map, first));
    Require(KORO_NodeMap_UpdateChunkNodes(map, second));
    Revoke(first);
    EXPECT_EQ(Value("Counter"), 9);
    Revoke(second);
    EXPECT_EQ(Value("Counter"), std::nullopt);
    EXPECT_EQ(Value("Gain"), std::nullopt);
}

TEST_F(ChunkNodes, UpdateAfterARevocationAttachesAgainThoughTheLayoutIdIsEqual)
{
    const auto first = Deliver(Chunks(7, 8));
    Require(KORO_NodeMap_UpdateChunkNodes(map, first));
    Revoke(first);
    const auto second = Deliver(Chunks(9, 10));
    producer->ClearJournal();
    EXPECT_EQ(Update(second), Error{});
    EXPECT_EQ(Attaches(), 1u);
    EXPECT_EQ(Value("Counter"), 9);
}

TEST_F(ChunkNodes, BufferThatIsAttachedAgainAndAgainIsDetachedOnce)
{
    const auto buffer = Deliver(Chunks(7, 8));
    const auto other = Deliver(Chunks(9, 10));
    for (const auto next : {buffer, other, buffer, buffer})
        Require(KORO_NodeMap_UpdateChunkNodes(map, next));
    int changes = 0;
    OnChange("Counter", [&] { ++changes; });
    Revoke(other);
    EXPECT_EQ(changes, 0);
    Revoke(buffer);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(Value("Counter"), std::nullopt);
}

TEST_F(ChunkNodes, RefusedRevocationLeavesTheBufferAttached)
{
    const auto buffer = Deliver(Chunks(7, 8));
    Require(KORO_NodeMap_UpdateChunkNodes(map, buffer));
    producer->AnswerOnce("DSRevokeBuffer", GC_ERR_BUSY);
    EXPECT_EQ(Outcome(KORO_DataStream_RevokeBuffer(tree.stream, buffer)).code, KORO_RETURN_CODE_BAD_ACCESS);
    EXPECT_EQ(Value("Counter"), 7);
}

TEST_F(ChunkNodes, EndOfTheStreamDetachesItsBuffer)
{
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(Chunks(7, 8))));
    Require(KORO_DataStream_Destruct(tree.stream));
    EXPECT_EQ(Value("Counter"), std::nullopt);
}

// The end of the stream waits for the lock of the map: who holds it must not wait for the library's close in turn.
TEST_F(ChunkNodes, HolderOfTheLockIsRefusedToStartAndToEndTheLibraryWhileItsCloseWaitsForTheLock)
{
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(Chunks(7, 8))));
    std::promise<void> revoked;
    std::promise<void> holding;
    producer->OnEntry("DSRevokeBuffer", [&] { revoked.set_value(); });
    std::vector<Error> outcomes;
    auto holder = std::async(std::launch::async, [&] {
        Require(KORO_NodeMap_Lock(map));
        holding.set_value();
        revoked.get_future().wait();
        outcomes = {Outcome(KORO_Library_Initialize()), Outcome(KORO_Library_Close())};
        return KORO_NodeMap_Unlock(map);
    });
    holding.get_future().wait();
    EXPECT_EQ(Outcome(KORO_Library_Close()), Error{});
    EXPECT_EQ(holder.get(), KORO_RETURN_CODE_NOT_INITIALIZED); // and given back nevertheless
    EXPECT_EQ(outcomes, (std::vector{deadlock, deadlock}));
    producer->OnEntry("DSRevokeBuffer", nullptr);
    Require(KORO_Library_Initialize());
}

TEST_F(ChunkNodes, ChangedCallbackIsRefusedToStartAndToEndTheLibraryWhileItsCloseWaitsForTheLock)
{
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(Chunks(7, 8))));
    std::promise<void> revoked;
    std::promise<void> changed;
    producer->OnEntry("DSRevokeBuffer", [&] { revoked.set_value(); });
    std::vector<Error> outcomes;
    bool isFirst = true;
    OnChange("Counter", [&] {
        if (!std::exchange(isFirst, false)) return;
        changed.set_value();
        revoked.get_future().wait();
        outcomes = {Outcome(KORO_Library_Initialize()), Outcome(KORO_Library_Close())};
    });
    auto invalidation = std::async(std::launch::async, [&] { return KORO_NodeMap_InvalidateNodes(map); });
    changed.get_future().wait();
    EXPECT_EQ(Outcome(KORO_Library_Close()), Error{});
    EXPECT_EQ(invalidation.get(), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(outcomes, (std::vector{deadlock, deadlock}));
    producer->OnEntry("DSRevokeBuffer", nullptr);
    callback = [] {};
    Require(KORO_Library_Initialize());
}

TEST_F(ChunkNodes, RevocationOfWhatIsNotAttachedWaitsForNoLock)
{
    const auto first = Deliver(Chunks(7, 8));
    Require(KORO_NodeMap_UpdateChunkNodes(map, first));
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(Chunks(9, 10))));
    Require(KORO_NodeMap_Lock(map));
    InThread([&] { Revoke(first); });
    Require(KORO_NodeMap_Unlock(map));
    EXPECT_EQ(Value("Counter"), 9);
}

// A map of another device's: the buffers outlive it.
TEST_F(ChunkNodes, BufferOutlivesTheMapAndIsRevokedInPeace)
{
    const auto descriptor = Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, std::size_t{1});
    producer->Edit([](scripted::Tree& edited) {
        DescribePort(edited.interfaces[0]->devices[1]->remotePort, DescriptionOf(ChunkFeature("Counter", "a1")));
    });
    const auto buffer = Deliver(Chunks(7, 8));
    for (int time = 0; time < 3; ++time)
    {
        // Each map may get the place of the one before.
        const auto device =
            Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, descriptor, OpenTree::exclusiveAccess);
        map = NodeMapOf(Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, device));
        EXPECT_EQ(Update(buffer), Error{});
        EXPECT_EQ(Value("Counter"), 7);
        if (time < 2) Require(KORO_Device_Destruct(device));
    }
    Revoke(buffer);
    EXPECT_EQ(Value("Counter"), std::nullopt);
}

TEST_F(ChunkNodes, CallbacksRunInTheCallOnItsThreadWithTheLockHeld)
{
    std::vector<std::thread::id> toldOn;
    OnChange("Counter", [&] {
        toldOn.push_back(std::this_thread::get_id());
        EXPECT_FALSE(InThread([&] { return Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) != 0; }));
    });
    const auto first = Deliver(Chunks(7, 8));
    const auto second = Deliver(Chunks(9, 10));
    const auto caller = InThread([&] {
        Require(KORO_NodeMap_UpdateChunkNodes(map, first));
        Require(KORO_NodeMap_UpdateChunkNodes(map, second));
        Revoke(second);
        return std::this_thread::get_id();
    });
    EXPECT_EQ(toldOn, std::vector<std::thread::id>(3, caller));
    EXPECT_TRUE(InThread([&] {
        if (Get<KORO_Bool8>(KORO_NodeMap_TryLock, map) == 0) return false;
        Require(KORO_NodeMap_Unlock(map));
        return true;
    }));
}

TEST_F(ChunkNodes, CallbackThatAttachesAnotherBufferHasTheLastWord)
{
    const auto first = Deliver(Chunks(7, 8));
    const auto second = Deliver(FrameOf(Chunks(9, 10), "GEV", 2));
    bool isFirstCall = true;
    OnChange("Counter", [&] {
        if (std::exchange(isFirstCall, false)) Require(KORO_NodeMap_UpdateChunkNodes(map, second));
    });
    EXPECT_EQ(Update(first), Error{});
    EXPECT_EQ(Value("Counter"), 9);
    Revoke(first);
    EXPECT_EQ(Value("Counter"), 9);
    Revoke(second);
    EXPECT_EQ(Value("Counter"), std::nullopt);
}

TEST_F(ChunkNodes, CallbackMayRevokeTheBufferThatIsBeingAttached)
{
    const auto buffer = Deliver(Chunks(7, 8));
    bool isFirstCall = true;
    OnChange("Counter", [&] {
        if (std::exchange(isFirstCall, false)) Revoke(buffer);
    });
    EXPECT_EQ(Update(buffer), parentExpired);
    EXPECT_EQ(Value("Counter"), std::nullopt);
    isFirstCall = false;
    EXPECT_EQ(Update(Deliver(Chunks(9, 10))), Error{});
    EXPECT_EQ(Value("Counter"), 9);
}

TEST_F(ChunkNodes, CallbackMayRevokeTheBufferOfBefore)
{
    const auto first = Deliver(Chunks(7, 8));
    const auto second = Deliver(Chunks(9, 10));
    Require(KORO_NodeMap_UpdateChunkNodes(map, first));
    bool isFirstCall = true;
    OnChange("Counter", [&] {
        if (std::exchange(isFirstCall, false)) Revoke(first);
    });
    EXPECT_EQ(Update(second), Error{});
    EXPECT_EQ(Value("Counter"), 9);
}

TEST_F(ChunkNodes, EndOfTheMapCallsNobodyAndEndsThoughItsLockIsHeld)
{
    for (const bool isLocked : {false, true})
    {
        Open(chunkFeatures);
        Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(Chunks(7, 8))));
        bool isCalled = false;
        OnChange("Counter", [&] { isCalled = true; });
        std::optional<LockElsewhere> lock;
        if (isLocked) lock.emplace(map);
        EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});
        EXPECT_FALSE(isCalled);
        tree.device =
            Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, tree.deviceDescriptor, OpenTree::exclusiveAccess);
    }
}

TEST_F(ChunkNodes, ChecksumOfIIDCIsCheckedWhereThereIsOne)
{
    const std::string chunks = ChunksOf("IIDC");
    const auto good = Deliver(FrameOf(WithChecksum(chunks), "IIDC"));
    EXPECT_TRUE(IsSupported(good));
    EXPECT_EQ(Update(good), Error{});
    EXPECT_EQ(Value("Wide"), 7);
    Revoke(good);
    EXPECT_EQ(Update(Deliver(FrameOf(chunks, "IIDC"))), Error{});
    EXPECT_EQ(Value("Wide"), 7);
}

TEST_F(ChunkNodes, WrongChecksumIsRefusedAndLeavesTheBufferOfBefore)
{
    const Error refusal{KORO_RETURN_CODE_ERROR, "CChunkAdapterDcam CRC check failed!"};
    const auto bad = Deliver(FrameOf(WithChecksum(IIDCChunk(idBytes, LittleEndian(8, 4)), false), "IIDC"));
    EXPECT_TRUE(IsSupported(bad)); // which asks for the layout alone
    EXPECT_EQ(Update(bad), refusal);
    EXPECT_EQ(Value("Wide"), std::nullopt);

    const auto good = Deliver(FrameOf(WithChecksum(IIDCChunk(idBytes, LittleEndian(7, 4))), "IIDC"));
    EXPECT_EQ(Update(good), Error{});
    EXPECT_EQ(Update(bad), refusal);
    EXPECT_EQ(Value("Wide"), 7);
    Revoke(bad);
    EXPECT_EQ(Value("Wide"), 7);
    Revoke(good);
    EXPECT_EQ(Value("Wide"), std::nullopt);
}

TEST_F(ChunkNodes, ChecksumIsNotAskedForABufferOfAnotherTransportLayer)
{
    const std::string chunks = IIDCChunk(idBytes, LittleEndian(7, 4));
    Require(KORO_NodeMap_UpdateChunkNodes(map, Deliver(FrameOf(chunks, "IIDC"))));
    EXPECT_EQ(Update(Deliver(FrameOf(WithChecksum(IIDCChunk(idBytes, LittleEndian(8, 4)), false), "GEV", 2))), Error{});
    EXPECT_EQ(Value("Wide"), 8);
}

TEST_F(ChunkNodes, DeadHandlesAndNullOutputsAreReported)
{
    const auto buffer = Deliver(Chunks(7, 8));
    EXPECT_EQ(
        Outcome(KORO_NodeMap_GetHasBufferSupportedChunks(nullptr, nullptr, nullptr)), InvalidHandle("nodeMapHandle"));
    EXPECT_EQ(Outcome(KORO_NodeMap_GetHasBufferSupportedChunks(map, nullptr, nullptr)), InvalidHandle("bufferHandle"));
    EXPECT_EQ(
        Outcome(KORO_NodeMap_GetHasBufferSupportedChunks(map, buffer, nullptr)), NullPointer("hasSupportedChunks"));
    EXPECT_EQ(Outcome(KORO_NodeMap_UpdateChunkNodes(nullptr, buffer)), InvalidHandle("nodeMapHandle"));
    EXPECT_EQ(Outcome(KORO_NodeMap_UpdateChunkNodes(map, nullptr)), InvalidHandle("bufferHandle"));
    Revoke(buffer);
    EXPECT_EQ(Update(buffer), InvalidHandle("bufferHandle"));
    EXPECT_EQ(OutcomeOfSupport(buffer), InvalidHandle("bufferHandle"));
}

} // namespace koro::test
