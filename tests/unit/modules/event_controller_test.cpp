#include "modules/event.h"
#include "modules/event_controller.h"
#include "tests/support/journal.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/modules/open_objects.h"

#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace koro::internal;
using namespace koro::test;
using namespace GenTL;
using testing::IsEmpty;

namespace
{

class EventControllerClass : public testing::Test
{
protected:
    // A controller over a producer of which single functions are the test's own.
    std::shared_ptr<EventController> ControllerOn(const std::shared_ptr<GenTLProxy>& proxy) const
    {
        EVENT_HANDLE event = nullptr;
        EXPECT_EQ(proxy->GCRegisterEvent(objects.stream->Handle(), EVENT_MODULE, &event), GC_ERR_SUCCESS);
        return std::make_shared<EventController>(objects.stream->Handle(), event, EVENT_MODULE, objects.stream, proxy);
    }

    std::vector<std::string> CallsOf(const std::vector<std::string>& functions) const
    {
        return koro::test::CallsOf(objects.producer->Journal(), functions);
    }

    OpenObjects objects;
};

// Writes what fits and claims more.
GC_ERROR ClaimMoreThanFits(EVENT_HANDLE, void* buffer, size_t* size, uint64_t)
{
    std::memset(buffer, 'x', *size);
    *size += 1000;
    return GC_ERR_SUCCESS;
}

// Takes a null buffer as the wish to throw the event away.
GC_ERROR RefuseANullBuffer(EVENT_HANDLE, void* buffer, size_t* size, uint64_t)
{
    *size = 0;
    return buffer ? GC_ERR_SUCCESS : GC_ERR_INVALID_PARAMETER;
}

GC_ERROR AcceptZerosAlone(EVENT_HANDLE, void* buffer, size_t* size, uint64_t)
{
    const std::string zeros(*size, '\0');
    return std::memcmp(buffer, zeros.data(), *size) == 0 ? GC_ERR_SUCCESS : GC_ERR_ERROR;
}

GC_ERROR RegisterUnderTheSameHandle(EVENTSRC_HANDLE, EVENT_TYPE, EVENT_HANDLE* event)
{
    *event = reinterpret_cast<EVENT_HANDLE>(std::uintptr_t{0x60});
    return GC_ERR_SUCCESS;
}

} // namespace

TEST_F(EventControllerClass, SizeAboveTheCapacityIsCutToIt)
{
    objects.producer->SetInfo("EventGetInfo", EVENT_SIZE_MAX, scripted::Size(12));
    const auto proxy = std::make_shared<GenTLProxy>(objects.producer.Path());
    const auto controller = ControllerOn(proxy);
    proxy->EventGetData.Bind(reinterpret_cast<void*>(&ClaimMoreThanFits), proxy->CTIPath());
    EXPECT_EQ(controller->WaitForEvent(0)->RawData(), std::vector<std::uint8_t>(12, 'x'));
}

TEST_F(EventControllerClass, BlockIsZeroedForTheProducer)
{
    objects.producer->SetInfo("EventGetInfo", EVENT_SIZE_MAX, scripted::Size(4096));
    const auto proxy = std::make_shared<GenTLProxy>(objects.producer.Path());
    const auto controller = ControllerOn(proxy);
    proxy->EventGetData.Bind(reinterpret_cast<void*>(&AcceptZerosAlone), proxy->CTIPath());
    EXPECT_EQ(controller->WaitForEvent(0)->RawData(), std::vector<std::uint8_t>(4096, 0));
}

TEST_F(EventControllerClass, EventsWithoutABlockAreNotThrownAway)
{
    objects.producer->SetInfo("EventGetInfo", EVENT_SIZE_MAX, scripted::Size(0));
    const auto proxy = std::make_shared<GenTLProxy>(objects.producer.Path());
    const auto controller = ControllerOn(proxy);
    proxy->EventGetData.Bind(reinterpret_cast<void*>(&RefuseANullBuffer), proxy->CTIPath());
    EXPECT_THAT(controller->WaitForEvent(0)->RawData(), IsEmpty());
}

TEST_F(EventControllerClass, BlockHasNoMoreMemoryThanItsSize)
{
    const auto controller = objects.stream->EnableEvents(EVENT_MODULE);
    ASSERT_TRUE(objects.producer->Fire("if0-dev0-stream0", EVENT_MODULE, "twelve bytes"));
    const auto block = controller->WaitForBlock(0);
    EXPECT_EQ(block.size(), 12u);
    EXPECT_EQ(block.capacity(), 12u);
    ASSERT_TRUE(objects.producer->Fire("if0-dev0-stream0", EVENT_MODULE, ""));
    EXPECT_EQ(controller->WaitForBlock(0).capacity(), 0u);
}

TEST_F(EventControllerClass, RegistrationAnewMayGiveTheSameHandle)
{
    const auto proxy = std::make_shared<GenTLProxy>(objects.producer.Path());
    proxy->GCRegisterEvent.Bind(reinterpret_cast<void*>(&RegisterUnderTheSameHandle), proxy->CTIPath());
    const auto controller = ControllerOn(proxy);
    objects.producer->Answer("GCUnregisterEvent", GC_ERR_SUCCESS);
    objects.producer->Answer("EventFlush", GC_ERR_SUCCESS);
    EXPECT_NO_THROW(controller->FlushPendingKillWaits());
    EXPECT_NO_THROW(controller->FlushEvents());
}

TEST_F(EventControllerClass, KeepsNoModuleAliveAndTellsWhenItHasGone)
{
    const auto controller = objects.stream->EnableEvents(EVENT_MODULE);
    EXPECT_EQ(controller->ParentModule(), objects.stream);
    const std::weak_ptr<DataStream> watched = objects.stream;
    objects.stream.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_THAT([&] { controller->ParentModule(); }, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
}

TEST_F(EventControllerClass, EndAfterTheModulesEndGivesNoFailure)
{
    auto controller = objects.stream->EnableEvents(EVENT_MODULE);
    objects.stream.reset();
    objects.producer->ClearJournal();
    EXPECT_NO_THROW(controller.reset());
    EXPECT_EQ(CallsOf({"GCUnregisterEvent"}), std::vector<std::string>{"GCUnregisterEvent(dead, 5)"});
}

TEST_F(EventControllerClass, ExceptionOfTheProducerAtTheEndReachesNobody)
{
    auto controller = objects.stream->EnableEvents(EVENT_MODULE);
    objects.producer->OnEntry("GCUnregisterEvent", [] { throw 5; });
    EXPECT_NO_THROW(controller.reset());
    objects.producer->OnEntry("GCUnregisterEvent", nullptr);
}

TEST_F(EventControllerClass, EventsDoNotKeepItAlive)
{
    auto controller = objects.stream->EnableEvents(EVENT_MODULE);
    ASSERT_TRUE(objects.producer->Fire("if0-dev0-stream0", EVENT_MODULE, "block"));
    const auto event = controller->WaitForEvent(0);
    const std::weak_ptr<EventController> watched = controller;
    controller.reset();
    EXPECT_TRUE(watched.expired());
}
