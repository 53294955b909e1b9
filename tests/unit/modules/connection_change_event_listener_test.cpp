#include "base/exceptions.h"
#include "modules/connection_change_event_listener.h"
#include "tests/support/journal.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/modules/open_objects.h"

#include <functional>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

namespace koro::test
{

namespace
{

using internal::ConnectionChangeEventListener;
using Record = ConnectionChangeEventListener::Record;

class Listener : public testing::Test
{
protected:
    std::unique_ptr<ConnectionChangeEventListener> Make() const
    {
        const std::weak_ptr<internal::EventSupportingModule> system = objects.system;
        return std::make_unique<ConnectionChangeEventListener>(system, objects.system->ParentLibrary()->Proxy());
    }
    void HaveEvent() const
    {
        objects.producer->SetInfo("EventGetInfo", GenTL::EVENT_SIZE_MAX, scripted::Size(sizeof(Record)));
    }

    // Without the event as yet, so that the interface does not listen.
    const OpenObjects objects;
};

} // namespace

TEST_F(Listener, SubscriptionWithoutTheEventIsNotAvailable)
{
    const auto listener = Make();
    EXPECT_FALSE(listener->IsAvailable());
    EXPECT_THAT(
        [&] { listener->Subscribe([](const Record*) {}); },
        ThrowsExactly<internal::NotAvailableException>("Connection change event is not available!"));
}

TEST_F(Listener, SystemThatHasGoneHasExpired)
{
    const auto proxy = objects.system->ParentLibrary()->Proxy();
    EXPECT_THAT(
        [&] { ConnectionChangeEventListener({}, proxy); },
        ThrowsExactly<internal::InternalErrorException>("Pointer has expired!"));
}

TEST_F(Listener, SubscriberThatThrowsEndsTheRoundOfItsRecordAlone)
{
    HaveEvent();
    const auto listener = Make();
    ASSERT_TRUE(listener->IsAvailable());
    std::promise<std::uint16_t> second;
    listener->Subscribe([&](const Record* record) {
        const std::uint16_t kind = record->changeKind;
        if (kind == 1) throw std::runtime_error("of the subscriber");
        second.set_value(kind);
    });
    for (const char kind : {'\1', '\2'})
    {
        std::string block(sizeof(Record), '\0');
        block[272] = kind;
        ASSERT_TRUE(objects.producer->Fire("system", 1000, block));
    }
    EXPECT_EQ(second.get_future().get(), 2);
}

TEST_F(Listener, SubscribersCannotChangeInADelivery)
{
    HaveEvent();
    const auto listener = Make();
    std::promise<int> refused;
    std::promise<ConnectionChangeEventListener::Subscribers::Handle> subscribed;
    const auto handle = listener->Subscribe([&, own = subscribed.get_future().share()](const Record*) {
        int count = 0;
        const auto expectDeadlock = [&](const std::function<void()>& operation) {
            try
            {
                operation();
            }
            catch (const std::system_error& error)
            {
                count += error.code() == std::errc::resource_deadlock_would_occur;
            }
        };
        expectDeadlock([&] { listener->Subscribe([](const Record*) {}); });
        expectDeadlock([&] { listener->Unsubscribe(own.get()); });
        expectDeadlock([&] { listener->Stop(); });
        refused.set_value(count);
    });
    subscribed.set_value(handle);
    ASSERT_TRUE(objects.producer->Fire("system", 1000, std::string(sizeof(Record), '\0')));
    EXPECT_EQ(refused.get_future().get(), 3);
}

// When a subscriber was the last to hold the system: the thread must not wait for itself.
TEST_F(Listener, EndInsideADeliveryLetsTheThreadRunOut)
{
    HaveEvent();
    auto listener = Make();
    std::promise<void> ended;
    listener->Subscribe([&](const Record*) {
        listener.reset();
        ended.set_value();
    });
    objects.producer->AwaitWaiters(1);
    std::promise<void> unregistered;
    objects.producer->OnEntry("GCUnregisterEvent", [&] { unregistered.set_value(); });
    ASSERT_TRUE(objects.producer->Fire("system", 1000, std::string(sizeof(Record), '\0')));
    ended.get_future().get();
    unregistered.get_future().get(); // by the thread, as its last act
    EXPECT_EQ(listener, nullptr);
}

TEST_F(Listener, NobodySubscribesAfterStop)
{
    HaveEvent();
    const auto listener = Make();
    const auto handle = listener->Subscribe([](const Record*) {});
    objects.producer->AwaitWaiters(1);
    listener->Stop();
    listener->Stop();
    objects.producer->ClearJournal();
    EXPECT_THAT(
        [&] { listener->Subscribe([](const Record*) {}); },
        ThrowsExactly<internal::InternalErrorException>("Pointer has expired!"));
    EXPECT_EQ(objects.producer->Journal(), std::vector<std::string>());
    listener->Unsubscribe(handle);
}

TEST(InterfaceThatOutlivesItsSystem, HasNoThreadToLeave)
{
    OpenObjects objects;
    objects.interface.reset(); // which did not listen
    objects.producer->SetInfo("EventGetInfo", GenTL::EVENT_SIZE_MAX, scripted::Size(sizeof(Record)));
    // A system asks for the event once, so another one.
    objects.system.reset();
    objects.system = objects.systemDescriptor->OpenSystem();
    objects.interface = FirstChild(*objects.system)->OpenInterface();
    objects.producer->AwaitWaiters(1);
    objects.producer->ClearJournal();

    objects.system.reset();
    EXPECT_EQ(
        CallsOf(objects.producer->Journal(), {"EventKill", "GCUnregisterEvent", "TLClose"}),
        (std::vector<std::string>{
            "EventKill(system:event1000)", "GCUnregisterEvent(system, 1000)", "TLClose(system)"}));
    objects.producer->ClearJournal();
    objects.interface->EndThreads();
    objects.interface.reset();
    EXPECT_EQ(
        CallsOf(objects.producer->Journal(), {"EventKill", "IFClose"}), std::vector<std::string>{"IFClose(dead)"});
}

} // namespace koro::test
