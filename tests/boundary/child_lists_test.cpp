// The lists of interfaces and of devices, and the callbacks for what an update finds and loses: the same promises for
// System and Interface.
#include "tests/boundary/producer_errors.h"
#include "tests/boundary/tree_test.h"
#include "tests/boundary/update_listener.h"
#include "tests/support/journal.h"

#include <algorithm>
#include <cstdint>
#include <future>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;
using Codes = std::vector<KORO_ReturnCode>;

struct InterfacesOfSystem
{
    using Parent = KORO_SystemHandle;
    using Child = KORO_InterfaceDescriptorHandle;
    using Listener = UpdateListener<
        Parent, Child, KORO_InterfaceFoundCallbackHandle, KORO_InterfaceLostCallbackHandle,
        KORO_System_RegisterInterfaceFoundCallback, KORO_System_UnregisterInterfaceFoundCallback,
        KORO_System_RegisterInterfaceLostCallback, KORO_System_UnregisterInterfaceLostCallback,
        KORO_InterfaceDescriptor_GetKey>;

    static constexpr auto destruct = KORO_System_Destruct;
    static constexpr auto update = KORO_System_UpdateInterfaces;
    static constexpr auto getCount = KORO_System_GetNumInterfaces;
    static constexpr auto getChild = KORO_System_GetInterface;
    static constexpr auto getChildKey = KORO_InterfaceDescriptor_GetKey;

    static constexpr const char* name = "system";
    static constexpr const char* parentParameter = "systemHandle";
    static constexpr const char* childParameter = "interfaceDescriptorHandle";
    static constexpr const char* countParameter = "numInterfaces";
    static constexpr const char* updateFunction = "TLUpdateInterfaceList";
    static constexpr const char* countFunction = "TLGetNumInterfaces";
    static constexpr const char* idFunction = "TLGetInterfaceID";

    static Parent ParentOf(const OpenTree& tree) { return tree.system; }
    static Parent Reopen(const OpenTree& tree)
    {
        Require(KORO_System_Destruct(tree.system));
        return Get<Parent>(KORO_SystemDescriptor_OpenSystem, tree.systemDescriptor);
    }
    static auto& ChildrenIn(scripted::Tree& tree) { return tree.interfaces; }
    static auto MakeChild(const std::string& id) { return scripted::MakeInterface(id); }
    static std::string ParentKey(const std::string& path) { return path + "|scripted producer"; }
};

struct DevicesOfInterface
{
    using Parent = KORO_InterfaceHandle;
    using Child = KORO_DeviceDescriptorHandle;
    using Listener = UpdateListener<
        Parent, Child, KORO_DeviceFoundCallbackHandle, KORO_DeviceLostCallbackHandle,
        KORO_Interface_RegisterDeviceFoundCallback, KORO_Interface_UnregisterDeviceFoundCallback,
        KORO_Interface_RegisterDeviceLostCallback, KORO_Interface_UnregisterDeviceLostCallback,
        KORO_DeviceDescriptor_GetKey>;

    static constexpr auto destruct = KORO_Interface_Destruct;
    static constexpr auto update = KORO_Interface_UpdateDevices;
    static constexpr auto getCount = KORO_Interface_GetNumDevices;
    static constexpr auto getChild = KORO_Interface_GetDevice;
    static constexpr auto getChildKey = KORO_DeviceDescriptor_GetKey;

    static constexpr const char* name = "if0";
    static constexpr const char* parentParameter = "interfaceHandle";
    static constexpr const char* childParameter = "deviceDescriptorHandle";
    static constexpr const char* countParameter = "numDevices";
    static constexpr const char* updateFunction = "IFUpdateDeviceList";
    static constexpr const char* countFunction = "IFGetNumDevices";
    static constexpr const char* idFunction = "IFGetDeviceID";

