#include "base/exceptions.h"
#include "gentl/child_manager.h"
#include "tests/support/journal.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/gentl/bound_producer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <latch>
#include <memory>
#include <string>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

using namespace koro::internal;
using namespace koro::test;
using GenTL::GC_ERROR;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace
{

class Owner;

// What the factory is given, and nothing else.
struct Child
{
    Child(std::string childID, const std::shared_ptr<Owner>& childParent, std::shared_ptr<const GenTLProxy> childProxy)
        : id(std::move(childID)), parent(childParent), proxy(std::move(childProxy))
    {}

    std::string id;
    std::weak_ptr<Owner> parent;
    std::shared_ptr<const GenTLProxy> proxy;
};

// The interfaces of a system, as the library's own class lists them.
class Owner : public TGenTLChildManager<Child, std::string, std::uint32_t, Owner>,
              public std::enable_shared_from_this<Owner>
{
public:
    Owner(const GenTLCaller& producer, GenTL::TL_HANDLE systemHandle)
        : TGenTLChildManager(producer), gentl(producer), system(systemHandle)
    {}

    void LoseParent() { parent.reset(); }

private:
    GC_ERROR ProducerUpdateChildren(GenTL::bool8_t* changed, std::uint64_t timeout_ms) override
    {
        return gentl.Result<&GenTLProxy::TLUpdateInterfaceList>(system, changed, timeout_ms);
    }
    GC_ERROR ProducerNumChildren(std::uint32_t* count) override
    {
        return gentl.Result<&GenTLProxy::TLGetNumInterfaces>(system, count);
    }
    GC_ERROR ProducerChildID(std::uint32_t index, std::string* id) override
    {
        return QueryTextID(
            [&](char* text, std::size_t* size) {
                return gentl.Result<&GenTLProxy::TLGetInterfaceID>(system, index, text, size);
            },
            ChildIDFunctionName(), id);
    }
    const char* UpdateFunctionName() const override { return "TLUpdateInterfaceList"; }
    const char* NumChildrenFunctionName() const override { return "TLGetNumInterfaces"; }
    const char* ChildIDFunctionName() const override { return "TLGetInterfaceID"; }
    std::shared_ptr<const void> HoldParent() const override
    {
        if (!parent) throw InternalErrorException("Pointer has expired!");
        return parent;
    }
    std::shared_ptr<Owner> SharedOwner() override { return shared_from_this(); }
    bool IsOwnerEnded() const override { return false; }

    GenTLCaller gentl;
    GenTL::TL_HANDLE system;
    std::shared_ptr<const int> parent = std::make_shared<const int>(0);
};

class ChildManagerTest : public testing::Test
{
protected:
    ChildManagerTest()
    {
        owner->RegisterLostCallback([this](const std::string& key) { reports.push_back("lost " + key); });
        owner->RegisterFoundCallback(
            [this](const std::shared_ptr<Child>& child) { reports.push_back("found " + child->id); });
    }

    // The producer's interfaces from now on; the next update reports a change.
    void SetInterfaces(const std::vector<std::string>& ids)
    {
        producer->Edit([&](scripted::Tree& tree) {
            tree.interfaces.clear();
            for (const auto& id : ids)
                tree.interfaces.push_back(scripted::MakeInterface(id, 0));
        });
    }

    std::vector<std::string> Update()
    {
        reports.clear();
        owner->UpdateChildren(0);
        return reports;
    }

    std::vector<std::string> IDs() const
    {
        std::vector<std::string> ids;
        const auto children = owner->Children();
        for (const auto& child : *children)
            ids.push_back(child->id);
        return ids;
    }

    std::shared_ptr<Child> ChildAt(std::size_t index) const { return owner->Children()->at(index); }

    std::vector<std::string> Calls(const std::string& function) const
    {
        return CallsOf(producer->Journal(), {function});
    }

    OpenProducer producer;
    std::shared_ptr<Owner> owner = std::make_shared<Owner>(producer.gentl, producer.system);
    std::vector<std::string> reports;
};

} // namespace

