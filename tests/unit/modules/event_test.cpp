#include "modules/event.h"
#include "modules/event_controller.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/modules/open_objects.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

using namespace koro::internal;
using namespace koro::test;
using namespace GenTL;

namespace
{

class EventClass : public testing::Test
{
protected:
    std::shared_ptr<Event> Take(const std::string& block) const
    {
        EXPECT_TRUE(objects.producer->Fire("if0-dev0-stream0", EVENT_MODULE, block));
        return controller->WaitForEvent(0);
    }

    OpenObjects objects;
    std::shared_ptr<EventController> controller = objects.stream->EnableEvents(EVENT_MODULE);
    std::shared_ptr<Event> event = Take("event");
};

const std::vector<std::uint8_t> eventBytes = {'e', 'v', 'e', 'n', 't'};

} // namespace

TEST_F(EventClass, TypeAndRawDataStayReadableAfterTheEndOfItsController)
{
    controller.reset();
    EXPECT_EQ(event->Type(), EVENT_MODULE);
    EXPECT_EQ(event->RawData(), eventBytes);
}

TEST_F(EventClass, WhatTheProducerDecodesNeedsTheRegistration)
{
    controller.reset();
    EXPECT_THAT(
        [&] { event->ID(); },
        ThrowsExactly<InternalErrorException>(
            "[Function: EventGetDataInfo | Info-Command: 2 (EVENT_DATA_NUMID) | Error-Code: -1006 "
            "(GC_ERR_INVALID_HANDLE) | Error-Text: scripted failure of EventGetDataInfo]"));
}

TEST_F(EventClass, DataThatWasReadStaysAfterTheEndOfItsController)
{
    const auto data = event->Data();
    controller.reset();
    EXPECT_EQ(event->Data(), data);
    EXPECT_EQ(event->Data(), (std::vector<std::uint8_t>{'e', 'n', 't'}));
}

TEST_F(EventClass, ControllerThatHasGoneIsToldAsExpired)
{
    EXPECT_EQ(event->ParentController(), controller);
    controller.reset();
    EXPECT_THAT([&] { event->ParentController(); }, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
}