    static Parent ParentOf(const OpenTree& tree) { return tree.interface; }
    static Parent Reopen(const OpenTree& tree)
    {
        Require(KORO_Interface_Destruct(tree.interface));
        return Get<Parent>(KORO_InterfaceDescriptor_OpenInterface, tree.interfaceDescriptor);
    }
    static auto& ChildrenIn(scripted::Tree& tree) { return tree.interfaces[0]->devices; }
    static auto MakeChild(const std::string& id) { return scripted::MakeDevice(id); }
    static std::string ParentKey(const std::string& path) { return path + "|scripted producer|if0"; }
};

// The children that the producer shows are "a" and "b" from the first update on.
template <class Family>
class ChildLists : public TreeTest
{
protected:
    using Parent = typename Family::Parent;
    using Child = typename Family::Child;

    ChildLists()
    {
        SetChildren({"a", "b"});
        Update();
        producer->ClearJournal();
    }

    // Those that stay are the same ones to the producer.
    void SetChildren(const Strings& ids) const
    {
        producer->Edit([&](scripted::Tree& edited) {
            auto& children = Family::ChildrenIn(edited);
            const auto before = std::exchange(children, {});
            for (const auto& id : ids)
            {
                const auto kept =
                    std::find_if(before.begin(), before.end(), [&](const auto& child) { return child->id == id; });
                children.push_back(kept == before.end() ? Family::MakeChild(id) : *kept);
            }
        });
    }

    void SetChanged(std::optional<GenTL::bool8_t> changed) const
    {
        producer->SetChanged(Family::updateFunction, changed);
    }

    Error OutcomeOfUpdate(std::uint64_t timeout_ms = 0) const { return Outcome(Family::update(parent, timeout_ms)); }
    void Update(std::uint64_t timeout_ms = 0) const { Require(Family::update(parent, timeout_ms)); }

    std::size_t Count() const { return Get<std::size_t>(Family::getCount, parent); }
    Child At(std::size_t index) const { return Get<Child>(Family::getChild, parent, index); }

    Error OutcomeOfKey(Child child) const
    {
        std::size_t size = 0;
        return Outcome(Family::getChildKey(child, nullptr, &size));
    }

    std::string KeyOf(const std::string& id) const { return Family::ParentKey(producer.Path()) + "|" + id; }

    // A line of the journal: the function, the parent's name and what follows.
    static std::string Line(const char* function, const std::string& rest)
    {
        return std::string(function) + "(" + Family::name + rest + ")";
    }

    Parent parent = Family::ParentOf(tree);
};

using Families = testing::Types<InterfacesOfSystem, DevicesOfInterface>;
TYPED_TEST_SUITE(ChildLists, Families);

} // namespace

TYPED_TEST(ChildLists, UpdatePassesTheTimeoutOn)
{
    this->Update(1234);
    this->Update(KORO_INFINITE);
    EXPECT_EQ(
        this->producer->Journal(),
        (Strings{
            this->Line(TypeParam::updateFunction, ", 1234"), this->Line(TypeParam::updateFunction, ", infinite")}));
}

TYPED_TEST(ChildLists, FirstUpdateWalksTheListWhateverTheProducerSaysForChanged)
{
    this->SetChanged(0);
    this->parent = TypeParam::Reopen(this->tree);
    EXPECT_EQ(this->Count(), 0u);
    this->Update();
    EXPECT_EQ(this->Count(), 2u);
}

TYPED_TEST(ChildLists, LaterUpdateWalksTheListOnlyWhenTheProducerSaysSo)
{
    this->SetChanged(0);
    this->Update();
    EXPECT_EQ(this->producer->Journal(), Strings{this->Line(TypeParam::updateFunction, ", 0")});

    this->SetChanged(1);
    this->producer->ClearJournal();
    this->Update();
    EXPECT_EQ(
        this->producer->Journal(),
        (Strings{
            this->Line(TypeParam::updateFunction, ", 0"), this->Line(TypeParam::countFunction, ""),
            this->Line(TypeParam::idFunction, ", 0, size"), this->Line(TypeParam::idFunction, ", 0, data"),
            this->Line(TypeParam::idFunction, ", 1, size"), this->Line(TypeParam::idFunction, ", 1, data")}));
}

