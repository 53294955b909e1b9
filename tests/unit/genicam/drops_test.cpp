// What a write drops from the caches and whom it calls, also where nodes were filled, dropped and filled again, and
// where callbacks come and go meanwhile.
#include "tests/unit/genicam/persistence_bag.h"

#include <GenApi/NodeCallback.h>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Features;
using koro::test::IntReg;
using koro::test::SmallMap;

std::string Behind(const std::string& selector)
{
    return "0</Address><pIndex Offset=\"16\">" + selector + "</pIndex><Address>";
}

// Two values behind a selector, one over the first of them, and a register that lies where the second lies for 1.
const std::string selected =
    Features("S A B Sum") + "<Integer Name=\"S\"><pValue>SReg</pValue><pSelected>A</pSelected></Integer>" +
    IntReg("SReg", "0") + IntReg("AReg", Behind("S") + "16") + IntReg("BReg", Behind("S") + "20") +
    "<Integer Name=\"A\"><pValue>AReg</pValue></Integer><Integer Name=\"B\"><pValue>BReg</pValue></Integer>"
    "<IntSwissKnife Name=\"Sum\"><pVariable Name=\"A\">A</pVariable><pVariable Name=\"B\">B</pVariable>"
    "<Formula>A+B</Formula></IntSwissKnife>" +
    IntReg("Same", "36");

bool IsCached(const SmallMap& map, const char* name)
{
    return map.Value(name)->IsValueCacheValid();
}

TEST(Drops, WhatIsReadAgainAfterADropIsDroppedAgain)
{
    SmallMap map(selected);
    for (int value = 0; value < 4; ++value)
    {
        map.port.bytes[16] = static_cast<uint8_t>(value);
        map.port.bytes[32] = static_cast<uint8_t>(value + 100);
        map.Integer("S")->SetValue(value % 2);
        EXPECT_FALSE(IsCached(map, "A")) << value;
        EXPECT_FALSE(IsCached(map, "Sum")) << value;
        map.map->InvalidateNodes();
        EXPECT_EQ(map.Integer("Sum")->GetValue(), value % 2 ? value + 100 : value) << value;
        EXPECT_TRUE(IsCached(map, "A")) << value;
        EXPECT_TRUE(IsCached(map, "Sum")) << value;
    }
}

TEST(Drops, ADropByOneRoadLeavesTheOtherOneOpen)
{
    SmallMap map(selected);
    for (int round = 0; round < 3; ++round)
    {
        map.Integer("Sum")->GetValue();
        map.Integer("A")->SetValue(1);
        EXPECT_FALSE(IsCached(map, "Sum"));
        EXPECT_TRUE(IsCached(map, "B")) << "does not depend on A";
        map.Integer("Sum")->GetValue();
        map.Integer("B")->SetValue(1);
        EXPECT_FALSE(IsCached(map, "Sum"));
        EXPECT_TRUE(IsCached(map, "A")) << "does not depend on B";
        map.Integer("Sum")->GetValue();
        map.Integer("S")->SetValue(0);
        EXPECT_FALSE(IsCached(map, "A") || IsCached(map, "B") || IsCached(map, "Sum"));
    }
}

TEST(Drops, BytesThatTwoRegistersShareAreDroppedWithEither)
{
    SmallMap map(selected);
    map.Integer("S")->SetValue(1);
    for (int round = 0; round < 3; ++round)
    {
        const int64_t first = 10 + round;
        map.port.bytes[36] = static_cast<uint8_t>(first);
        map.map->InvalidateNodes();
        EXPECT_EQ(map.Integer("B")->GetValue(), first);
        const int reads = map.port.reads;
        EXPECT_EQ(map.Integer("Same")->GetValue(), first);
        EXPECT_EQ(map.port.reads, reads) << "the bytes are known";
        // The register behind the selector drops its bytes, which are those of the other one.
        map.Integer("S")->SetValue(1);
        map.Node("Same")->InvalidateNode();
        EXPECT_EQ(map.Integer("Same")->GetValue(), first);
        EXPECT_EQ(map.port.reads, reads + 1);
        map.Integer("Same")->SetValue(first + 50);
        EXPECT_EQ(map.Integer("B")->GetValue(), first + 50);
    }
}

TEST(Drops, BytesThatOneRegisterHasReadAreDroppedWithEachThatSharesThem)
{
    SmallMap map(Features("One Other") + IntReg("One", "8") + IntReg("Other", "8"));
    map.Integer("Other")->GetValue();
    map.Node("Other")->InvalidateNode();
    map.port.bytes[8] = 1;
    EXPECT_EQ(map.Integer("One")->GetValue(), 1);
    map.port.bytes[8] = 2;
    map.Node("Other")->InvalidateNode();
    EXPECT_EQ(map.Integer("Other")->GetValue(), 2);
}

