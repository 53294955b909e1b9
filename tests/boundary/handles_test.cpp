// What a handle means, how long it is valid, and what ends with it.

#include "tests/support/boundary.h"
#include "tests/support/journal.h"
#include "tests/support/scripted_producer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace
{

using namespace koro::test;

Error Invalid(const std::string& name)
{
    return {KORO_RETURN_CODE_INVALID_HANDLE, name + " is invalid!"};
}

template <class Export, class Handle>
Error KeyOutcome(Export function, Handle handle)
{
    std::size_t size = 0;
    return Outcome(function(handle, nullptr, &size));
}

Error SizeOutcome(KORO_BufferHandle buffer)
{
    std::size_t size = 0;
    return Outcome(KORO_Buffer_GetSize(buffer, &size));
}

Error PortOutcome(KORO_ModuleHandle module)
{
    KORO_PortHandle port = nullptr;
    return Outcome(KORO_Module_GetPort(module, &port));
}

Error EnableOutcome(KORO_EventSupportingModuleHandle source)
{
    KORO_EventControllerHandle controller = nullptr;
    return Outcome(KORO_EventSupportingModule_EnableEvents(source, KORO_EVENT_ERROR, &controller));
}

class Handles : public testing::Test
{
protected:
    ScriptedProducer producer;
    const KoroLibrary library;
    OpenTree tree{producer.Path()};
};

TEST_F(Handles, SameObjectGivesTheSameHandleEachTime)
{
    EXPECT_EQ(
        Get<KORO_SystemDescriptorHandle>(KORO_ProducerLibrary_GetSystem, tree.producerLibrary), tree.systemDescriptor);
    EXPECT_EQ(
        Get<KORO_InterfaceDescriptorHandle>(KORO_System_GetInterface, tree.system, std::size_t{0}),
        tree.interfaceDescriptor);
    EXPECT_EQ(
        Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, std::size_t{0}),
        tree.deviceDescriptor);
    EXPECT_EQ(Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, tree.device), tree.remoteDevice);
    EXPECT_EQ(
        Get<KORO_DataStreamDescriptorHandle>(KORO_Device_GetDataStream, tree.device, std::size_t{0}),
        tree.streamDescriptor);
}

TEST_F(Handles, ParentsAreHandedOutByTheHandlesOfTheirOpening)
{
    const auto buffer = tree.QueueBuffers(1)[0];
    EXPECT_EQ(
        Get<KORO_ProducerLibraryHandle>(KORO_SystemDescriptor_GetParentLibrary, tree.systemDescriptor),
        tree.producerLibrary);
    EXPECT_EQ(Get<KORO_ProducerLibraryHandle>(KORO_System_GetParentLibrary, tree.system), tree.producerLibrary);
    EXPECT_EQ(Get<KORO_SystemHandle>(KORO_InterfaceDescriptor_GetParentSystem, tree.interfaceDescriptor), tree.system);
    EXPECT_EQ(Get<KORO_SystemHandle>(KORO_Interface_GetParentSystem, tree.interface), tree.system);
    EXPECT_EQ(
        Get<KORO_InterfaceHandle>(KORO_DeviceDescriptor_GetParentInterface, tree.deviceDescriptor), tree.interface);
    EXPECT_EQ(Get<KORO_InterfaceHandle>(KORO_Device_GetParentInterface, tree.device), tree.interface);
    EXPECT_EQ(Get<KORO_DeviceHandle>(KORO_RemoteDevice_GetLocalDevice, tree.remoteDevice), tree.device);
    EXPECT_EQ(Get<KORO_DeviceHandle>(KORO_DataStreamDescriptor_GetParentDevice, tree.streamDescriptor), tree.device);
    EXPECT_EQ(Get<KORO_DeviceHandle>(KORO_DataStream_GetParentDevice, tree.stream), tree.device);
    EXPECT_EQ(SizeOutcome(buffer), Error{});
}

TEST_F(Handles, CastsGiveHandlesThatWorkAndTheSameOnesEachTime)
{
    const auto buffer = tree.QueueBuffers(1)[0];
    const auto module = Get<KORO_ModuleHandle>(KORO_Buffer_ToModule, buffer);
    EXPECT_EQ(Get<KORO_ModuleHandle>(KORO_Buffer_ToModule, buffer), module);
    EXPECT_EQ(PortOutcome(module), Error{});

    const auto descriptor =
        Get<KORO_ModuleDescriptorHandle>(KORO_DeviceDescriptor_ToModuleDescriptor, tree.deviceDescriptor);
    EXPECT_EQ(GetText(KORO_ModuleDescriptor_GetID, descriptor), "if0-dev0");
    EXPECT_EQ(
        Get<KORO_ModuleDescriptorHandle>(KORO_DeviceDescriptor_ToModuleDescriptor, tree.deviceDescriptor), descriptor);
}