TYPED_TEST(ChildLists, ChangedThatIsNeverWrittenCountsAsUnchanged)
{
    this->SetChanged(std::nullopt);
    this->SetChildren({"a", "b", "c"});
    this->Update();
    EXPECT_EQ(this->producer->Journal(), Strings{this->Line(TypeParam::updateFunction, ", 0")});
    EXPECT_EQ(this->Count(), 2u);
}

TYPED_TEST(ChildLists, NumberIsZeroBeforeAnyUpdate)
{
    this->parent = TypeParam::Reopen(this->tree);
    typename TypeParam::Child child = nullptr;
    this->producer->ClearJournal();

    ExpectScalarOut<typename TypeParam::Parent, std::size_t>(
        TypeParam::countParameter, 0, TypeParam::getCount, this->parent);
    EXPECT_EQ(Outcome(TypeParam::getChild(this->parent, 0, &child)), outOfRange);
    EXPECT_EQ(this->producer->Journal(), Strings{});
}

TYPED_TEST(ChildLists, ChildTwiceIsTheSameHandleAndAsksNothing)
{
    EXPECT_EQ(this->At(0), this->At(0));
    EXPECT_NE(this->At(0), this->At(1));
    EXPECT_EQ(this->producer->Journal(), Strings{});
}

TYPED_TEST(ChildLists, ChildTestsHandleThenPointerThenIndex)
{
    typename TypeParam::Child child = nullptr;
    EXPECT_EQ(Outcome(TypeParam::getChild(nullptr, 9, nullptr)), InvalidHandle(TypeParam::parentParameter));
    EXPECT_EQ(Outcome(TypeParam::getChild(this->parent, 9, nullptr)), NullPointer(TypeParam::childParameter));
    EXPECT_EQ(Outcome(TypeParam::getChild(this->parent, 2, &child)), outOfRange);
    EXPECT_EQ(child, nullptr);
}

// Work that grows with the square of their number would not end in time.
TYPED_TEST(ChildLists, EachOfAsManyAsThereMayBeIsFound)
{
    constexpr std::size_t count = 65536;
    this->producer->Edit(
        [](scripted::Tree& tree) { TypeParam::ChildrenIn(tree).assign(count, TypeParam::MakeChild("twin")); });
    this->Update();
    ASSERT_EQ(this->Count(), count);
    for (std::size_t index = 0; index < count; ++index)
        ASSERT_NE(this->At(index), nullptr);
    EXPECT_EQ(this->OutcomeOfKey(this->At(count - 1)), Error{});
}

TYPED_TEST(ChildLists, ChildThatStaysKeepsItsHandle)
{
    const auto second = this->At(1);
    this->SetChildren({"b"});
    this->Update();

    EXPECT_EQ(this->At(0), second);
    EXPECT_EQ(GetText(TypeParam::getChildKey, second), this->KeyOf("b"));
}

TYPED_TEST(ChildLists, LostChildTakesItsHandleAlong)
{
    const auto first = this->At(0);
    const auto second = this->At(1);
    this->SetChildren({"a"});
    this->Update();

    EXPECT_EQ(this->OutcomeOfKey(first), Error{});
    EXPECT_EQ(this->OutcomeOfKey(second), InvalidHandle(TypeParam::childParameter));
}

TYPED_TEST(ChildLists, ChildFoundAgainIsAnotherObjectAndIsWithdrawnAnew)
{
    for (int round = 0; round < 3; ++round)
    {
        const auto child = this->At(1);
        EXPECT_EQ(this->OutcomeOfKey(child), Error{});
        this->SetChildren({"a"});
        this->Update();
        EXPECT_EQ(this->OutcomeOfKey(child), InvalidHandle(TypeParam::childParameter));
        this->SetChildren({"a", "b"});
        this->Update();
        EXPECT_NE(this->At(1), child);
        EXPECT_EQ(this->OutcomeOfKey(this->At(1)), Error{});
        EXPECT_EQ(this->OutcomeOfKey(child), InvalidHandle(TypeParam::childParameter));
    }
}

