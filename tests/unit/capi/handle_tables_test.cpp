#include "base/exceptions.h"
#include "capi/handle_table.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/capi/handle_kinds_of_tests.h"

#include <algorithm>
#include <gtest/gtest.h>
#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/asan_interface.h>
#endif
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
    EXPECT_EQ(ObjectOf(table, handle), watch.lock());

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

TEST(HandleTables, CallThatCameByAHandleKeepsTheObjectAfterItsEntry)
{
    HandleTable<Parent> table;
    auto object = std::make_shared<Parent>();
    const std::weak_ptr<Parent> watch = object;
    const auto handle = table.Add(object);
    object.reset();
    auto held = table.Find(handle);
    table.Remove(handle);
    EXPECT_FALSE(watch.expired());
    held.reset();
    EXPECT_TRUE(watch.expired());
}

// The parent would otherwise gather a link for each child that it ever had.
TEST(HandleTables, ParentForgetsTheChildrenThatHaveGone)
{
    HandleTable<Child> table;
    const auto parent = std::make_shared<Parent>();
    for (int round = 0; round < 1000; ++round)
    {
        const auto handle = table.Add(std::make_shared<Child>(), parent);
        EXPECT_EQ(parent->HoldsBelow().size(), 1u);
        table.Remove(handle);
        EXPECT_EQ(parent->HoldsBelow().size(), 0u);
    }
}

TEST(HandleTables, ParentThatHasBeenEndedTakesNoEntry)
{
    HandleTable<Child> table;
    const auto parent = std::make_shared<Parent>();
    const auto child = std::make_shared<Child>();
    parent->MarkEnded(EndingScope());
    EXPECT_THAT([&] { table.Add(child, parent); }, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
    EXPECT_EQ(table.Find(HandleFor(child)), nullptr);
    EXPECT_EQ(child.use_count(), 1);
}

TEST(HandleTables, ObjectThatHasBeenEndedTakesNoFurtherHandle)
{
    HandleTable<Child> table;
    const auto parent = std::make_shared<Parent>();
    const auto child = std::make_shared<Child>();
    child->MarkEnded(EndingScope());
    EXPECT_THAT(
        [&] { table.AddFurther(child, parent); }, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
    EXPECT_EQ(table.Find(HandleFor(child)), nullptr);
    EXPECT_EQ(child.use_count(), 1);
}

// A chunk that was destructed, and is still in the list of its buffer, gets a handle again.
TEST(HandleTables, ObjectThatHasBeenEndedMayGetAHandleAgain)
{
    HandleTable<Child> table;
    const auto parent = std::make_shared<Parent>();
    const auto child = std::make_shared<Child>();
    child->MarkEnded(EndingScope());
    EXPECT_NE(table.Find(table.Add(child, parent)), nullptr);
}

TEST(HandleTables, CloseLeavesTheEntriesThatGoWithTheObjectAbove)
{
    HandleTable<Child> table;
    auto parent = std::make_shared<Parent>();
    auto held = table.Find(table.Add(std::make_shared<Child>(), parent));
    table.Add(std::make_shared<Child>());
    held->LeaveToObjectAbove();
    held.reset();
    table.Close();
    EXPECT_EQ(SizeOf(table), 1);
    parent.reset();
    EXPECT_EQ(SizeOf(table), 0);
}

TEST(HandleTables, CloseDropsWhatKeepsTheHoldAboveSinceThen)
{
    HandleTable<Child> table;
    const auto held = table.Find(table.Add(std::make_shared<Child>()));
    held->LeaveToObjectAbove();
    held->Keep(table.Find(table.Add(std::make_shared<Child>())));
    table.Close();
    EXPECT_EQ(SizeOf(table), 0);
}

TEST(HandleTables, HiddenEntryIsNotFoundAndStillThere)
{
    HandleTable<Child> table;
    const auto child = std::make_shared<Child>();
    const auto handle = table.Add(child);
    const auto held = table.Find(handle);
    EXPECT_FALSE(held->HideEntry()); // nobody but this test is inside
    EXPECT_EQ(table.Find(handle), nullptr);
    EXPECT_EQ(SizeOf(table), 1);
    held->RemoveEntry();
    EXPECT_EQ(SizeOf(table), 0);
    EXPECT_TRUE(held->HideEntry());
}

TEST(HandleTables, HiddenEntryTellsWhetherAnybodyElseIsInside)
{
    HandleTable<Child> table;
    const auto handle = table.Add(std::make_shared<Child>());
    const auto held = table.Find(handle);
    const auto another = table.Find(handle);
    EXPECT_TRUE(held->HideEntry());
}

TEST(HandleTables, AddressOfAnObjectStaysOutOfUseUntilTheStoreIsFull)
{
    HandleTable<Child> table;
    std::vector<HandleOf<Child>> ended;
    for (std::size_t count = 0; count < EndedObjects::maxObjects; ++count)
    {
        const auto handle = table.Add(std::make_shared<Child>());
        table.Remove(handle);
        ended.push_back(handle);
    }
    std::sort(ended.begin(), ended.end());
    EXPECT_EQ(std::unique(ended.begin(), ended.end()), ended.end());
}

TEST(HandleTables, FetchesOfALivingObjectDoNotBringEndedAddressesBack)
{
    HandleTable<Child> table;
    const auto ended = table.Add(std::make_shared<Child>());
    table.Remove(ended);
    const auto living = std::make_shared<Child>();
    for (std::size_t count = 0; count < 2 * EndedObjects::maxObjects; ++count)
        table.Add(living);

    std::vector<std::shared_ptr<Child>> others; // more than the allocator would keep for later
    for (std::size_t count = 0; count < 1000; ++count)
    {
        others.push_back(std::make_shared<Child>());
        EXPECT_NE(HandleFor(others.back()), ended);
    }
}

// Two objects, one after the other, at one address.
class SameAddress
{
public:
    std::shared_ptr<Child> Make()
    {
#ifdef __SANITIZE_ADDRESS__
        ASAN_UNPOISON_MEMORY_REGION(place, sizeof place); // that of an ended object
#endif
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
    table.RemoveEntryOf(handle, ObjectOf(table, handle));
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
        EXPECT_EQ(first.use_count(), 2); // this test's and that of the table's hold
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
    EXPECT_EQ(ObjectOf(table, table.Add(late)), late);
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
