#include "base/instance.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <thread>
#include <type_traits>

using koro::internal::Instance;

TEST(Instance, DestructorRunsTheCallbacksThatAreLeft)
{
    int runs = 0;
    {
        Instance instance;
        instance.AddDestructionCallback([&] { ++runs; });
        instance.AddDestructionCallback([&] { ++runs; });
        EXPECT_EQ(runs, 0);
    }
    EXPECT_EQ(runs, 2);
}

TEST(Instance, IdsAreUniqueWhileTheirCallbacksAreStored)
{
    Instance instance;
    std::set<Instance::DestructionCallbackID> ids;
    for (int index = 0; index < 100; ++index)
        ids.insert(instance.AddDestructionCallback([] {}));
    EXPECT_EQ(ids.size(), 100u);
    EXPECT_FALSE(ids.contains(0));
}

TEST(Instance, RemovedCallbackDoesNotRun)
{
    int kept = 0;
    int removed = 0;
    {
        Instance instance;
        instance.AddDestructionCallback([&] { ++kept; });
        const auto id = instance.AddDestructionCallback([&] { ++removed; });
        instance.RemoveDestructionCallback(id);
    }
    EXPECT_EQ(kept, 1);
    EXPECT_EQ(removed, 0);
}

TEST(Instance, UnknownOrRepeatedRemovalIsIgnored)
{
    int runs = 0;
    {
        Instance instance;
        const auto id = instance.AddDestructionCallback([] {});
        instance.AddDestructionCallback([&] { ++runs; });
        instance.RemoveDestructionCallback(0);
        instance.RemoveDestructionCallback(id);
        instance.RemoveDestructionCallback(id);
    }
    EXPECT_EQ(runs, 1);
}

TEST(Instance, CallbackMayTakeOtherInstancesCallbacksAway)
{
    Instance other;
    int runs = 0;
    const auto id = other.AddDestructionCallback([&] { ++runs; });
    {
        Instance instance;
        instance.AddDestructionCallback([&] { other.RemoveDestructionCallback(id); });
    }
    EXPECT_EQ(runs, 0);
}

// The tables take the instance's lock while they hold their own, and callbacks take the tables' locks.
TEST(Instance, CallbackRunsWithoutTheLock)
{
    auto instance = std::make_unique<Instance>();
    Instance* const raw = instance.get();
    bool ran = false;
    raw->AddDestructionCallback([&] {
        std::thread([raw] { raw->RemoveDestructionCallback(0); }).join();
        ran = true;
    });
    instance.reset();
    EXPECT_TRUE(ran);
}

TEST(Instance, RemovedCallbackIsFreedWithoutTheLock)
{
    // What the callback holds may be the last reference to something that removes its own callback.
    struct Holder
    {
        explicit Holder(Instance& held) : instance(held) {}
        ~Holder() { instance.RemoveDestructionCallback(0); }
        Instance& instance;
    };
    Instance instance;
    const auto id = instance.AddDestructionCallback([holder = std::make_shared<Holder>(instance)] {});
    instance.RemoveDestructionCallback(id);
}

TEST(InstanceDeathTest, EmptyCallbackEndsTheProcess)
{
    EXPECT_DEATH(
        {
            Instance instance;
            instance.AddDestructionCallback(nullptr);
        },
        "bad_function_call");
}

namespace
{

class RunsEarly : public Instance
{
public:
    void RunNow() { RunDestructionCallbacks(); }
};

} // namespace

TEST(Instance, ClassMayRunItsCallbacksBeforeItsOwnEnd)
{
    int runs = 0;
    {
        RunsEarly instance;
        instance.AddDestructionCallback([&] { ++runs; });
        instance.RunNow();
        EXPECT_EQ(runs, 1);
    }
    EXPECT_EQ(runs, 1);
}

TEST(Instance, IsDestroyedThroughItsBase)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<Instance>);
    EXPECT_FALSE(std::is_copy_constructible_v<Instance>);
}