TYPED_TEST(ChildLists, FoundCallbackGetsAHandleThatIsWithdrawnWhenItIsLost)
{
    typename TypeParam::Listener listener(this->parent);
    this->SetChildren({"a", "b", "new"});
    this->Update();
    ASSERT_EQ(listener.found.size(), 1u);
    EXPECT_EQ(listener.found[0], this->At(2));

    this->SetChildren({"a", "b"});
    this->Update();
    EXPECT_EQ(this->OutcomeOfKey(listener.found[0]), InvalidHandle(TypeParam::childParameter));
    EXPECT_EQ(listener.reports, (Strings{"found " + this->KeyOf("new"), "lost new (4)"}));
}

TYPED_TEST(ChildLists, LostOnesAreReportedBeforeFoundOnesAndTheseInOrder)
{
    typename TypeParam::Listener listener(this->parent);
    this->SetChildren({"e", "c", "d"});
    this->Update();

    ASSERT_EQ(listener.reports.size(), 5u);
    EXPECT_THAT(
        Strings(listener.reports.begin(), listener.reports.begin() + 2),
        testing::UnorderedElementsAre("lost a (2)", "lost b (2)"));
    EXPECT_EQ(
        Strings(listener.reports.begin() + 2, listener.reports.end()),
        (Strings{"found " + this->KeyOf("e"), "found " + this->KeyOf("c"), "found " + this->KeyOf("d")}));
}

TYPED_TEST(ChildLists, WalkThatFindsNothingLosesAllChildren)
{
    typename TypeParam::Listener listener(this->parent);
    this->SetChildren({});
    this->Update();

    EXPECT_THAT(listener.reports, testing::UnorderedElementsAre("lost a (2)", "lost b (2)"));
    EXPECT_EQ(this->Count(), 0u);
}

TYPED_TEST(ChildLists, ListIsPublishedBeforeTheFirstCallback)
{
    typename TypeParam::Listener listener(this->parent);
    std::vector<std::size_t> counts;
    listener.onReport = [&] { counts.push_back(this->Count()); };
    this->SetChildren({"b", "c", "d"});
    this->Update();

    EXPECT_EQ(counts, (std::vector<std::size_t>{3, 3, 3}));
}

TYPED_TEST(ChildLists, UnregisteredCallbacksAreNotCalledAndUnknownOnesIgnored)
{
    using Listener = typename TypeParam::Listener;
    Listener listener(this->parent);
    for (int time = 0; time < 2; ++time)
    {
        EXPECT_EQ(Outcome(Listener::unregisterFound(this->parent, listener.foundHandle)), Error{});
        EXPECT_EQ(Outcome(Listener::unregisterLost(this->parent, listener.lostHandle)), Error{});
    }
    EXPECT_EQ(Outcome(Listener::unregisterFound(this->parent, nullptr)), Error{});
    EXPECT_EQ(Outcome(Listener::unregisterLost(this->parent, nullptr)), Error{});
    this->SetChildren({"c"});
    this->Update();

    EXPECT_EQ(listener.reports, Strings{});
}

