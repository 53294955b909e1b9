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

// What the nodes of a graph have cached, and which of them share bytes, beside the FilledCaches that records it.
class Model
{
public:
    explicit Model(const Graph& graph) : graph(graph), lists(ListsOf(graph)), filled(lists), bytesOf(graph.size(), none)
    {}

    void Add(NodeIndex node)
    {
        filled.Add(node);
        added.insert(node);
    }
    void Use(NodeIndex node, size_t bytes)
    {
        if (bytesOf[node] != none) filled.Unshare(node);
        bytesOf[node] = bytes;
        filled.Share(sharers[bytes], node);
        if (valid[bytes]) Add(node);
    }
    void Fill(size_t bytes)
    {
        filled.AddSharers(sharers[bytes]);
        valid[bytes] = true;
    }
    // What the nodes that use the bytes and their dependents have cached.
    void CheckWrite(size_t bytes)
    {
        valid[bytes] = false;
        const Span<NodeIndex> active = sharers[bytes].Active();
        CheckTake({active.begin(), active.end()}, UsersOf(bytes));
    }
    void CheckTake(std::vector<NodeIndex> starts, const Nodes& allStarts)
    {
        Nodes reachable;
        for (const NodeIndex start : allStarts)
            reachable.merge(Reachable(graph, start));
        const std::vector<NodeIndex>& list = filled.Take({starts.data(), starts.data() + starts.size()});
        const Nodes taken(list.begin(), list.end());
        EXPECT_EQ(taken.size(), list.size()) << "each node is there once";
        EXPECT_TRUE(Holds(reachable, taken));
        for (const NodeIndex node : reachable)
            EXPECT_TRUE(!HasCached(node) || taken.count(node) > 0) << node;
        for (const NodeIndex node : taken)
        {
            added.erase(node);
            if (bytesOf[node] != none) valid[bytesOf[node]] = false;
        }
    }

    static constexpr size_t none = 3; // beyond the last bytes

private:
    bool HasCached(NodeIndex node) const
    {
        return added.count(node) > 0 || (bytesOf[node] != none && valid[bytesOf[node]]);
    }
    Nodes UsersOf(size_t bytes) const
    {
        Nodes users;
        for (NodeIndex node = 0; node < graph.size(); ++node)
        {
            if (bytesOf[node] == bytes) users.insert(node);
        }
        return users;
    }

    const Graph& graph;
    const NodeLists lists;
    FilledCaches filled;
    FilledCaches::Sharers sharers[none];
    bool valid[none] = {};
    std::vector<size_t> bytesOf;
    Nodes added;
};

TEST(FilledCaches, AWriteToSharedBytesFindsAllThatIsCachedInAnyOrderOfCalls)
{
    std::mt19937 random(1);
    const auto below = [&](size_t bound) { return static_cast<NodeIndex>(random() % bound); };
    for (int round = 0; round < 100 && !testing::Test::HasFailure(); ++round)
    {
        Graph graph(2 + below(20));
        for (size_t link = below(2 * graph.size()); link > 0; --link)
            graph[below(graph.size())].insert(below(graph.size()));
        SCOPED_TRACE(round);
        Model model(graph);
        for (int step = 0; step < 200; ++step)
        {
            const NodeIndex node = below(graph.size());
            const size_t bytes = below(Model::none);
            switch (below(6))
            {
            case 0:
                model.Add(node);
                break;
            case 1:
                model.Use(node, bytes);
                break;
            case 2:
                model.CheckTake({node}, {node});
                break;
            case 3:
                model.CheckWrite(bytes);
                break;
            default:
                model.Fill(bytes);
            }
        }
    }
}

