#include "base/callback_registry.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <latch>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

using Registry = koro::internal::TCallbackManager<std::string>;

namespace
{

// The code of the standard system error that `step` throws; 0 if it throws none.
std::error_code CodeThrownBy(const std::function<void()>& step)
{
    try
    {
        step();
    }
    catch (const std::system_error& error)
    {
        return error.code();
    }
    return {};
}

} // namespace

TEST(CallbackRegistry, TriggerCallsEveryFunctionWithTheArguments)
{
    Registry registry;
    std::string first;
    std::string second;
    registry.RegisterCallback([&](const std::string& text) { first = text; });
    registry.RegisterCallback([&](const std::string& text) { second = text; });
    registry.TriggerCallback("lost");
    EXPECT_EQ(first, "lost");
    EXPECT_EQ(second, "lost");
}

TEST(CallbackRegistry, SameFunctionTwiceGivesTwoHandlesAndTwoCalls)
{
    Registry registry;
    int calls = 0;
    const Registry::Function function = [&](const std::string&) { ++calls; };
    const auto first = registry.RegisterCallback(function);
    const auto second = registry.RegisterCallback(function);
    EXPECT_NE(first, second);
    EXPECT_NE(first, nullptr);
    registry.TriggerCallback("");
    EXPECT_EQ(calls, 2);
    registry.UnregisterCallback(first);
    registry.TriggerCallback("");
    EXPECT_EQ(calls, 3);
}

TEST(CallbackRegistry, UnregisteredFunctionIsNotCalledAndIsFreed)
{
    Registry registry;
    const auto held = std::make_shared<int>(0);
    const auto handle = registry.RegisterCallback([held](const std::string&) { ++*held; });
    EXPECT_EQ(held.use_count(), 2);
    registry.UnregisterCallback(handle);
    registry.TriggerCallback("");
    EXPECT_EQ(*held, 0);
    EXPECT_EQ(held.use_count(), 1);
}

TEST(CallbackRegistry, UnknownHandleAndSecondUnregisteringAreIgnored)
{
    Registry registry;
    int calls = 0;
    registry.RegisterCallback([&](const std::string&) { ++calls; });
    const auto handle = registry.RegisterCallback([](const std::string&) {});
    const int elsewhere = 0;
    registry.UnregisterCallback(&elsewhere);
    registry.UnregisterCallback(nullptr);
    registry.UnregisterCallback(handle);
    registry.UnregisterCallback(handle);
    registry.TriggerCallback("");
    EXPECT_EQ(calls, 1);
}

TEST(CallbackRegistry, EmptyFunctionIsStoredAndEndsTheRound)
{
    Registry registry;
    const auto handle = registry.RegisterCallback(nullptr);
    EXPECT_NE(handle, nullptr);
    EXPECT_FALSE(registry.IsEmpty());
    EXPECT_THROW(registry.TriggerCallback(""), std::bad_function_call);
    registry.UnregisterCallback(handle);
    EXPECT_TRUE(registry.IsEmpty());
    registry.TriggerCallback("");
}

TEST(CallbackRegistry, ExceptionEndsTheRoundAndLeavesTheRegistryUsable)
{
    Registry registry;
    int calls = 0;
    registry.RegisterCallback([&](const std::string&) {
        ++calls;
        throw std::runtime_error("from the callback");
    });
    registry.RegisterCallback([&](const std::string&) {
        ++calls;
        throw std::runtime_error("from the callback");
    });
    EXPECT_THROW(registry.TriggerCallback(""), std::runtime_error);
    EXPECT_EQ(calls, 1);
    EXPECT_THROW(registry.TriggerCallback(""), std::runtime_error);
    EXPECT_EQ(calls, 2);
}

TEST(CallbackRegistry, CallbackThatComesBackGetsTheDeadlockError)
{
    Registry registry;
    std::vector<std::error_code> codes;
    Registry::Handle own = nullptr;
    own = registry.RegisterCallback([&](const std::string&) {
        codes.push_back(CodeThrownBy([&] { registry.RegisterCallback([](const std::string&) {}); }));
        codes.push_back(CodeThrownBy([&] { registry.UnregisterCallback(own); }));
        codes.push_back(CodeThrownBy([&] { registry.TriggerCallback(""); }));
        codes.push_back(CodeThrownBy([&] { registry.RefuseInCallback(); }));
    });
    registry.TriggerCallback("");
    const std::error_code deadlock = std::make_error_code(std::errc::resource_deadlock_would_occur);
    EXPECT_EQ(codes, (std::vector<std::error_code>{deadlock, deadlock, deadlock, deadlock}));
    EXPECT_NO_THROW(registry.RefuseInCallback());

    codes.clear();
    registry.UnregisterCallback(own);
    registry.TriggerCallback("");
    EXPECT_TRUE(codes.empty());
}

TEST(CallbackRegistry, CallbackMayUseAnotherRegistry)
{
    Registry registry;
    Registry other;
    registry.RegisterCallback([&](const std::string&) { other.RegisterCallback([](const std::string&) {}); });
    registry.TriggerCallback("");
    EXPECT_FALSE(other.IsEmpty());
}

TEST(CallbackRegistry, UnregisteringInAnotherThreadWaitsForTheRoundToEnd)
{
    Registry registry;
    std::latch inside(1);
    std::latch goOn(1);
    std::atomic<bool> roundOver{false};
    const auto handle = registry.RegisterCallback([&](const std::string&) {
        inside.count_down();
        goOn.wait();
        roundOver = true;
    });
    std::thread trigger([&] { registry.TriggerCallback(""); });
    inside.wait();
    std::thread unregister([&] {
        registry.UnregisterCallback(handle);
        EXPECT_TRUE(roundOver);
    });
    goOn.count_down();
    trigger.join();
    unregister.join();
}
