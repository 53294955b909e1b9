// Which nodes a drop visits: looks inside the runtime, since nothing outside shows it but the time.
#include "map/filled_caches.h"
#include "map/node_map.h"
#include "tests/unit/genicam/persistence_bag.h"

#include <GenApi/NodeCallback.h>
#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace
{

using namespace GENAPI_NAMESPACE;
using namespace GENAPI_NAMESPACE::runtime;
using koro::test::Features;
using koro::test::IntReg;
using koro::test::SmallMap;

// The dependents of each node.
using Graph = std::vector<std::set<NodeIndex>>;
using Nodes = std::set<NodeIndex>;

NodeLists ListsOf(const Graph& graph)
{
    NodeLists lists;
    lists.firsts.push_back(0);
    for (const Nodes& dependents : graph)
    {
        lists.nodes.insert(lists.nodes.end(), dependents.begin(), dependents.end());
        lists.firsts.push_back(static_cast<uint32_t>(lists.nodes.size()));
    }
    return lists;
}

Nodes Reachable(const Graph& graph, NodeIndex start)
{
    Nodes met = {start};
    std::vector<NodeIndex> open = {start};
    while (!open.empty())
    {
        const NodeIndex node = open.back();
        open.pop_back();
        for (const NodeIndex dependent : graph[node])
        {
            if (met.insert(dependent).second) open.push_back(dependent);
        }
    }
    return met;
}

Nodes Take(FilledCaches& filled, NodeIndex start)
{
    const std::vector<NodeIndex>& taken = filled.Take({&start, &start + 1});
    const Nodes nodes(taken.begin(), taken.end());
    EXPECT_EQ(nodes.size(), taken.size()) << "each node is there once";
    return nodes;
}

bool Holds(const Nodes& nodes, const Nodes& part)
{
    return std::includes(nodes.begin(), nodes.end(), part.begin(), part.end());
}

TEST(FilledCaches, TakeGivesEachAddedNodeOnceUntilItIsAddedAgain)
{
    const Graph graph = {{1, 2}, {3}, {3}, {}};
    const NodeLists lists = ListsOf(graph);
    FilledCaches filled(lists);
    EXPECT_EQ(Take(filled, 0), Nodes());
    filled.Add(3);
    EXPECT_TRUE(Holds(Take(filled, 0), {3}));
    EXPECT_EQ(Take(filled, 0), Nodes());
    filled.Add(3);
    EXPECT_TRUE(Holds(Take(filled, 2), {3}));
    EXPECT_FALSE(Holds(Take(filled, 1), {3})) << "taken by the other road";
    filled.Add(3);
    EXPECT_TRUE(Holds(Take(filled, 1), {3}));
    filled.Add(0);
    EXPECT_EQ(Take(filled, 0).count(0), 1u) << "the start itself";
}

TEST(FilledCaches, CirclesAndLinksToTheNodeItselfEnd)
{
    const Graph graph = {{0, 1}, {2}, {0}};
    const NodeLists lists = ListsOf(graph);
    FilledCaches filled(lists);
    for (int round = 0; round < 3; ++round)
    {
        filled.Add(2);
        EXPECT_TRUE(Holds(Take(filled, 0), {2}));
        filled.Add(0);
        EXPECT_TRUE(Holds(Take(filled, 1), {0}));
    }
}

TEST(FilledCaches, TakeFindsAllAddedDependentsAndNothingElseInAnyOrderOfCalls)
{
    std::mt19937 random(1);
    const auto below = [&](size_t bound) { return static_cast<NodeIndex>(random() % bound); };
    for (int round = 0; round < 200; ++round)
    {
        Graph graph(2 + below(30));
        for (size_t link = below(4 * graph.size()); link > 0; --link)
            graph[below(graph.size())].insert(below(graph.size()));
        const NodeLists lists = ListsOf(graph);
        FilledCaches filled(lists);
        Nodes added;
        for (int step = 0; step < 200; ++step)
        {
            const NodeIndex node = below(graph.size());
            if (below(3) > 0)
            {
                filled.Add(node);
                added.insert(node);
                continue;
            }
            const Nodes reachable = Reachable(graph, node);
            Nodes expected;
            std::set_intersection(
                reachable.begin(), reachable.end(), added.begin(), added.end(),
                std::inserter(expected, expected.end()));
            const Nodes taken = Take(filled, node);
            ASSERT_TRUE(Holds(taken, expected)) << "round " << round << ", step " << step;
            ASSERT_TRUE(Holds(reachable, taken)) << "round " << round << ", step " << step;
            for (const NodeIndex gone : taken)
                added.erase(gone);
        }
    }
}

std::string ManyBehindASelector(int count, const std::string& selector)
{
    std::string names, selected, nodes;
    for (int i = 0; i < count; ++i)
    {
        const std::string number = std::to_string(i);
        names += " N" + number;
        selected += "<pSelected>N" + number + "</pSelected>";
        nodes +=
            "<Integer Name=\"N" + number + "\"><Streamable>Yes</Streamable><pValue>R" + number + "</pValue></Integer>" +
            IntReg("R" + number, std::to_string(16 + 8 * i) + "</Address><pIndex Offset=\"4\">S</pIndex><Address>0");
    }
    return Features("S" + names) + "<Integer Name=\"S\">" + selected + selector + "<Min>0</Min><Max>1</Max></Integer>" +
           IntReg("SReg", "0") + nodes;
}

class Ignores
{
public:
    void Changed(INode*) { ++calls; }
    int calls = 0;
};

// Nodes that are visited while the features are stored and loaded again.
uint64_t VisitsFor(int count, const char* listenedTo)
{
    const SmallMap map(ManyBehindASelector(count, "<pValue>SReg</pValue>"));
    Ignores listener;
    if (listenedTo) Register(map.Node(listenedTo), listener, &Ignores::Changed);
    const NodeMap& inside = dynamic_cast<const NodeMap&>(*map.map);
    const uint64_t before = inside.Visits();
    CFeatureBag bag;
    EXPECT_EQ(bag.StoreToBag(map.map), 3 * count) << "two values of each feature, and the selector behind each";
    EXPECT_TRUE(bag.LoadFromBag(map.map));
    const int fewest = listenedTo ? count : -1;
    EXPECT_GT(listener.calls, fewest);
    return inside.Visits() - before;
}

TEST(FilledCaches, FourTimesTheFeaturesOfASelectorAreStoredAndLoadedWithFourTimesTheVisits)
{
    EXPECT_LT(VisitsFor(800, nullptr), 5 * VisitsFor(200, nullptr));
}

TEST(FilledCaches, ACallbackBehindTheSelectorDoesNotMakeThemMore)
{
    for (const char* const name : {"Root", "N7", "S"})
        EXPECT_LT(VisitsFor(800, name), 5 * VisitsFor(200, name)) << name;
}

TEST(EssentialProperties, OfALongSelectorAreFewAndKeepFirstsAndOrder)
{
    const SmallMap map(
        ManyBehindASelector(500, "<pError>E</pError><Value>1</Value><pError>F</pError>") +
        "<Enumeration Name=\"E\"><EnumEntry Name=\"Fine\"><Value>0</Value></EnumEntry><Value>0</Value>"
        "</Enumeration><Enumeration Name=\"F\"><EnumEntry Name=\"Fine\"><Value>0</Value></EnumEntry>"
        "<Value>0</Value></Enumeration>");
    const Description& source = dynamic_cast<const NodeMap&>(*map.map).Source();
    const NodeIndex selector = source.FindNode("S");
    std::vector<Property> kept;
    for (const PropertyRecord& record : source.EssentialsOf(selector))
        kept.push_back(record.property);
    const std::vector<Property> expected = {Property::pSelected, Property::pError, Property::Value,
                                            Property::pError,    Property::Min,    Property::Max};
    EXPECT_EQ(kept, expected);
    EXPECT_EQ(source.PropertiesOf(selector).size(), 505u);
    EXPECT_EQ(source.NameOf(source.Find(selector, Property::pSelected)->node), "N0");
    const CSelectorPtr named = map.Node("S");
    FeatureList_t selected;
    named->GetSelectedFeatures(selected);
    EXPECT_EQ(selected.size(), 500u);
}

} // namespace