// Walks.

TEST_F(ChildManagerTest, ListIsEmptyBeforeTheFirstUpdateAndReadingItAsksNothing)
{
    EXPECT_THAT(IDs(), IsEmpty());
    EXPECT_THAT(producer->Journal(), IsEmpty());
}

TEST_F(ChildManagerTest, FirstUpdateFindsEveryChildInTheProducersOrder)
{
    EXPECT_THAT(Update(), ElementsAre("found if0", "found if1"));
    EXPECT_THAT(IDs(), ElementsAre("if0", "if1"));
    EXPECT_THAT(
        producer->Journal(), ElementsAre(
                                 "TLUpdateInterfaceList(system, 0)", "TLGetNumInterfaces(system)",
                                 "TLGetInterfaceID(system, 0, size)", "TLGetInterfaceID(system, 0, data)",
                                 "TLGetInterfaceID(system, 1, size)", "TLGetInterfaceID(system, 1, data)"));
}

TEST_F(ChildManagerTest, TimeoutReachesTheProducer)
{
    owner->UpdateChildren(GenTL::GENTL_INFINITE);
    EXPECT_THAT(Calls("TLUpdateInterfaceList"), ElementsAre("TLUpdateInterfaceList(system, infinite)"));
}

TEST_F(ChildManagerTest, FirstUpdateReadsTheListEvenWhenNothingChanged)
{
    producer->SetChanged("TLUpdateInterfaceList", 0);
    EXPECT_THAT(Update(), ElementsAre("found if0", "found if1"));
}

TEST_F(ChildManagerTest, FirstUpdateReadsTheListWhenChangedIsNotWritten)
{
    producer->SetChanged("TLUpdateInterfaceList", std::nullopt);
    EXPECT_THAT(Update(), ElementsAre("found if0", "found if1"));
}

TEST_F(ChildManagerTest, SecondUpdateWithoutChangeAsksForNothingMore)
{
    Update();
    const auto before = owner->Children();
    producer->ClearJournal();
    EXPECT_THAT(Update(), IsEmpty());
    EXPECT_THAT(producer->Journal(), ElementsAre("TLUpdateInterfaceList(system, 0)"));
    EXPECT_EQ(*owner->Children(), *before);
}

TEST_F(ChildManagerTest, ChangeThatIsNotWrittenCountsAsNone)
{
    Update();
    SetInterfaces({"if9"});
    producer->SetChanged("TLUpdateInterfaceList", std::nullopt);
    EXPECT_THAT(Update(), IsEmpty());
    EXPECT_THAT(IDs(), ElementsAre("if0", "if1"));
}

TEST_F(ChildManagerTest, AnyValueButZeroCountsAsAChange)
{
    Update();
    SetInterfaces({"if9"});
    producer->SetChanged("TLUpdateInterfaceList", 0x80);
    EXPECT_THAT(Update(), UnorderedElementsAre("lost if0", "lost if1", "found if9"));
}

TEST_F(ChildManagerTest, ReportedChangeWithTheSameChildrenReportsNothing)
{
    Update();
    const auto before = owner->Children();
    producer->SetChanged("TLUpdateInterfaceList", 1);
    EXPECT_THAT(Update(), IsEmpty());
    EXPECT_EQ(*owner->Children(), *before);
}

TEST_F(ChildManagerTest, ChildThatStaysKeepsItsObject)
{
    Update();
    const auto stayed = ChildAt(1);
    SetInterfaces({"if5", "if1"});
    EXPECT_THAT(Update(), ElementsAre("lost if0", "found if5"));
    EXPECT_THAT(IDs(), ElementsAre("if5", "if1"));
    EXPECT_EQ(ChildAt(1), stayed);
}