TEST_F(Handles, RevokedBufferEndsWithItsCasts)
{
    const auto buffer = tree.QueueBuffers(1)[0];
    Require(KORO_DataStream_Flush(tree.stream, KORO_ACQ_QUEUE_ALL_DISCARD));
    const auto module = Get<KORO_ModuleHandle>(KORO_Buffer_ToModule, buffer);
    const auto source = Get<KORO_EventSupportingModuleHandle>(KORO_Buffer_ToEventSupportingModule, buffer);

    Require(KORO_DataStream_RevokeBuffer(tree.stream, buffer));
    EXPECT_EQ(SizeOutcome(buffer), Invalid("bufferHandle"));
    EXPECT_EQ(PortOutcome(module), Invalid("moduleHandle"));
    EXPECT_EQ(EnableOutcome(source), Invalid("eventSupportingModuleHandle"));
}

TEST_F(Handles, BufferThatTheProducerDoesNotRevokeKeepsItsHandles)
{
    const auto buffer = tree.QueueBuffers(1)[0];
    const auto module = Get<KORO_ModuleHandle>(KORO_Buffer_ToModule, buffer);
    producer->Answer("DSRevokeBuffer", GenTL::GC_ERR_BUSY);

    EXPECT_EQ(KORO_DataStream_RevokeBuffer(tree.stream, buffer), KORO_RETURN_CODE_BAD_ACCESS);
    EXPECT_EQ(SizeOutcome(buffer), Error{});
    EXPECT_EQ(PortOutcome(module), Error{});
    producer->AnswerAsUsual("DSRevokeBuffer");
}

TEST_F(Handles, DestructEndsAHandleWithItsCasts)
{
    const auto module = Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, tree.stream);
    const auto source = Get<KORO_EventSupportingModuleHandle>(KORO_DataStream_ToEventSupportingModule, tree.stream);
    Require(KORO_DataStream_Destruct(tree.stream));
    EXPECT_EQ(PortOutcome(module), Invalid("moduleHandle"));
    EXPECT_EQ(EnableOutcome(source), Invalid("eventSupportingModuleHandle"));
    EXPECT_EQ(Outcome(KORO_DataStream_Destruct(tree.stream)), Invalid("dataStreamHandle"));
    EXPECT_THAT(
        producer->Open(), testing::UnorderedElementsAre("system", "if0", "if0-dev0")); // the cast kept nothing open
}

TEST_F(Handles, DestructedDeviceEndsItsRemoteDevice)
{
    const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
    Require(KORO_DataStream_Destruct(tree.stream));
    Require(KORO_Device_Destruct(tree.device));

    KORO_DeviceHandle device = nullptr;
    EXPECT_EQ(Outcome(KORO_RemoteDevice_GetLocalDevice(tree.remoteDevice, &device)), Invalid("remoteDeviceHandle"));
    EXPECT_EQ(PortOutcome(module), Invalid("moduleHandle"));
    EXPECT_EQ(
        KeyOutcome(KORO_DataStreamDescriptor_GetKey, tree.streamDescriptor), Invalid("dataStreamDescriptorHandle"));
}

TEST_F(Handles, BuffersOfADestructedStreamEndWithItAlsoWhileACallKeepsTheStream)
{
    const auto buffer = tree.QueueBuffers(1)[0];
    Error outcomeMeanwhile;
    producer->OnEntry("DSGetInfo", [&] {
        producer->OnEntry("DSGetInfo", nullptr);
        Require(KORO_DataStream_Destruct(tree.stream));
        outcomeMeanwhile = SizeOutcome(buffer);
    });
    std::uint64_t underruns = 0;
    EXPECT_EQ(Outcome(KORO_DataStream_GetNumUnderruns(tree.stream, &underruns)), Error{});
    EXPECT_EQ(outcomeMeanwhile, Invalid("bufferHandle"));
    EXPECT_EQ(CallsOf(producer->Journal(), {"DSClose"}).size(), 1u);
}

