// Handles while their objects go, and trees that are opened at the same time.
#include "tests/boundary/stream_test.h"
#include "tests/threads/threads.h"

#include <algorithm>
#include <atomic>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace koro::test;
using testing::IsEmpty;

namespace
{

constexpr int rounds = 5;

class HandlesInThreads : public StreamTest
{
protected:
    static constexpr std::size_t askers = 3;

    HandlesInThreads() { producer->KeepJournal(false); }

    void OpenStreamAgain()
    {
        tree.stream = Get<KORO_DataStreamHandle>(KORO_DataStreamDescriptor_OpenDataStream, tree.streamDescriptor);
    }

    // Ends the stream while every asker is at work; each gets its number.
    void DestructStreamUnder(const std::function<void(std::size_t)>& askUntilInvalid)
    {
        std::atomic<std::size_t> asking{0};
        Threads threads;
        threads.Add(askers, [&](std::size_t number) {
            ++asking;
            askUntilInvalid(number);
        });
        threads.Start();
        while (asking < askers)
            std::this_thread::yield();
        Require(KORO_DataStream_Destruct(tree.stream));
        threads.Join();
        OpenStreamAgain();
    }
};

// Calls until the handle has ended; returns whether every earlier answer was one of the allowed ones.
template <class Ask>
bool AsksUntilInvalid(const Ask& ask, const Error& invalid, const std::vector<Error>& allowed)
{
    for (;;)
    {
        const auto outcome = Outcome(ask());
        if (outcome == invalid) return true;
        if (outcome != Error{} && std::find(allowed.begin(), allowed.end(), outcome) == allowed.end())
        {
            ADD_FAILURE() << outcome;
            return false;
        }
        std::this_thread::yield(); // the one that ends the object needs the producer too
    }
}

} // namespace

TEST_F(HandlesInThreads, StreamIsWholeUntilItsHandleIsGone)
{
    for (int round = 0; round < rounds; ++round)
    {
        StartWithBuffers(2);
        DestructStreamUnder([&](std::size_t) {
            const auto ask = [&] {
                std::uint64_t underruns = 0;
                return KORO_DataStream_GetNumUnderruns(tree.stream, &underruns);
            };
            EXPECT_TRUE(AsksUntilInvalid(ask, InvalidHandle("dataStreamHandle"), {}));
        });
    }
}

TEST_F(HandlesInThreads, BuffersAnswerOrHaveExpiredWhileTheirStreamGoes)
{
    // Revoked at the producer, and not yet here.
    const auto revoked =
        InfoFailure({"DSGetBufferInfo", 1, "BUFFER_INFO_SIZE"}, ProducerErrorOf(GenTL::GC_ERR_INVALID_HANDLE));
    for (int round = 0; round < rounds; ++round)
    {
        const auto buffers = tree.QueueBuffers(askers);
        DestructStreamUnder([&](std::size_t number) {
            const auto ask = [&] {
                std::size_t size = 0;
                return KORO_Buffer_GetSize(buffers[number], &size);
            };
            EXPECT_TRUE(AsksUntilInvalid(ask, InvalidHandle("bufferHandle"), {parentExpired, revoked}));
        });
    }
}

TEST_F(HandlesInThreads, OneOfManyDestructsAStream)
{
    producer->KeepJournal(true);
    for (int round = 0; round < rounds; ++round)
    {
        std::atomic<int> successes{0};
        std::atomic<int> invalid{0};
        Threads threads;
        threads.Add(4, [&](std::size_t) {
            const auto outcome = Outcome(KORO_DataStream_Destruct(tree.stream));
            if (outcome == Error{}) ++successes;
            if (outcome == InvalidHandle("dataStreamHandle")) ++invalid;
        });
        threads.Join();
        // Two may both have found the stream before one removed it.
        EXPECT_GE(successes, 1);
        EXPECT_EQ(successes + invalid, 4);
        OpenStreamAgain();
    }
    EXPECT_EQ(CallsOf({"DSClose"}).size(), std::size_t{rounds});
}