TYPED_TEST(ChildLists, RegistrationsTestHandleThenCallbackThenPlaceOfTheHandle)
{
    using Listener = typename TypeParam::Listener;
    const auto found = [](typename TypeParam::Child, void*) {};
    const auto lost = [](const char*, std::size_t, void*) {};
    const auto deadParent = InvalidHandle(TypeParam::parentParameter);

    EXPECT_EQ(Outcome(Listener::registerFound(nullptr, nullptr, nullptr, nullptr)), deadParent);
    EXPECT_EQ(Outcome(Listener::registerFound(this->parent, nullptr, nullptr, nullptr)), NullPointer("callback"));
    EXPECT_EQ(Outcome(Listener::registerFound(this->parent, found, nullptr, nullptr)), NullPointer("callbackHandle"));
    EXPECT_EQ(Outcome(Listener::registerLost(nullptr, nullptr, nullptr, nullptr)), deadParent);
    EXPECT_EQ(Outcome(Listener::registerLost(this->parent, nullptr, nullptr, nullptr)), NullPointer("callback"));
    EXPECT_EQ(Outcome(Listener::registerLost(this->parent, lost, nullptr, nullptr)), NullPointer("callbackHandle"));
}

TYPED_TEST(ChildLists, ComingBackToTheRegistryThatCallsIsCodeOneAndDoesNotHang)
{
    using Listener = typename TypeParam::Listener;
    Listener listener(this->parent);
    Codes fromFound;
    Codes fromLost;
    listener.onFound = [&] {
        auto handle = listener.foundHandle;
        const auto callback = [](typename TypeParam::Child, void*) {};
        fromFound.push_back(Listener::registerFound(this->parent, callback, nullptr, &handle));
        fromFound.push_back(Listener::unregisterFound(this->parent, listener.foundHandle));
    };
    listener.onLost = [&] {
        auto handle = listener.lostHandle;
        const auto callback = [](const char*, std::size_t, void*) {};
        fromLost.push_back(Listener::registerLost(this->parent, callback, nullptr, &handle));
        fromLost.push_back(Listener::unregisterLost(this->parent, listener.lostHandle));
    };
    this->SetChildren({"b", "c"});

    EXPECT_EQ(this->OutcomeOfUpdate(), Error{});
    EXPECT_EQ(fromFound, (Codes{KORO_RETURN_CODE_ERROR, KORO_RETURN_CODE_ERROR}));
    EXPECT_EQ(fromLost, (Codes{KORO_RETURN_CODE_ERROR, KORO_RETURN_CODE_ERROR}));
    EXPECT_EQ(listener.reports.size(), 2u);
}

TYPED_TEST(ChildLists, RegisteringAtTheOtherRegistryFromInsideACallbackWorks)
{
    typename TypeParam::Listener listener(this->parent);
    Error outcome{KORO_RETURN_CODE_ERROR, "not called"};
    listener.onFound = [&] {
        auto handle = listener.lostHandle;
        const auto callback = [](const char*, std::size_t, void*) {};
        outcome = Outcome(TypeParam::Listener::registerLost(this->parent, callback, nullptr, &handle));
    };
    this->SetChildren({"a", "b", "c"});
    this->Update();

    EXPECT_EQ(outcome, Error{});
}

TYPED_TEST(ChildLists, FetchingANewChildInsideALostCallbackIsCodeOneAndLeavesNoHandle)
{
    typename TypeParam::Listener listener(this->parent);
    KORO_ReturnCode returned = KORO_RETURN_CODE_SUCCESS;
    typename TypeParam::Child fetched = nullptr;
    listener.onLost = [&] { returned = TypeParam::getChild(this->parent, 0, &fetched); };
    this->SetChildren({"b"});

    EXPECT_EQ(this->OutcomeOfUpdate(), Error{});
    EXPECT_EQ(returned, KORO_RETURN_CODE_ERROR);
    EXPECT_EQ(fetched, nullptr);
    EXPECT_EQ(this->OutcomeOfKey(this->At(0)), Error{});
}

// Only a handle that is new registers something, which a lost callback cannot do.
TYPED_TEST(ChildLists, FetchingAKnownChildInsideALostCallbackRegistersNothing)
{
    typename TypeParam::Listener listener(this->parent);
    const auto second = this->At(1);
    typename TypeParam::Child fetched = nullptr;
    Error outcome{KORO_RETURN_CODE_ERROR, "not called"};
    listener.onLost = [&] { outcome = Outcome(TypeParam::getChild(this->parent, 0, &fetched)); };
    this->SetChildren({"b"});
    this->Update();

    EXPECT_EQ(outcome, Error{});
    EXPECT_EQ(fetched, second);
}

