#include "producers/kit/handle_registry.h"

#include <gtest/gtest.h>
#include <memory>

namespace
{
using namespace koro::kit;

class Cat : public Object
{};
class Dog : public Object
{};

template <typename T>
GC_ERROR CodeOfFinding(const HandleRegistry& registry, void* handle)
{
    try
    {
        registry.Find<T>(handle);
        return GC_ERR_SUCCESS;
    }
    catch (const Failure& failure)
    {
        return failure.Code();
    }
}

TEST(KitHandleRegistry, FindsWhatItHolds)
{
    HandleRegistry registry;
    const auto cat = std::make_shared<Cat>();
    registry.Add(cat);
    ASSERT_NE(cat->Handle(), nullptr);
    EXPECT_EQ(registry.Find<Cat>(cat->Handle()), cat);
}

TEST(KitHandleRegistry, RefusesNullDeadAndForeignHandles)
{
    HandleRegistry registry;
    const auto cat = std::make_shared<Cat>();
    registry.Add(cat);
    EXPECT_EQ(CodeOfFinding<Cat>(registry, nullptr), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(CodeOfFinding<Dog>(registry, cat->Handle()), GC_ERR_INVALID_HANDLE);
    EXPECT_TRUE(registry.Remove(cat->Handle()));
    EXPECT_FALSE(registry.Remove(cat->Handle()));
    EXPECT_EQ(CodeOfFinding<Cat>(registry, cat->Handle()), GC_ERR_INVALID_HANDLE);
}

TEST(KitHandleRegistry, UsesNoHandleTwice)
{
    HandleRegistry registry;
    const auto first = std::make_shared<Cat>();
    registry.Add(first);
    registry.Remove(first->Handle());
    const auto second = std::make_shared<Cat>();
    registry.Add(second);
    EXPECT_NE(first->Handle(), second->Handle());
}

TEST(KitHandleRegistry, AnswersDeadHandlesWithTheCodeThatIsSet)
{
    HandleRegistry registry;
    registry.SetDeadHandleCode(GC_ERR_IO);
    EXPECT_EQ(CodeOfFinding<Cat>(registry, nullptr), GC_ERR_IO);
}

} // namespace