TEST(FilledCaches, FillingSharedBytesAgainEntersOnlyTheSharersThatWereRemoved)
{
    const NodeLists lists = ListsOf(Graph(100));
    FilledCaches filled(lists);
    FilledCaches::Sharers sharers;
    for (NodeIndex node = 0; node < 100; ++node)
        filled.Share(sharers, node);
    filled.AddSharers(sharers);
    EXPECT_EQ(filled.Visits(), 100u);
    filled.AddSharers(sharers);
    EXPECT_TRUE(sharers.Active().empty());
    EXPECT_EQ(filled.Visits(), 100u);
    EXPECT_EQ(Take(filled, 7), Nodes({7}));
    const uint64_t before = filled.Visits();
    filled.AddSharers(sharers);
    EXPECT_EQ(filled.Visits(), before + 1);
    filled.Add(8);
    ASSERT_EQ(sharers.Active().size(), 1u);
    EXPECT_EQ(sharers.Active()[0], 8u);
}

TEST(FilledCaches, ANodeThatSharesNoLongerLeavesTheSharersAsTheyAre)
{
    const NodeLists lists = ListsOf(Graph(3));
    FilledCaches filled(lists);
    FilledCaches::Sharers sharers;
    for (NodeIndex node = 0; node < 3; ++node)
        filled.Share(sharers, node);
    for (NodeIndex node = 0; node < 2; ++node)
        filled.Add(node);
    filled.Unshare(0);
    EXPECT_EQ(Take(filled, 0), Nodes({0}));
    ASSERT_EQ(sharers.Active().size(), 1u);
    EXPECT_EQ(sharers.Active()[0], 1u);
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

// Bits of one register. Each second one is read with the eight bytes that begin there.
std::string ManyFields(int count)
{
    std::string names, nodes;
    for (int i = 0; i < count; ++i)
    {
        const std::string number = std::to_string(i);
        names += " N" + number;
        nodes += "<Integer Name=\"N" + number + "\"><Streamable>Yes</Streamable><pValue>R" + number +
                 "</pValue></Integer><MaskedIntReg Name=\"R" + number + "\"><Address>16</Address><Length>" +
                 (i % 2 ? "8" : "4") + "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Bit>" +
                 std::to_string(i % 32) + "</Bit><Endianess>LittleEndian</Endianess></MaskedIntReg>";
    }
    return Features(names) + nodes;
}

class Ignores
{
public:
    void Changed(INode*) { ++calls; }
    int calls = 0;
};

// Nodes that are visited while the features are stored and loaded again.
uint64_t VisitsFor(const std::string& elements, int values, const char* listenedTo, int fewestCalls)
{
    const SmallMap map(elements);
    Ignores listener;
    if (listenedTo) Register(map.Node(listenedTo), listener, &Ignores::Changed);
    const NodeMap& inside = dynamic_cast<const NodeMap&>(*map.map);
    const uint64_t before = inside.Visits();
    CFeatureBag bag;
    EXPECT_EQ(bag.StoreToBag(map.map), values);
    EXPECT_TRUE(bag.LoadFromBag(map.map));
    EXPECT_GE(listener.calls, fewestCalls);
    return inside.Visits() - before;
}

// There are two values of each feature, and the selector behind each.
uint64_t VisitsBehindASelector(int count, const char* listenedTo)
{
    const std::string elements = ManyBehindASelector(count, "<pValue>SReg</pValue>");
    return VisitsFor(elements, 3 * count, listenedTo, listenedTo ? count + 1 : 0);
}

TEST(FilledCaches, FourTimesTheFeaturesOfASelectorAreStoredAndLoadedWithFourTimesTheVisits)
{
    EXPECT_LT(VisitsBehindASelector(800, nullptr), 5 * VisitsBehindASelector(200, nullptr));
}

TEST(FilledCaches, ACallbackBehindTheSelectorDoesNotMakeThemMore)
{
    for (const char* const name : {"Root", "N7", "S"})
        EXPECT_LT(VisitsBehindASelector(800, name), 5 * VisitsBehindASelector(200, name)) << name;
}

TEST(FilledCaches, FourTimesTheFieldsOfARegisterAreStoredAndLoadedWithFourTimesTheVisits)
{
    for (const char* const name : {static_cast<const char*>(nullptr), "N7", "R7"})
    {
        const auto visits = [name](int count) { return VisitsFor(ManyFields(count), count, name, name ? 1 : 0); };
        EXPECT_LT(visits(800), 5 * visits(200)) << (name ? name : "no callback");
    }
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