TYPED_TEST(ChildLists, UpdateInsideACallbackWorks)
{
    typename TypeParam::Listener listener(this->parent);
    listener.onFound = [&] {
        this->SetChildren({"a", "b"});
        EXPECT_EQ(this->OutcomeOfUpdate(), Error{});
    };
    this->SetChildren({"a", "b", "c"});

    EXPECT_EQ(this->OutcomeOfUpdate(), Error{});
    EXPECT_EQ(listener.reports, (Strings{"found " + this->KeyOf("c"), "lost c (2)"}));
    EXPECT_EQ(this->OutcomeOfKey(listener.found[0]), InvalidHandle(TypeParam::childParameter));
}

TYPED_TEST(ChildLists, UpdateInsideALostCallbackLosesNoReportAndKeepsTheOrder)
{
    typename TypeParam::Listener listener(this->parent);
    std::vector<std::size_t> reportsAtReturn;
    listener.onLost = [&] {
        if (!reportsAtReturn.empty()) return;
        this->SetChildren({"c", "d"});
        EXPECT_EQ(this->OutcomeOfUpdate(), Error{});
        reportsAtReturn.push_back(listener.reports.size());
    };
    this->SetChildren({"b", "c"});

    EXPECT_EQ(this->OutcomeOfUpdate(), Error{});
    // The inner update returned before its own reports came.
    EXPECT_EQ(reportsAtReturn, std::vector<std::size_t>{1});
    EXPECT_EQ(
        listener.reports,
        (Strings{"lost a (2)", "found " + this->KeyOf("c"), "lost b (2)", "found " + this->KeyOf("d")}));
    EXPECT_EQ(this->Count(), 2u);
}

TYPED_TEST(ChildLists, ChildThatIsFoundAndLostInsideCallbacksIsReportedInThisOrder)
{
    typename TypeParam::Listener listener(this->parent);
    int step = 0;
    listener.onReport = [&] {
        ++step;
        if (step == 1) this->SetChildren({"b", "new"});
        if (step == 2) this->SetChildren({"b"});
        EXPECT_EQ(this->OutcomeOfUpdate(), Error{});
    };
    this->SetChildren({"b"});

    EXPECT_EQ(this->OutcomeOfUpdate(), Error{});
    EXPECT_EQ(listener.reports, (Strings{"lost a (2)", "found " + this->KeyOf("new"), "lost new (4)"}));
}

TYPED_TEST(ChildLists, CallbackThatFindsSomethingWithEachUpdateGetsCodeOneInTheEnd)
{
    typename TypeParam::Listener listener(this->parent);
    std::uint64_t next = 0;
    Codes refusals;
    listener.onReport = [&] {
        if (!refusals.empty()) return;
        this->SetChildren({std::to_string(++next)});
        const auto code = TypeParam::update(this->parent, 0);
        if (code != KORO_RETURN_CODE_SUCCESS) refusals.push_back(code);
    };
    this->SetChildren({"0"});

    EXPECT_EQ(this->OutcomeOfUpdate(), Error{});
    EXPECT_EQ(refusals, Codes{KORO_RETURN_CODE_ERROR});
    EXPECT_GT(next, 100u);
    // No report was lost: a and b, and each of the others but the last, came and went.
    EXPECT_EQ(listener.reports.size(), 2 + 2 * next - 1);
    this->Update(); // and the next one is free again
    EXPECT_EQ(listener.reports.back(), "found " + this->KeyOf(std::to_string(next)));
}

