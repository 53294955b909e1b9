#include "base/exceptions.h"
#include "capi/handle_table.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/capi/handle_kinds_of_tests.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace koro::internal::test
{
namespace
{

using koro::test::ThrowsExactly;

TEST(HandleTables, HashIsFnvOneAOverTheBytesFromTheLeastSignificantOn)
{
    // Known values of the function for eight zero bytes and for the text "abcdefgh".
    EXPECT_EQ(HashHandleValue(0), 0xa8c7f832281a39c5);
    EXPECT_EQ(HashHandleValue(0x6867666564636261), 0x25da8c1836a8d66d);
}

TEST(HandleTables, HandleIsTheAddressOfTheObject)
{
    HandleTable<Parent> table;
    const auto object = std::make_shared<Parent>();
    EXPECT_EQ(reinterpret_cast<void*>(table.Add(object)), object.get());
}

TEST(HandleTables, UnknownAndNullHandlesFindNothing)
{
    HandleTable<Parent> table;
    EXPECT_EQ(table.Find(nullptr), nullptr);
    EXPECT_EQ(table.Find(HandleFor(std::make_shared<Parent>())), nullptr);
}

TEST(HandleTables, EntryKeepsTheObjectAliveUntilItIsRemoved)
{
    HandleTable<Parent> table;
    auto object = std::make_shared<Parent>();
    const std::weak_ptr<Parent> watch = object;
    const auto handle = table.Add(object);
    object.reset();
    EXPECT_EQ(table.Find(handle), watch.lock());

    table.Remove(handle);
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(table.Find(handle), nullptr);
    table.Remove(handle); // unknown by now
}

TEST(HandleTables, SecondAddGivesTheSameHandleAndIsNotNew)
{
    HandleTable<Child> table;
    const auto parent = std::make_shared<Parent>();
    const auto child = std::make_shared<Child>();
    bool isNew = false;
    const auto handle = table.Add(child, parent, &isNew);
    EXPECT_TRUE(isNew);
    EXPECT_EQ(table.Add(child, parent, &isNew), handle);
    EXPECT_FALSE(isNew);
}

TEST(HandleTables, EndOfTheParentRemovesTheChildsEntry)
{
    HandleTable<Child> table;
    auto parent = std::make_shared<Parent>();
    auto child = std::make_shared<Child>();
    const std::weak_ptr<Child> watch = child;
    const auto handle = table.Add(child, parent);
    child.reset();
    EXPECT_NE(table.Find(handle), nullptr);

    parent.reset();
    EXPECT_EQ(table.Find(handle), nullptr);
    EXPECT_TRUE(watch.expired());
}

TEST(HandleTables, EntryDoesNotKeepTheParentAlive)
{
    HandleTable<Child> table;
    auto parent = std::make_shared<Parent>();
    table.Add(std::make_shared<Child>(), parent);
    EXPECT_EQ(parent.use_count(), 1);
}

TEST(HandleTables, EndGoesInCascadeDownTheTree)
{
    HandleTable<Child> children;
    HandleTable<Parent> grandchildren;
    auto parent = std::make_shared<Parent>();
    auto child = std::make_shared<Child>();
    const auto childHandle = children.Add(child, parent);
    const auto grandchildHandle = grandchildren.Add(std::make_shared<Parent>(), child);
    child.reset();

    parent.reset();
    EXPECT_EQ(children.Find(childHandle), nullptr);
    EXPECT_EQ(grandchildren.Find(grandchildHandle), nullptr);
}

TEST(HandleTables, ChildThatIsHeldElsewhereLosesItsEntryAlone)
{
    HandleTable<Child> table;
    auto parent = std::make_shared<Parent>();
    const auto child = std::make_shared<Child>();
    const auto handle = table.Add(child, parent);
    parent.reset();
    EXPECT_EQ(table.Find(handle), nullptr);
    EXPECT_EQ(child.use_count(), 1);
}

struct CountingParent
{
    std::uint64_t AddDestructionCallback(Instance::DestructionCallback)
    {
        ++callbacks;
        return 7;
    }
    void RemoveDestructionCallback(std::uint64_t id) { callbacks -= id == 7 ? 1 : 0; }
    int callbacks = 0;
};

// The parent would otherwise gather a callback for each child that it ever had.
TEST(HandleTables, EndOfAChildTakesItsCallbackFromTheLivingParent)
{
    HandleTable<Child> table;
    const auto parent = std::make_shared<CountingParent>();
    const auto handle = table.Add(std::make_shared<Child>(), parent);
    EXPECT_EQ(parent->callbacks, 1);
    table.Remove(handle);
    EXPECT_EQ(parent->callbacks, 0);
}

// It may be entered again and again: both would gather callbacks.
TEST(HandleTables, RemovedEntryOfAChildThatLivesOnLeavesNoCallbackAtEither)
{
    HandleTable<Child> table;
    const auto parent = std::make_shared<CountingParent>();
    auto child = std::make_shared<Child>();
    for (int round = 0; round < 3; ++round)
    {
        const auto handle = table.Add(child, parent);
        EXPECT_EQ(parent->callbacks, 1);
        table.Remove(handle);
        EXPECT_EQ(parent->callbacks, 0);
    }
    child.reset();
    EXPECT_EQ(parent->callbacks, 0); // the child took nothing back a second time
}

TEST(HandleTables, ParentThatTakesNoCallbackLeavesNoEntry)
{
    struct FullParent
    {
        std::uint64_t AddDestructionCallback(Instance::DestructionCallback) { throw InternalErrorException("full"); }
        void RemoveDestructionCallback(std::uint64_t) {}
    };
    HandleTable<Child> table;
    const auto parent = std::make_shared<FullParent>();
    const auto child = std::make_shared<Child>();
    EXPECT_THAT([&] { table.Add(child, parent); }, ThrowsExactly<InternalErrorException>("full"));
    EXPECT_EQ(table.Find(HandleFor(child)), nullptr);
    EXPECT_EQ(child.use_count(), 1);
}

// Two objects, one after the other, at one address.
class SameAddress
{
public:
    std::shared_ptr<Child> Make()
    {
        return {new (place) Child, [](Child* child) { child->~Child(); }};
    }

private:
    alignas(Child) unsigned char place[sizeof(Child)];
};

TEST(HandleTables, NewObjectAtAnOldAddressIsAcceptedUnderIt)
{
    SameAddress address;
    HandleTable<Child> table;
    const auto parent = std::make_shared<Parent>();
    const auto first = table.Add(address.Make(), parent);
    table.Remove(first);
    const auto second = table.Add(address.Make(), parent);
    EXPECT_EQ(second, first);
    EXPECT_NE(table.Find(first), nullptr);
    table.Remove(first);
}

TEST(HandleTables, RemovalForAnObjectSparesALaterOneAtItsAddress)
{
    SameAddress address;
    HandleTable<Child> table;
    auto object = address.Make();
    const std::weak_ptr<Child> former = object;
    const auto handle = table.Add(object);
    table.Remove(handle);
    object.reset();
    table.Add(address.Make());

    table.RemoveEntryOf(handle, former);
    EXPECT_NE(table.Find(handle), nullptr);
    table.RemoveEntryOf(handle, table.Find(handle));
    EXPECT_EQ(table.Find(handle), nullptr);
}

// While the parent ends, the child goes and another one moves in; then comes the removal that was meant for the first.
TEST(HandleTables, EndOfAnOldParentSparesTheEntryOfALaterChildAtTheSameAddress)
{
    SameAddress address;
    HandleTable<Child> table;
    auto oldParent = std::make_shared<Parent>();
    const auto newParent = std::make_shared<Parent>();
    HandleOf<Child> handle = nullptr;
    bool replaced = false;
    const auto replace = [&] {
        if (std::exchange(replaced, true)) return;
        table.Remove(handle);
        table.Add(address.Make(), newParent);
    };
    // Callbacks run in no defined order: of many, one runs before the removal.
    for (int count = 0; count < 64; ++count)
        oldParent->AddDestructionCallback(replace);
    handle = table.Add(address.Make(), oldParent);
    for (int count = 0; count < 64; ++count)
        oldParent->AddDestructionCallback(replace);

    oldParent.reset();
    EXPECT_TRUE(replaced);
    EXPECT_NE(table.Find(handle), nullptr);
}

// Dropped under the lock, the object's end would lock the same table again and hang.
TEST(HandleTables, ObjectThatLooksIntoItsTableWhileItEndsDoesNotHang)
{
    HandleTable<Parent> table;
    auto object = std::make_shared<Parent>();
    const auto handle = table.Add(object);
    bool found = true;
    object->AddDestructionCallback([&] { found = table.Find(handle) != nullptr; });
    object.reset();
    table.Remove(handle);
    EXPECT_FALSE(found);
}

TEST(HandleTables, AnyOfLooksAtTheObjectsAndHoldsNone)
{
    HandleTable<Parent> table;
    const auto first = std::make_shared<Parent>();
    const auto second = std::make_shared<Parent>();
    table.Add(first);
    table.Add(second);
    EXPECT_TRUE(table.AnyOf([&](const Parent& object) {
        EXPECT_EQ(first.use_count(), 2); // this test's and the table's
        return &object == second.get();
    }));
    EXPECT_FALSE(table.AnyOf([](const Parent&) { return false; }));
}

TEST(HandleTables, CloseDropsAllAndAdmitsNothingUntilItIsOpened)
{
    HandleTable<Parent> table;
    std::vector<std::weak_ptr<Parent>> watches;
    for (int count = 0; count < 200; ++count)
    {
        const auto object = std::make_shared<Parent>();
        watches.push_back(object);
        table.Add(object);
    }
    EXPECT_EQ(SizeOf(table), 200);

    table.Close();
    EXPECT_EQ(SizeOf(table), 0);
    for (const auto& watch : watches)
        EXPECT_TRUE(watch.expired());
    const auto late = std::make_shared<Parent>();
    EXPECT_THAT(
        [&] { table.Add(late); }, ThrowsExactly<NotInitializedException>("The library has been closed meanwhile!"));
    EXPECT_EQ(late.use_count(), 1);

    table.Open();
    EXPECT_EQ(table.Find(table.Add(late)), late);
}

TEST(HandleTables, EndOfAParentAfterTheCloseFindsAnEmptyTable)
{
    HandleTable<Child> table;
    auto parent = std::make_shared<Parent>();
    const auto child = std::make_shared<Child>();
    table.Add(child, parent);
    table.Close();
    parent.reset();
    EXPECT_EQ(child.use_count(), 1);
}

} // namespace
} // namespace koro::internal::test