TEST_F(HandlesInThreads, CastsOfManyThreadsGiveOneHandle)
{
    const auto buffer = tree.QueueBuffers(1).front();
    std::array<KORO_ModuleHandle, 4> modules{};
    Threads threads;
    threads.Add(4, [&](std::size_t number) { modules[number] = Get<KORO_ModuleHandle>(KORO_Buffer_ToModule, buffer); });
    threads.Join();
    EXPECT_THAT(modules, testing::Each(modules[0]));
}

TEST_F(HandlesInThreads, OneOfManyOpensADevice)
{
    for (int round = 0; round < rounds; ++round)
    {
        Require(KORO_Device_Destruct(tree.device));
        std::array<KORO_DeviceHandle, 4> devices{};
        std::atomic<int> successes{0};
        std::atomic<int> refusals{0};
        Threads threads;
        threads.Add(4, [&](std::size_t number) {
            const auto outcome = Outcome(
                KORO_DeviceDescriptor_OpenDevice(tree.deviceDescriptor, OpenTree::exclusiveAccess, &devices[number]));
            if (outcome == Error{}) tree.device = devices[number], ++successes;
            if (outcome == Failure("IFOpenDevice", GenTL::GC_ERR_RESOURCE_IN_USE)) ++refusals;
        });
        threads.Join();
        EXPECT_EQ(successes, 1);
        EXPECT_EQ(refusals, 3);
    }
}

TEST(TreesInThreads, ProducersOpenAndCloseBesideEachOther)
{
    const KoroLibrary library;
    const std::array<ScriptedProducer, 3> producers;
    Threads threads;
    threads.Add(producers.size(), [&](std::size_t number) {
        for (int round = 0; round < rounds; ++round)
        {
            OpenTree tree(producers[number].Path());
            tree.QueueBuffers(2);
            Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
            EXPECT_TRUE(producers[number]->Deliver("if0-dev0-stream0"));
            Get<KORO_BufferHandle>(KORO_DataStream_WaitForFinishedBuffer, tree.stream, std::uint64_t{0});
            Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary));
        }
    });
    threads.Join();
    for (const auto& producer : producers)
    {
        EXPECT_THAT(producer->Open(), IsEmpty());
        EXPECT_EQ(producer->InitCount(), 0);
    }
}

TEST(TreesInThreads, OneProducerIsLoadedByManyAtOnce)
{
    const ScriptedProducer producer;
    const KoroLibrary library;
    Threads threads;
    threads.Add(4, [&](std::size_t) {
        for (int round = 0; round < rounds; ++round)
        {
            KORO_ProducerLibraryHandle handle = nullptr;
            Require(KORO_ProducerLibrary_Construct(producer.Path().c_str(), producer.Path().size() + 1, &handle));
            const auto descriptor = Get<KORO_SystemDescriptorHandle>(KORO_ProducerLibrary_GetSystem, handle);
            EXPECT_EQ(GetText(KORO_SystemDescriptor_GetModelName, descriptor), "Scripted");
            Require(KORO_ProducerLibrary_Destruct(handle));
        }
    });
    threads.Join();
    EXPECT_EQ(producer->InitCount(), 0);
}

TEST(TreesInThreads, LibraryIsCountedByManyThreads)
{
    Threads threads;
    threads.Add(4, [&](std::size_t) {
        for (int round = 0; round < 200; ++round)
        {
            const KoroLibrary library;
            EXPECT_EQ(Get<KORO_Bool8>(KORO_Library_IsInitialized), 1);
            EXPECT_EQ(Get<std::uint32_t>(KORO_Library_GetVersionMajor), 1u);
        }
    });
    threads.Join();
    EXPECT_EQ(Get<KORO_Bool8>(KORO_Library_IsInitialized), 0);
}
