#include "tests/boundary/producer_errors.h"
#include "tests/boundary/tree_test.h"
#include "tests/support/journal.h"

#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;
using DataStreamDescriptor = TreeTest;

} // namespace

TEST_F(DataStreamDescriptor, KeyAndIDAreStored)
{
    producer->ClearJournal();
    ExpectTextOut(
        "key", producer.Path() + "|scripted producer|if0|if0-dev0|if0-dev0-stream0", KORO_DataStreamDescriptor_GetKey,
        tree.streamDescriptor);
    const auto base =
        Get<KORO_ModuleDescriptorHandle>(KORO_DataStreamDescriptor_ToModuleDescriptor, tree.streamDescriptor);
    ExpectTextOut("id", "if0-dev0-stream0", KORO_ModuleDescriptor_GetID, base);
    EXPECT_EQ(producer->Journal(), Strings{});
}

TEST_F(DataStreamDescriptor, ParentIsTheDevice)
{
    EXPECT_EQ(Get<KORO_DeviceHandle>(KORO_DataStreamDescriptor_GetParentDevice, tree.streamDescriptor), tree.device);
    EXPECT_EQ(
        Outcome(KORO_DataStreamDescriptor_GetParentDevice(tree.streamDescriptor, nullptr)),
        NullPointer("deviceHandle"));
}

TEST_F(DataStreamDescriptor, CastTwiceIsTheSameHandle)
{
    const auto cast = [&] {
        return Get<KORO_ModuleDescriptorHandle>(KORO_DataStreamDescriptor_ToModuleDescriptor, tree.streamDescriptor);
    };
    EXPECT_EQ(cast(), cast());
    EXPECT_EQ(
        Outcome(KORO_DataStreamDescriptor_ToModuleDescriptor(tree.streamDescriptor, nullptr)),
        NullPointer("moduleDescriptorHandle"));
}

TEST_F(DataStreamDescriptor, OpenGivesAStreamOfTheSameKey)
{
    EXPECT_EQ(
        GetText(KORO_DataStream_GetKey, tree.stream), GetText(KORO_DataStreamDescriptor_GetKey, tree.streamDescriptor));
}

TEST_F(DataStreamDescriptor, SecondOpenTellsTheProducersRefusal)
{
    KORO_DataStreamHandle stream = nullptr;
    EXPECT_EQ(
        Outcome(KORO_DataStreamDescriptor_OpenDataStream(tree.streamDescriptor, &stream)),
        CallFailure("DevOpenDataStream", ProducerErrorOf(GenTL::GC_ERR_RESOURCE_IN_USE)));
    EXPECT_EQ(stream, nullptr);
}

TEST_F(DataStreamDescriptor, OpenWithoutAPlaceForTheHandleOpensNothing)
{
    Require(KORO_DataStream_Destruct(tree.stream));
    producer->ClearJournal();
    EXPECT_EQ(
        Outcome(KORO_DataStreamDescriptor_OpenDataStream(tree.streamDescriptor, nullptr)),
        NullPointer("dataStreamHandle"));
    EXPECT_EQ(CallsOf(producer->Journal(), {"DevOpenDataStream"}), Strings{});
}

TEST_F(DataStreamDescriptor, HandlesEndWithTheDevice)
{
    const auto base =
        Get<KORO_ModuleDescriptorHandle>(KORO_DataStreamDescriptor_ToModuleDescriptor, tree.streamDescriptor);
    Require(KORO_Device_Destruct(tree.device));

    std::size_t size = 0;
    EXPECT_EQ(
        Outcome(KORO_DataStreamDescriptor_GetKey(tree.streamDescriptor, nullptr, &size)),
        InvalidHandle("dataStreamDescriptorHandle"));
    EXPECT_EQ(Outcome(KORO_ModuleDescriptor_GetID(base, nullptr, &size)), InvalidHandle("moduleDescriptorHandle"));
}

} // namespace koro::test
