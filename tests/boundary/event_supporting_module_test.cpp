#include "tests/boundary/stream_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace koro::test;
using namespace GenTL;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class EventSupportingModule : public StreamTest
{
protected:
    KORO_EventSupportingModuleHandle module =
        Get<KORO_EventSupportingModuleHandle>(KORO_DataStream_ToEventSupportingModule, tree.stream);

    Error OutcomeOfEnable(std::int32_t type) const
    {
        KORO_EventControllerHandle controller = nullptr;
        return Outcome(KORO_EventSupportingModule_EnableEvents(module, type, &controller));
    }
};

} // namespace

TEST_F(EventSupportingModule, PassesTheTypeOfTheEventAsItStands)
{
    for (const std::int32_t type : {0, 2, 5, 1000, 1234567, -1})
        EXPECT_EQ(OutcomeOfEnable(type), Error{});
    EXPECT_THAT(
        CallsOf({"GCRegisterEvent"}),
        ElementsAre(
            "GCRegisterEvent(if0-dev0-stream0, 0)", "GCRegisterEvent(if0-dev0-stream0, 2)",
            "GCRegisterEvent(if0-dev0-stream0, 5)", "GCRegisterEvent(if0-dev0-stream0, 1000)",
            "GCRegisterEvent(if0-dev0-stream0, 1234567)", "GCRegisterEvent(if0-dev0-stream0, -1)"));
}

TEST_F(EventSupportingModule, EveryOpenedModuleCanRegister)
{
    const auto expect = [&](KORO_EventSupportingModuleHandle other, const std::string& name) {
        producer->ClearJournal();
        Get<KORO_EventControllerHandle>(KORO_EventSupportingModule_EnableEvents, other, std::int32_t{5});
        EXPECT_EQ(CallsOf({"GCRegisterEvent"}), Journal{"GCRegisterEvent(" + name + ", 5)"});
    };
    using Handle = KORO_EventSupportingModuleHandle;
    expect(Get<Handle>(KORO_System_ToEventSupportingModule, tree.system), "system");
    expect(Get<Handle>(KORO_Interface_ToEventSupportingModule, tree.interface), "if0");
    expect(Get<Handle>(KORO_Device_ToEventSupportingModule, tree.device), "if0-dev0");
    expect(module, streamID);
}

TEST_F(EventSupportingModule, SecondRegistrationIsRefusedByTheProducer)
{
    EXPECT_EQ(OutcomeOfEnable(EVENT_MODULE), Error{});
    EXPECT_EQ(OutcomeOfEnable(EVENT_MODULE), Failure("GCRegisterEvent", GC_ERR_RESOURCE_IN_USE));
    EXPECT_EQ(Failure("GCRegisterEvent", GC_ERR_RESOURCE_IN_USE).code, KORO_RETURN_CODE_BAD_ACCESS);
    EXPECT_EQ(CallsOf({"GCRegisterEvent"}).size(), 2u);
}

TEST_F(EventSupportingModule, RefusedCustomEventIsAFailureLikeAnyOther)
{
    producer->AnswerOnce("GCRegisterEvent", GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(OutcomeOfEnable(1000), Failure("GCRegisterEvent", GC_ERR_NOT_IMPLEMENTED));
}

TEST_F(EventSupportingModule, RegistersNothingWithoutAPlaceForTheHandle)
{
    EXPECT_EQ(
        Outcome(KORO_EventSupportingModule_EnableEvents(module, 5, nullptr)), NullPointer("eventControllerHandle"));
    EXPECT_EQ(
        Outcome(KORO_EventSupportingModule_EnableEvents(nullptr, 5, nullptr)),
        InvalidHandle("eventSupportingModuleHandle"));
    EXPECT_THAT(producer->Journal(), IsEmpty());
}

TEST_F(EventSupportingModule, EndOfTheModuleEndsControllersAndTheirEvents)
{
    const auto controller = EnableEvents(EVENT_MODULE);
    ASSERT_TRUE(producer->Fire(streamID, EVENT_MODULE, "block"));
    const auto event = Get<KORO_EventHandle>(KORO_EventController_WaitForEvent, controller, std::uint64_t{0});
    producer->ClearJournal();
    EXPECT_EQ(Outcome(KORO_DataStream_Destruct(tree.stream)), Error{});

    std::int32_t type = 0;
    EXPECT_EQ(Outcome(KORO_EventController_KillWait(controller)), InvalidHandle("eventControllerHandle"));
    EXPECT_EQ(Outcome(KORO_Event_GetType(event, &type)), InvalidHandle("eventHandle"));
    // Too late for the producer, and nobody minds.
    EXPECT_EQ(
        CallsOf({"DSClose", "GCUnregisterEvent"}),
        (Journal{"DSClose(if0-dev0-stream0)", "GCUnregisterEvent(dead, 5)"}));
}