TEST_F(Handles, DestructedLibraryEndsTheWholeTreeInCascade)
{
    const auto buffer = tree.QueueBuffers(1)[0];
    Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary));

    EXPECT_EQ(KeyOutcome(KORO_ProducerLibrary_GetKey, tree.producerLibrary), Invalid("producerLibraryHandle"));
    EXPECT_EQ(KeyOutcome(KORO_SystemDescriptor_GetKey, tree.systemDescriptor), Invalid("systemDescriptorHandle"));
    EXPECT_EQ(KeyOutcome(KORO_System_GetKey, tree.system), Invalid("systemHandle"));
    EXPECT_EQ(
        KeyOutcome(KORO_InterfaceDescriptor_GetKey, tree.interfaceDescriptor), Invalid("interfaceDescriptorHandle"));
    EXPECT_EQ(KeyOutcome(KORO_Interface_GetKey, tree.interface), Invalid("interfaceHandle"));
    EXPECT_EQ(KeyOutcome(KORO_DeviceDescriptor_GetKey, tree.deviceDescriptor), Invalid("deviceDescriptorHandle"));
    EXPECT_EQ(KeyOutcome(KORO_Device_GetKey, tree.device), Invalid("deviceHandle"));
    EXPECT_EQ(
        KeyOutcome(KORO_DataStreamDescriptor_GetKey, tree.streamDescriptor), Invalid("dataStreamDescriptorHandle"));
    EXPECT_EQ(KeyOutcome(KORO_DataStream_GetKey, tree.stream), Invalid("dataStreamHandle"));
    EXPECT_EQ(SizeOutcome(buffer), Invalid("bufferHandle"));
    EXPECT_EQ(producer->InitCount(), 0);
}

// A cast's entry that hung on the object itself would keep it open for ever.
TEST_F(Handles, CastsDoNotKeepModulesOpenWhenTheLibraryEnds)
{
    const auto buffer = tree.QueueBuffers(1)[0];
    Get<KORO_ModuleHandle>(KORO_System_ToModule, tree.system);
    Get<KORO_EventSupportingModuleHandle>(KORO_System_ToEventSupportingModule, tree.system);
    Get<KORO_ModuleHandle>(KORO_Interface_ToModule, tree.interface);
    Get<KORO_EventSupportingModuleHandle>(KORO_Interface_ToEventSupportingModule, tree.interface);
    Get<KORO_ModuleHandle>(KORO_Device_ToModule, tree.device);
    Get<KORO_EventSupportingModuleHandle>(KORO_Device_ToEventSupportingModule, tree.device);
    Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
    Get<KORO_ModuleHandle>(KORO_DataStream_ToModule, tree.stream);
    Get<KORO_EventSupportingModuleHandle>(KORO_DataStream_ToEventSupportingModule, tree.stream);
    Get<KORO_ModuleHandle>(KORO_Buffer_ToModule, buffer);
    Get<KORO_ModuleDescriptorHandle>(KORO_SystemDescriptor_ToModuleDescriptor, tree.systemDescriptor);
    Get<KORO_ModuleDescriptorHandle>(KORO_InterfaceDescriptor_ToModuleDescriptor, tree.interfaceDescriptor);
    Get<KORO_ModuleDescriptorHandle>(KORO_DeviceDescriptor_ToModuleDescriptor, tree.deviceDescriptor);
    Get<KORO_ModuleDescriptorHandle>(KORO_DataStreamDescriptor_ToModuleDescriptor, tree.streamDescriptor);

    Require(KORO_ProducerLibrary_Destruct(tree.producerLibrary));
    EXPECT_EQ(producer->InitCount(), 0);
}

TEST_F(Handles, DestructWithOpenChildrenClosesFromTheTop)
{
    producer->ClearJournal();
    Require(KORO_System_Destruct(tree.system));
    EXPECT_EQ(CallsOf(producer->Journal(), {"TLClose", "IFClose", "DevClose"}).front(), "TLClose(system)");
    EXPECT_EQ(KeyOutcome(KORO_Interface_GetKey, tree.interface), Invalid("interfaceHandle"));
    EXPECT_EQ(KeyOutcome(KORO_ProducerLibrary_GetKey, tree.producerLibrary), Error{});
}

TEST_F(Handles, LibraryDestructedDuringACallLivesUntilTheCallEnds)
{
    producer->OnEntry("TLUpdateInterfaceList", [&] {
        EXPECT_EQ(KORO_ProducerLibrary_Destruct(tree.producerLibrary), KORO_RETURN_CODE_SUCCESS);
        EXPECT_EQ(KeyOutcome(KORO_System_GetKey, tree.system), Invalid("systemHandle"));
        EXPECT_EQ(producer->InitCount(), 1);
    });
    EXPECT_EQ(Outcome(KORO_System_UpdateInterfaces(tree.system, 0)), Error{});
    producer->OnEntry("TLUpdateInterfaceList", nullptr);
    EXPECT_EQ(KeyOutcome(KORO_System_GetKey, tree.system), Invalid("systemHandle"));
    EXPECT_EQ(producer->InitCount(), 0);
}

} // namespace