TEST_F(ChildManagerTest, EmptyProducerLosesAllAndFindsNone)
{
    Update();
    SetInterfaces({});
    EXPECT_THAT(Update(), UnorderedElementsAre("lost if0", "lost if1"));
    EXPECT_THAT(IDs(), IsEmpty());
}

TEST_F(ChildManagerTest, AllLostAreReportedBeforeAllFound)
{
    SetInterfaces({"a", "b", "c"});
    Update();
    SetInterfaces({"x", "b", "y"});
    const auto order = Update();
    ASSERT_EQ(order.size(), 4u);
    EXPECT_THAT((std::vector<std::string>{order[0], order[1]}), UnorderedElementsAre("lost a", "lost c"));
    EXPECT_EQ(order[2], "found x");
    EXPECT_EQ(order[3], "found y");
}

TEST_F(ChildManagerTest, ChildThatComesBackIsANewObject)
{
    Update();
    const auto before = ChildAt(0);
    SetInterfaces({"if1"});
    EXPECT_THAT(Update(), ElementsAre("lost if0"));
    SetInterfaces({"if0", "if1"});
    EXPECT_THAT(Update(), ElementsAre("found if0"));
    EXPECT_NE(ChildAt(0), before);
}

TEST_F(ChildManagerTest, LostChildLivesOnlyAsLongAsSomebodyHoldsIt)
{
    Update();
    const std::weak_ptr<Child> lost = ChildAt(0);
    auto held = lost.lock();
    SetInterfaces({"if1"});
    Update();
    EXPECT_FALSE(lost.expired());
    held.reset();
    EXPECT_TRUE(lost.expired());
}

TEST_F(ChildManagerTest, FactoryGetsKeyParentAndProxyAndTheParentIsHeldWeakly)
{
    Update();
    const auto child = ChildAt(0);
    EXPECT_EQ(child->id, "if0");
    EXPECT_EQ(child->parent.lock(), owner);
    EXPECT_EQ(child->proxy, producer.proxy);
    EXPECT_EQ(owner.use_count(), 1);
}

TEST_F(ChildManagerTest, ListIsNotCopiedForWhoAsksForItAndNoUpdateChangesIt)
{
    Update();
    const auto before = owner->Children();
    EXPECT_EQ(owner->Children().get(), before.get());
    SetInterfaces({"if9"});
    Update();
    EXPECT_EQ(before->size(), 2u);
    EXPECT_THAT(IDs(), ElementsAre("if9"));
}

TEST_F(ChildManagerTest, ChildIsListedUntilItIsLost)
{
    SetInterfaces({"twin", "if1", "twin"});
    Update();
    const auto before = owner->Children();
    for (const auto& child : *before)
        EXPECT_TRUE(owner->IsListed(*child));
    SetInterfaces({"if1"});
    Update();
    EXPECT_FALSE(owner->IsListed(*before->at(0)));
    EXPECT_TRUE(owner->IsListed(*before->at(1)));
    EXPECT_FALSE(owner->IsListed(*before->at(2)));
}

TEST_F(ChildManagerTest, EmptyIdIsAKeyLikeAnyOther)
{
    SetInterfaces({"", "if1"});
    EXPECT_THAT(Update(), ElementsAre("found ", "found if1"));
}

// Keys that repeat.

TEST_F(ChildManagerTest, KeyThatRepeatsInTheFirstWalkIsFoundTwice)
{
    SetInterfaces({"twin", "twin"});
    EXPECT_THAT(Update(), ElementsAre("found twin", "found twin"));
    EXPECT_NE(ChildAt(0), ChildAt(1));
}

