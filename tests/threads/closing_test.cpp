// Trees that are ended from any level while calls, waits, updates and a monitor are inside.
//
// KORO_ENDURANCE is the factor of the rounds; 100 for the whole, which is 10,000.
#include "tests/boundary/stream_test.h"
#include "tests/threads/threads.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

using namespace koro::test;
using testing::IsEmpty;

namespace
{

int Rounds()
{
    const char* const factor = std::getenv("KORO_ENDURANCE");
    return 100 * (factor ? std::atoi(factor) : 1);
}

// Calls until the handle has ended, or the library.
void AskUntilEnded(const std::function<KORO_ReturnCode()>& ask)
{
    for (;;)
    {
        const auto code = ask();
        if (code == KORO_RETURN_CODE_INVALID_HANDLE || code == KORO_RETURN_CODE_NOT_INITIALIZED) return;
    }
}

void IgnoreRoles(const std::int32_t*, std::size_t, void*) {}

// From the leaf, from the middle, from the top, and all at once.
void End(const OpenTree& tree, int way)
{
    if (way == 0) KORO_DataStream_Destruct(tree.stream);
    if (way <= 1) KORO_Device_Destruct(tree.device);
    if (way <= 2) KORO_Interface_Destruct(tree.interface);
    if (way <= 3) KORO_System_Destruct(tree.system);
    if (way <= 4) KORO_ProducerLibrary_Destruct(tree.producerLibrary);
}

} // namespace

TEST(ClosingInThreads, LastOneOutClosesTheProducerLast)
{
    const ScriptedProducer producer;
    for (int round = 0; round < Rounds(); ++round)
    {
        Require(KORO_Library_Initialize());
        producer->ClearJournal();
        OpenTree tree(producer.Path());
        tree.QueueBuffers(1);
        Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, 0));
        const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
        const auto port = Get<KORO_PortHandle>(KORO_Module_GetPort, module);
        Require(KORO_DeviceDescriptor_SetMonitoringUpdateInterval(tree.deviceDescriptor, 0));
        KORO_DeviceDescriptorInformationChangedCallbackHandle callback = nullptr;
        Require(KORO_DeviceDescriptor_RegisterInformationChangedCallback(
            tree.deviceDescriptor, IgnoreRoles, nullptr, &callback));

        Threads threads;
        threads.Add(1, [&](std::size_t) {
            AskUntilEnded([&] {
                std::uint64_t frequency = 0;
                return KORO_Device_GetTimestampTickFrequency(tree.device, &frequency);
            });
        });
        threads.Add(1, [&](std::size_t) {
            AskUntilEnded([&] {
                std::uint8_t byte = 0;
                return KORO_Port_Read(port, 0, &byte, 1);
            });
        });
        threads.Add(1, [&](std::size_t) {
            AskUntilEnded([&] {
                KORO_BufferHandle buffer = nullptr;
                return KORO_DataStream_WaitForFinishedBuffer(tree.stream, KORO_INFINITE, &buffer);
            });
        });
        threads.Add(
            1, [&](std::size_t) { AskUntilEnded([&] { return KORO_Interface_UpdateDevices(tree.interface, 0); }); });
        threads.Start();
        if (round % 3 == 0) producer->AwaitWaiters(1);
        End(tree, round % 6);
        Require(KORO_Library_Close());
        threads.Join();

        ASSERT_EQ(producer->InitCount(), 0);
        ASSERT_THAT(producer->Open(), IsEmpty());
        ASSERT_EQ(producer->Journal().back(), "GCCloseLib()") << round;
    }
}