TEST(Drops, ARefusedWriteDropsTheValuesOfDependentsAndKeepsTheBytes)
{
    SmallMap map(selected + "<Integer Name=\"Small\"><pValue>AReg</pValue><Max>9</Max></Integer>");
    for (int round = 0; round < 3; ++round)
    {
        map.Integer("Sum")->GetValue();
        const int reads = map.port.reads;
        map.port.onWrite = [] { throw RUNTIME_EXCEPTION("refused"); };
        EXPECT_THROW(map.Integer("A")->SetValue(7), RuntimeException);
        map.port.onWrite = nullptr;
        EXPECT_FALSE(IsCached(map, "A"));
        EXPECT_FALSE(IsCached(map, "Sum"));
        EXPECT_EQ(map.Integer("Sum")->GetValue(), 0);
        EXPECT_EQ(map.port.reads, reads + 1) << "the register that the port was given, and no other";
        EXPECT_THROW(map.Integer("Small")->SetValue(10), OutOfRangeException);
        EXPECT_EQ(map.Integer("Sum")->GetValue(), 0);
        EXPECT_EQ(map.port.reads, reads + 1) << "nothing was written";
    }
}

TEST(Drops, AnAccessModeFollowsItsConditionEachTime)
{
    const SmallMap map(
        selected + "<Integer Name=\"Guarded\"><pIsLocked>A</pIsLocked><Value>1</Value></Integer>"
                   "<Integer Name=\"Over\"><pValue>Guarded</pValue></Integer>");
    for (int round = 0; round < 3; ++round)
    {
        map.Integer("A")->SetValue(0);
        EXPECT_EQ(map.Node("Over")->GetAccessMode(), RW);
        map.Integer("A")->SetValue(1);
        EXPECT_EQ(map.Node("Over")->GetAccessMode(), RO);
        map.Node("Guarded")->ImposeAccessMode(NA);
        EXPECT_EQ(map.Node("Over")->GetAccessMode(), NA);
        map.Node("Guarded")->ImposeAccessMode(RW);
    }
}

// Registers behind two selectors, features and formulas over them, each over nodes before it.
class RandomMap
{
public:
    explicit RandomMap(unsigned seed) : random(seed)
    {
        text = IntReg("N0", "0") + IntReg("N1", "4");
        for (count = 2; count < 25; ++count)
            text += Made("N" + std::to_string(count));
    }
    size_t Below(size_t bound) { return random() % bound; }
    std::string Any() { return "N" + std::to_string(Below(count)); }

    std::string text;
    size_t count = 0;

private:
    std::string Made(const std::string& name)
    {
        switch (Below(4))
        {
        case 0:
            return IntReg(name, std::to_string(4 * Below(12)));
        case 1:
            return IntReg(name, Behind(Any()) + std::to_string(1000 * count + 4 * Below(8))); // never its own index
        case 2:
            return "<Integer Name=\"" + name + "\"><pValue>" + Any() + "</pValue></Integer>";
        default:
            return "<IntSwissKnife Name=\"" + name + "\"><pVariable Name=\"A\">" + Any() +
                   "</pVariable><pVariable Name=\"B\">" + Any() +
                   "</pVariable><Formula>(A+B)%4</Formula></IntSwissKnife>";
        }
    }

    std::mt19937 random;
};

TEST(Drops, NoCachedValueDiffersFromTheDevice)
{
    for (unsigned seed = 0; seed < 60; ++seed)
    {
        RandomMap made(seed);
        const SmallMap map(made.text);
        for (int step = 0; step < 150; ++step)
        {
            const std::string name = made.Any();
            const CIntegerPtr node = map.Node(name.c_str());
            if (made.Below(3) == 0 && IsWritable(node))
            {
                node->SetValue(static_cast<int64_t>(made.Below(4)));
                continue;
            }
            const int64_t cached = node->GetValue();
            SmallMap fresh(made.text);
            fresh.port.bytes = map.port.bytes;
            ASSERT_EQ(cached, fresh.Integer(name.c_str())->GetValue())
                << name << ", seed " << seed << ", " << made.text;
        }
    }
}

// Notes its name when it is called, then does what a test wants.
class Noting : public CNodeCallback
{
public:
    Noting(INode* node, std::vector<std::string>& filled, std::function<void()> act = nullptr)
        : CNodeCallback(node, cbPostInsideLock), names(filled), wanted(std::move(act))
    {}
    void operator()(ECallbackType type) const override
    {
        if (type != m_CallbackType) return;
        names.push_back(m_pNode->GetName().c_str());
        if (wanted) wanted();
    }
    void Destroy() override { delete this; }

private:
    std::vector<std::string>& names;
    const std::function<void()> wanted;
};