TEST_F(ChildManagerTest, FirstOccurrenceOfARepeatedKeyTakesTheOldObject)
{
    SetInterfaces({"twin"});
    Update();
    const auto first = ChildAt(0);
    SetInterfaces({"twin", "twin"});
    EXPECT_THAT(Update(), ElementsAre("found twin"));
    EXPECT_EQ(ChildAt(0), first);
    const auto second = ChildAt(1);
    EXPECT_NE(second, first);

    // And so again: the second one is replaced without a report that it went.
    producer->SetChanged("TLUpdateInterfaceList", 1);
    EXPECT_THAT(Update(), ElementsAre("found twin"));
    EXPECT_EQ(ChildAt(0), first);
    EXPECT_NE(ChildAt(1), second);
}

// Failures.

TEST_F(ChildManagerTest, FailingUpdateNamesItsFunctionAndLeavesEverything)
{
    Update();
    producer->AnswerOnce("TLUpdateInterfaceList", GenTL::GC_ERR_TIMEOUT);
    EXPECT_THAT(
        [&] { Update(); },
        ThrowsExactly<InternalErrorException>("[Function: TLUpdateInterfaceList | Error-Code: -1011 (GC_ERR_TIMEOUT) | "
                                              "Error-Text: scripted failure of TLUpdateInterfaceList]"));
    EXPECT_THAT(reports, IsEmpty());
    EXPECT_THAT(IDs(), ElementsAre("if0", "if1"));
    EXPECT_THAT(Update(), IsEmpty());
}

TEST_F(ChildManagerTest, FailingFirstUpdateLeavesTheNextOneTheFirst)
{
    producer->SetChanged("TLUpdateInterfaceList", 0);
    producer->AnswerOnce("TLGetNumInterfaces", GenTL::GC_ERR_BUSY);
    EXPECT_THAT(
        [&] { Update(); },
        ThrowsExactly<BadAccessException>("[Function: TLGetNumInterfaces | Error-Code: -1022 (GC_ERR_BUSY) | "
                                          "Error-Text: scripted failure of TLGetNumInterfaces]"));
    EXPECT_THAT(reports, IsEmpty());
    EXPECT_THAT(Update(), ElementsAre("found if0", "found if1"));
}

TEST_F(ChildManagerTest, FailingIdQueryNamesItsFunctionInBothHalves)
{
    for (const std::uint64_t call : {1u, 2u})
    {
        producer->AnswerAtCall("TLGetInterfaceID", call, GenTL::GC_ERR_IO);
        EXPECT_THAT(
            [&] { Update(); },
            ThrowsExactly<IOException>("[Function: TLGetInterfaceID | Error-Code: -1010 (GC_ERR_IO) | "
                                       "Error-Text: scripted failure of TLGetInterfaceID]"));
        EXPECT_THAT(IDs(), IsEmpty());
    }
}

TEST_F(ChildManagerTest, FailureHalfWayKeepsTheListAndMakesTheMatchedOnesNewAtTheNextWalk)
{
    Update();
    const auto before = owner->Children();
    producer->SetChanged("TLUpdateInterfaceList", 1);
    producer->AnswerAtCall("TLGetInterfaceID", 3, GenTL::GC_ERR_IO); // at the second child
    EXPECT_THROW(Update(), IOException);
    EXPECT_THAT(reports, IsEmpty());
    EXPECT_EQ(*owner->Children(), *before);

    EXPECT_THAT(Update(), ElementsAre("found if0"));
    EXPECT_NE(ChildAt(0), before->at(0));
    EXPECT_EQ(ChildAt(1), before->at(1));
}

TEST_F(ChildManagerTest, ListThatGrowsOrShrinksDuringTheWalkIsNoHarm)
{
    Update();
    producer->SetChanged("TLUpdateInterfaceList", 1);
    producer->SetCount("TLGetNumInterfaces", 3);
    EXPECT_THAT(
        [&] { Update(); }, ThrowsExactly<InternalErrorException>(
                               "[Function: TLGetInterfaceID | Error-Code: -1017 (GC_ERR_INVALID_INDEX) | "
                               "Error-Text: scripted failure of TLGetInterfaceID]"));
    EXPECT_THAT(IDs(), ElementsAre("if0", "if1"));

    producer->SetCount("TLGetNumInterfaces", 1);
    Update();
    EXPECT_THAT(IDs(), ElementsAre("if0"));
}

