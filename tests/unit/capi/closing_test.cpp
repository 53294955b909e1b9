// The order of ends, seen on objects of the test's own: a journal of their destructors.

#include "capi/closing.h"
#include "tests/unit/capi/handle_kinds_of_tests.h"

#include <functional>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace koro::internal::test
{

// What a scripted producer cannot hold at a gate: the end of waits of an object that has none.
class Level : public Instance
{
public:
    Level(std::string levelName, std::function<void(const std::string&)> noteEnd)
        : name(std::move(levelName)), note(std::move(noteEnd))
    {}
    ~Level() override { note(name); }

    void EndWaits() noexcept override
    {
        if (!HasEnded() || !onceEnded) return;
        std::exchange(onceEnded, nullptr)();
    }

    std::function<void()> onceEnded; // the first step of an end that comes to the object when it has been marked

private:
    const std::string name;
    const std::function<void(const std::string&)> note;
};

} // namespace koro::internal::test

namespace koro::internal
{

template <>
struct HandleOfClass<test::Level>
{
    using type = struct TestLevel_st*;
};

} // namespace koro::internal

namespace koro::internal::test
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

// A library, a system, an interface and a device, each with one handle.
class Ends : public testing::Test
{
protected:
    using Handle = HandleOf<Level>;

    Handle Enter(const std::string& name, Handle parent = nullptr)
    {
        const auto object = std::make_shared<Level>(name, [this](const std::string& endedName) {
            const std::lock_guard lock(mutex);
            ended.push_back(endedName);
        });
        return parent ? table.Add(object, table.Find(parent)->Get()) : table.Add(object);
    }
    Level& Object(Handle handle) const { return *table.Find(handle)->Get(); }
    std::vector<std::string> Ended() const
    {
        const std::lock_guard lock(mutex);
        return ended;
    }

private:
    mutable std::mutex mutex;
    std::vector<std::string> ended; // guarded by mutex

protected:
    HandleTable<Level> table;
    const Handle library = Enter("library");
    const Handle system = Enter("system", library);
    const Handle interface = Enter("interface", system);
    const Handle device = Enter("device", interface);
};

// Looks for activity below the library, on another thread, and stays at the device until it is let go.
class Visit
{
public:
    Visit(Level& device, std::shared_ptr<Hold> library)
    {
        device.onceEnded = [this] {
            arrived.set_value();
            mayLeave.get_future().wait();
        };
        done = std::async(std::launch::async, [library] { EndActivity({library}); });
        arrived.get_future().wait();
    }
    void Leave()
    {
        mayLeave.set_value();
        done.get();
    }

private:
    std::promise<void> arrived;
    std::promise<void> mayLeave;
    std::future<void> done;
};

// The visitor comes when the end of the system has seen that only the interface has a call inside.
TEST_F(Ends, KeepTheOrderWhereAnotherThreadIsTheLastToLeaveAnIdleObject)
{
    auto call = table.Find(interface);
    Level& deviceObject = Object(device);
    std::optional<Visit> visit;
    Object(system).onceEnded = [&] { visit.emplace(deviceObject, table.Find(library)); };
    EndObject(table.Find(system));
    ASSERT_TRUE(visit);
    call.reset();
    EXPECT_THAT(Ended(), IsEmpty());
    visit->Leave();
    EXPECT_THAT(Ended(), ElementsAre("device", "interface", "system"));
}

} // namespace
} // namespace koro::internal::test
