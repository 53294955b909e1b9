#include "tests/unit/genicam/small_map.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::SmallMap;

// The names of the nodes whose callbacks were called, sorted.
class Listener
{
public:
    void Changed(INode* node) { names.push_back(node->GetName().c_str()); }
    std::string Take()
    {
        std::sort(names.begin(), names.end());
        std::string text;
        for (const std::string& name : names)
            text += (text.empty() ? "" : " ") + name;
        names.clear();
        return text;
    }

private:
    std::vector<std::string> names;
};

void ListenToAll(const SmallMap& map, Listener& listener)
{
    NodeList_t nodes;
    map.map->GetNodes(nodes);
    for (INode* const node : nodes)
        Register(node, listener, &Listener::Changed);
}

const std::string chain =
    IntReg("R", "0") + IntReg("Other", "4", "<pInvalidator>R</pInvalidator>") +
    "<Category Name=\"Root\"><pFeature>A</pFeature></Category><Integer "
    "Name=\"A\"><pValue>R</pValue><Max>9</Max></Integer>"
    "<Integer Name=\"B\"><pValue>R</pValue></Integer><Integer Name=\"Lone\"><Value>1</Value></Integer>";

TEST(Callbacks, WriteTellsTheTerminalAndAllThatDependsOnIt)
{
    const SmallMap map(chain);
    Listener listener;
    ListenToAll(map, listener);
    map.Integer("A")->SetValue(5);
    EXPECT_EQ(listener.Take(), "A B Other R Root");
    map.Integer("A")->SetValue(5);
    EXPECT_EQ(listener.Take(), "A B Other R Root") << "values are not compared";
    map.Integer("Lone")->SetValue(5);
    EXPECT_EQ(listener.Take(), "Lone");
}

TEST(Callbacks, ReadingAndFailedWritesTellNobody)
{
    const SmallMap map(chain);
    Listener listener;
    ListenToAll(map, listener);
    map.Integer("A")->GetValue();
    EXPECT_THROW(map.Integer("A")->SetValue(10), OutOfRangeException);
    EXPECT_EQ(listener.Take(), "");
}

TEST(Callbacks, InvalidationTellsDependentsOrAll)
{
    const SmallMap map(chain);
    Listener listener;
    ListenToAll(map, listener);
    map.Node("A")->InvalidateNode();
    EXPECT_EQ(listener.Take(), "A Root");
    map.map->InvalidateNodes();
    EXPECT_EQ(listener.Take(), "A B Device Lone Other R Root");
}

TEST(Callbacks, InsideComesBeforeOutsideWhichRunsWithoutTheLock)
{
    const SmallMap map(chain);
    std::string order;
    bool free = false;
    Register(
        map.Node("A"), std::function<void(INode*)>([&](INode*) {
            order += "outside ";
            std::thread([&] {
                free = map.map->GetLock().TryLock();
                if (free) map.map->GetLock().Unlock();
            }).join();
        }),
        cbPostOutsideLock);
    Register(map.Node("A"), std::function<void(INode*)>([&](INode*) { order += "inside "; }), cbPostInsideLock);
    map.Integer("A")->SetValue(5);
    EXPECT_EQ(order, "inside outside ");
    EXPECT_TRUE(free);
}

TEST(Callbacks, SeeTheNewValueAndMayWriteThemselves)
{
    const SmallMap map(chain);
    int64_t seen = 0;
    Register(map.Node("A"), std::function<void(INode*)>([&](INode* node) {
                 seen = CIntegerPtr(node)->GetValue();
                 map.Integer("Lone")->SetValue(seen + 1);
             }));
    map.Integer("A")->SetValue(5);
    EXPECT_EQ(seen, 5);
    EXPECT_EQ(map.Integer("Lone")->GetValue(), 6);
}

TEST(Callbacks, OneThatDeregistersItselfIsCalledOnce)
{
    const SmallMap map(chain);
    int calls = 0;
    CallbackHandleType handle = 0;
    handle = Register(map.Node("A"), std::function<void(INode*)>([&](INode*) {
                          ++calls;
                          Deregister(handle);
                      }));
    map.Integer("A")->SetValue(5);
    map.Integer("A")->SetValue(6);
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(map.Node("A")->DeregisterCallback(handle));
}

TEST(Polling, TellsWhenTheTimeHasPassed)
{
    const SmallMap map(IntReg("R", "0", "<PollingTime>100</PollingTime>") + chain.substr(chain.find("<Category")));
    Listener listener;
    ListenToAll(map, listener);
    map.map->Poll(99);
    EXPECT_EQ(listener.Take(), "");
    map.map->Poll(1);
    EXPECT_EQ(listener.Take(), "A B R Root");
    map.map->Poll(99);
    EXPECT_EQ(listener.Take(), "");
}

TEST(Polling, TimesBeyondAllCountingStandStill)
{
    const SmallMap map(IntReg("R", "0", "<PollingTime>100</PollingTime>"));
    Listener listener;
    ListenToAll(map, listener);
    map.map->Poll(99);
    map.map->Poll(std::numeric_limits<int64_t>::max());
    EXPECT_EQ(listener.Take(), "R");
    map.map->Poll(-1);
    map.map->Poll(std::numeric_limits<int64_t>::min());
    map.map->Poll(std::numeric_limits<int64_t>::max());
    EXPECT_EQ(listener.Take(), "");
    map.map->Poll(101);
    EXPECT_EQ(listener.Take(), "R");
}

TEST(Selectors, SelectedNodesDependOnTheirSelector)
{
    const SmallMap map("<Integer Name=\"S\"><Value>0</Value><pSelected>F</pSelected></Integer>"
                       "<Integer Name=\"F\"><Value>0</Value></Integer>");
    Listener listener;
    ListenToAll(map, listener);
    map.Integer("S")->SetValue(1);
    EXPECT_EQ(listener.Take(), "F S");
    FeatureList_t selecting;
    CSelectorPtr(map.Node("F"))->GetSelectingFeatures(selecting);
    ASSERT_EQ(selecting.size(), 1u);
    EXPECT_STREQ(selecting[0]->GetNode()->GetName().c_str(), "S");
    EXPECT_TRUE(CSelectorPtr(map.Node("S"))->IsSelector());
}

} // namespace