TEST_F(ChildManagerTest, IdsThatChangeWhileTheyAreReadAreTakenAsTheyCome)
{
    producer->OnEntry(
        "TLGetNumInterfaces", [&] { producer->SetInfo("TLGetInterfaceID", 1, scripted::Text("renamed meanwhile")); });
    EXPECT_THAT(Update(), ElementsAre("found if0", "found renamed meanwhile"));
}

TEST_F(ChildManagerTest, AbsurdCountBreaksTheBoundBeforeAnyChildIsRead)
{
    producer->SetCount("TLGetNumInterfaces", 0xFFFFFFFF);
    EXPECT_THAT(
        [&] { Update(); },
        ThrowsExactly<InternalErrorException>("[Function: TLGetNumInterfaces | Error: 4294967295 children of one "
                                              "module exceed the bound of 65536]"));
    EXPECT_THAT(Calls("TLGetInterfaceID"), IsEmpty());
    EXPECT_THAT(IDs(), IsEmpty());
}

TEST_F(ChildManagerTest, AbsurdIdSizeBreaksTheBound)
{
    auto answer = scripted::Text("if0");
    answer.claimedSize = std::size_t{1} << 40;
    producer->SetInfo("TLGetInterfaceID", 0, answer);
    EXPECT_THAT(
        [&] { Update(); },
        ThrowsExactly<InternalErrorException>(
            "[Function: TLGetInterfaceID | Error: 1099511627776 text bytes exceed the bound of 16777216]"));
    EXPECT_THAT(IDs(), IsEmpty());
}

TEST_F(ChildManagerTest, IdWithoutTerminatorCountsWholeAndOneThatShrinksEndsAtItsZero)
{
    producer->SetInfo("TLGetInterfaceID", 0, scripted::Bytes(GenTL::INFO_DATATYPE_STRING, "no end"));
    auto shrinking = scripted::Text("short");
    shrinking.claimedSize = 500;
    producer->SetInfo("TLGetInterfaceID", 1, shrinking);
    Update();
    EXPECT_THAT(IDs(), ElementsAre("no end", "short"));
}

TEST_F(ChildManagerTest, IdThatGrowsBetweenTheCallsIsTheProducersError)
{
    auto growing = scripted::Text("longer than claimed");
    growing.claimedSize = 3;
    producer->SetInfo("TLGetInterfaceID", 0, growing);
    EXPECT_THROW(Update(), BufferTooSmallException);
    EXPECT_THAT(IDs(), IsEmpty());
}

TEST_F(ChildManagerTest, ThrowingProducerReleasesTheLock)
{
    producer->OnEntry("TLGetNumInterfaces", [] { throw 5; });
    EXPECT_THAT([&] { Update(); }, ThrowsExactly<InternalErrorException>("Unhandled exception!"));
    producer->OnEntry("TLGetNumInterfaces", nullptr);
    EXPECT_THAT(Update(), ElementsAre("found if0", "found if1"));
}

TEST_F(ChildManagerTest, GoneParentEndsEveryOperation)
{
    owner->LoseParent();
    const auto expired = ThrowsExactly<InternalErrorException>("Pointer has expired!");
    EXPECT_THAT([&] { owner->UpdateChildren(0); }, expired);
    EXPECT_THAT([&] { owner->Children(); }, expired);
    EXPECT_THAT([&] { owner->RegisterLostCallback(nullptr); }, expired);
    EXPECT_THAT([&] { owner->RegisterFoundCallback(nullptr); }, expired);
    EXPECT_THAT([&] { owner->UnregisterLostCallback(nullptr); }, expired);
    EXPECT_THAT([&] { owner->UnregisterFoundCallback(nullptr); }, expired);
    EXPECT_THAT(producer->Journal(), IsEmpty());
}