TYPED_TEST(ChildLists, UpdateOfAnotherThreadReturnsWhenItsReportsAreDelivered)
{
    typename TypeParam::Listener listener(this->parent);
    std::future<Error> another;
    listener.onReport = [&] {
        if (another.valid()) return;
        this->SetChildren({"b", "c"});
        another = std::async(std::launch::async, [&] { return this->OutcomeOfUpdate(); });
    };
    this->SetChildren({"b"});

    EXPECT_EQ(this->OutcomeOfUpdate(), Error{});
    EXPECT_EQ(another.get(), Error{});
    EXPECT_EQ(listener.reports, (Strings{"lost a (2)", "found " + this->KeyOf("c")}));
}

TYPED_TEST(ChildLists, FailedUpdateLeavesTheListAndReportsNothing)
{
    typename TypeParam::Listener listener(this->parent);
    this->SetChildren({"c"});
    this->producer->AnswerOnce(TypeParam::updateFunction, GenTL::GC_ERR_BUSY);

    EXPECT_EQ(this->OutcomeOfUpdate(), CallFailure(TypeParam::updateFunction, ProducerErrorOf(GenTL::GC_ERR_BUSY)));
    EXPECT_EQ(this->Count(), 2u);
    EXPECT_EQ(listener.reports, Strings{});
}

TYPED_TEST(ChildLists, WalkThatFailsHalfWayMakesTheNextOneFindItsChildrenAnew)
{
    typename TypeParam::Listener listener(this->parent);
    const auto first = this->At(0);
    const auto second = this->At(1);
    this->SetChanged(1);
    this->producer->SetInfo(TypeParam::idFunction, 1, scripted::Failing(GenTL::GC_ERR_IO));

    EXPECT_EQ(this->OutcomeOfUpdate(), CallFailure(TypeParam::idFunction, ProducerErrorOf(GenTL::GC_ERR_IO)));
    EXPECT_EQ(this->At(0), first);
    EXPECT_EQ(listener.reports, Strings{});

    this->producer->SetInfo(TypeParam::idFunction, 1, scripted::Text("b"));
    this->Update();
    EXPECT_EQ(listener.reports, Strings{"found " + this->KeyOf("a")});
    EXPECT_EQ(this->At(0), listener.found[0]);
    EXPECT_NE(this->At(0), first);
    EXPECT_EQ(this->At(1), second);
}

TYPED_TEST(ChildLists, NoCallbackFollowsOneThatEndsTheParent)
{
    typename TypeParam::Listener listener(this->parent);
    typename TypeParam::Listener another(this->parent);
    listener.onReport = another.onReport = [&] { EXPECT_EQ(Outcome(TypeParam::destruct(this->parent)), Error{}); };
    this->SetChildren({"c", "d"});
    EXPECT_EQ(this->OutcomeOfUpdate(), Error{});
    EXPECT_EQ(listener.reports.size() + another.reports.size(), 1u);
    EXPECT_EQ(this->OutcomeOfUpdate(), InvalidHandle(TypeParam::parentParameter));
}

TYPED_TEST(ChildLists, NoFoundCallbackFollowsOneThatEndsTheLibrary)
{
    typename TypeParam::Listener listener(this->parent);
    listener.onFound = [] { EXPECT_EQ(Outcome(KORO_Library_Close()), Error{}); };
    this->SetChildren({"a", "b", "c", "d"});
    TypeParam::update(this->parent, 0);
    EXPECT_EQ(listener.reports.size(), 1u);
    Require(KORO_Library_Initialize());
}

TYPED_TEST(ChildLists, ParentThatGoesInsideACallbackEndsTheUpdateCleanly)
{
    typename TypeParam::Listener listener(this->parent);
    listener.onReport = [&] { KORO_ProducerLibrary_Destruct(this->tree.producerLibrary); };
    this->SetChildren({"c", "d"});
    TypeParam::update(this->parent, 0);

    EXPECT_EQ(this->OutcomeOfUpdate(), InvalidHandle(TypeParam::parentParameter));
    EXPECT_EQ(this->producer->Open(), Strings{});
    EXPECT_EQ(this->producer->InitCount(), 0);
}

} // namespace koro::test