using Names = std::vector<std::string>;

CallbackHandleType Listen(const SmallMap& map, const char* name, Names& names, std::function<void()> act = nullptr)
{
    return map.Node(name)->RegisterCallback(new Noting(map.Node(name), names, std::move(act)));
}

TEST(CallbackOrder, IsThatOfTheWalkFromTheWrittenNodes)
{
    SmallMap map(selected);
    Names names;
    for (const char* const name : {"Sum", "SReg", "Root", "B", "A", "AReg", "S"})
        Listen(map, name, names);
    const Names expected = {"S", "SReg", "Root", "A", "Sum", "AReg", "B"};
    for (int round = 0; round < 3; ++round)
    {
        names.clear();
        map.Integer("S")->SetValue(0);
        EXPECT_EQ(names, expected) << "round " << round;
    }
}

TEST(CallbackOrder, NodesJoinAndLeaveWithTheirCallbacks)
{
    SmallMap map(selected);
    Names names;
    const auto write = [&] {
        names.clear();
        map.Integer("S")->SetValue(0);
        return names;
    };
    EXPECT_EQ(write(), Names());
    const CallbackHandleType first = Listen(map, "Sum", names);
    EXPECT_EQ(write(), Names({"Sum"}));
    const CallbackHandleType second = Listen(map, "A", names);
    EXPECT_EQ(write(), Names({"A", "Sum"}));
    Listen(map, "A", names);
    EXPECT_EQ(write(), Names({"A", "A", "Sum"}));
    map.Node("A")->DeregisterCallback(second);
    map.Node("Sum")->DeregisterCallback(first);
    EXPECT_EQ(write(), Names({"A"}));
}

TEST(CallbackOrder, ACallbackThatRegistersAnotherOneHasItCalledByTheNextWrite)
{
    SmallMap map(selected);
    Names names;
    bool registered = false;
    Listen(map, "A", names, [&] {
        if (!std::exchange(registered, true)) Listen(map, "Sum", names);
    });
    map.Integer("S")->SetValue(0);
    EXPECT_EQ(names, Names({"A"}));
    map.Integer("S")->SetValue(0);
    EXPECT_EQ(names, Names({"A", "A", "Sum"}));
}

TEST(CallbackOrder, ACallbackThatDeregistersALaterOneKeepsItFromBeingCalled)
{
    SmallMap map(selected);
    Names names;
    const CallbackHandleType later = Listen(map, "Sum", names);
    Listen(map, "A", names, [&] { map.Node("Sum")->DeregisterCallback(later); });
    for (int round = 0; round < 2; ++round)
        map.Integer("S")->SetValue(0);
    EXPECT_EQ(names, Names({"A", "A"}));
}

TEST(CallbackOrder, ANodeThatGetsItsCallbackWhileThePortWritesIsCalled)
{
    SmallMap map(selected);
    Names names;
    map.port.onWrite = [&] {
        map.port.onWrite = nullptr;
        Listen(map, "Sum", names);
    };
    map.Integer("S")->SetValue(0);
    EXPECT_EQ(names, Names({"Sum"}));
}

TEST(CallbackOrder, MoreOrdersThanAreKeptStayRight)
{
    // Each of many nodes is written and has an order of its own, three times around.
    const int count = 2000;
    std::string nodes = "<Integer Name=\"Last\"><Value>0</Value>";
    std::string others;
    for (int i = 0; i < count; ++i)
    {
        nodes += "<pInvalidator>N" + std::to_string(i) + "</pInvalidator>";
        others += "<Integer Name=\"N" + std::to_string(i) + "\"><Value>0</Value></Integer>";
    }
    const SmallMap map(nodes + "</Integer>" + others);
    Names names;
    for (const char* const name : {"Last", "N0", "N1999"})
        Listen(map, name, names);
    for (int round = 0; round < 3; ++round)
    {
        names.clear();
        for (int i = 0; i < count; ++i)
            map.Integer(("N" + std::to_string(i)).c_str())->SetValue(1);
        ASSERT_EQ(names.size(), static_cast<size_t>(count) + 2);
        EXPECT_EQ(Names(names.begin(), names.begin() + 3), Names({"N0", "Last", "Last"}));
        EXPECT_EQ(Names(names.end() - 3, names.end()), Names({"Last", "N1999", "Last"}));
    }
}

} // namespace