TEST(ChildManager, OwnerThatNobodySharesCannotBeAParent)
{
    const OpenProducer producer;
    Owner owner(producer.gentl, producer.system);
    EXPECT_THROW(owner.UpdateChildren(0), std::bad_weak_ptr);
}

// Listeners.

TEST_F(ChildManagerTest, UnregisteredListenersHearNothing)
{
    int calls = 0;
    const auto found = owner->RegisterFoundCallback([&](const auto&) { ++calls; });
    const auto lost = owner->RegisterLostCallback([&](const auto&) { ++calls; });
    owner->UnregisterFoundCallback(found);
    owner->UnregisterFoundCallback(found);
    owner->UnregisterLostCallback(lost);
    Update();
    SetInterfaces({});
    Update();
    EXPECT_EQ(calls, 0);
}

TEST_F(ChildManagerTest, ListenersSeeTheNewListWithoutTheLostChild)
{
    Update();
    std::vector<std::string> seen;
    owner->RegisterLostCallback([&](const std::string&) { seen = IDs(); });
    SetInterfaces({"if1", "if2"});
    Update();
    EXPECT_THAT(seen, ElementsAre("if1", "if2"));
}

TEST_F(ChildManagerTest, LostChildStillExistsWhileItIsReported)
{
    Update();
    const std::weak_ptr<Child> lost = ChildAt(0);
    bool expired = true;
    owner->RegisterLostCallback([&](const std::string&) { expired = lost.expired(); });
    SetInterfaces({"if1"});
    Update();
    EXPECT_FALSE(expired);
    EXPECT_TRUE(lost.expired());
}

TEST_F(ChildManagerTest, ListenerMayStartAFurtherUpdate)
{
    Update();
    SetInterfaces({"if1"});
    owner->RegisterLostCallback([&](const std::string&) { owner->UpdateChildren(0); });
    EXPECT_THAT(Update(), ElementsAre("lost if0"));
}

TEST_F(ChildManagerTest, ListenerThatRegistersOnItsOwnRegistryGetsTheDeadlockError)
{
    std::error_code code;
    owner->RegisterFoundCallback([&](const auto&) {
        try
        {
            owner->RegisterFoundCallback(nullptr);
        }
        catch (const std::system_error& error)
        {
            code = error.code();
        }
    });
    Update();
    EXPECT_EQ(code, std::errc::resource_deadlock_would_occur);
}

TEST_F(ChildManagerTest, ListenerThatThrowsEndsTheReportsButNotTheUpdate)
{
    producer->SetChanged("TLUpdateInterfaceList", 1);
    const auto handle = owner->RegisterFoundCallback([](const auto&) { throw std::runtime_error("listener"); });
    EXPECT_THAT([&] { owner->UpdateChildren(0); }, ThrowsExactly<std::runtime_error>("listener"));
    EXPECT_THAT(IDs(), ElementsAre("if0", "if1"));
    owner->UnregisterFoundCallback(handle);
    EXPECT_THAT(Update(), IsEmpty()); // what was found is not found again
}

// Threads.

TEST_F(ChildManagerTest, ListIsLockedAcrossTheProducersCalls)
{
    std::latch inside(1);
    std::latch goOn(1);
    producer->OnEntry("TLGetNumInterfaces", [&] {
        inside.count_down();
        goOn.wait();
    });
    std::thread update([&] { owner->UpdateChildren(0); });
    inside.wait();
    std::thread reader([&] { EXPECT_THAT(IDs(), ElementsAre("if0", "if1")); });
    goOn.count_down();
    reader.join();
    update.join();
}

TEST_F(ChildManagerTest, ListIsNotLockedDuringReports)
{
    std::vector<std::string> seen;
    owner->RegisterFoundCallback([&](const auto&) { std::thread([&] { seen = IDs(); }).join(); });
    Update();
    EXPECT_THAT(seen, ElementsAre("if0", "if1"));
}
