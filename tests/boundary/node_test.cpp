// What every node returns: attributes, relations, casts.
#include "tests/boundary/described_camera.h"
#include "tests/boundary/producer_errors.h"
#include "tests/support/in_thread.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <future>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using Strings = std::vector<std::string>;

class Node : public DescribedCamera
{
protected:
    template <class Value>
    static Value Ask(KORO_ReturnCode (*function)(KORO_NodeHandle, Value*), KORO_NodeHandle node)
    {
        return Get<Value>(function, node);
    }
};

using Cast = std::function<Error(KORO_NodeHandle, bool*)>;

// The outcome of a cast, and whether it wrote the output.
template <class Handle>
Cast CastBy(KORO_ReturnCode (*function)(KORO_NodeHandle, Handle*))
{
    return [function](KORO_NodeHandle node, bool* written) {
        static int marker;
        auto typed = reinterpret_cast<Handle>(&marker);
        const Error outcome = Outcome(function(node, &typed));
        *written = typed != reinterpret_cast<Handle>(&marker);
        return outcome;
    };
}

struct Type
{
    std::string node; // in oneOfEach
    std::int32_t number;
    std::string kind; // as the message calls it
    Cast cast;
};

const std::vector<Type>& Types()
{
    static const std::vector<Type> types = {
        {"Integer", 0, "an integer", CastBy(KORO_Node_ToIntegerNode)},
        {"Boolean", 1, "a boolean", CastBy(KORO_Node_ToBooleanNode)},
        {"Command", 2, "a command", CastBy(KORO_Node_ToCommandNode)},
        {"Float", 3, "a float", CastBy(KORO_Node_ToFloatNode)},
        {"String", 4, "a string", CastBy(KORO_Node_ToStringNode)},
        {"Register", 5, "a register", CastBy(KORO_Node_ToRegisterNode)},
        {"Category", 6, "a category", CastBy(KORO_Node_ToCategoryNode)},
        {"Enumeration", 7, "an enumeration", CastBy(KORO_Node_ToEnumerationNode)},
        {"EnumEntry_Enumeration_On", 8, "an enumeration entry", CastBy(KORO_Node_ToEnumerationEntryNode)},
    };
    return types;
}

// One of the four lists.
struct List
{
    const char* kind;
    const char* count;
    const char* element;
    KORO_ReturnCode (*getCount)(KORO_NodeHandle, std::size_t*);
    KORO_ReturnCode (*getNode)(KORO_NodeHandle, std::size_t, KORO_NodeHandle*);
    KORO_ReturnCode (*find)(KORO_NodeHandle, const char*, std::size_t, KORO_NodeHandle*);

    // Sorted: the order is GenApi's own.
    Strings Names(KORO_NodeHandle node) const
    {
        Strings names;
        for (std::size_t index = 0; index < Get<std::size_t>(getCount, node); ++index)
            names.push_back(GetText(KORO_Node_GetName, Get<KORO_NodeHandle>(getNode, node, index)));
        std::sort(names.begin(), names.end());
        return names;
    }
};

const List invalidated{
    "invalidated",
    "numInvalidatedNodes",
    "invalidatedNodeHandle",
    KORO_Node_GetNumInvalidatedNodes,
    KORO_Node_GetInvalidatedNode,
    KORO_Node_FindInvalidatedNode};
const List invalidating{
    "invalidating",
    "numInvalidatingNodes",
    "invalidatingNodeHandle",
    KORO_Node_GetNumInvalidatingNodes,
    KORO_Node_GetInvalidatingNode,
    KORO_Node_FindInvalidatingNode};
const List selected{
    "selected",
    "numSelectedNodes",
    "selectedNodeHandle",
    KORO_Node_GetNumSelectedNodes,
    KORO_Node_GetSelectedNode,
    KORO_Node_FindSelectedNode};
const List selecting{
    "selecting",
    "numSelectingNodes",
    "selectingNodeHandle",
    KORO_Node_GetNumSelectingNodes,
    KORO_Node_GetSelectingNode,
    KORO_Node_FindSelectingNode};
const List* const lists[] = {&invalidated, &invalidating, &selected, &selecting};

// "Outer" selects "Inner", which selects "Leaf"; "Watcher" is invalidated by "Leaf".
const std::string related = "<Integer Name=\"Outer\"><Value>0</Value><pSelected>Inner</pSelected></Integer>"
                            "<Integer Name=\"Inner\"><Value>0</Value><pSelected>Leaf</pSelected></Integer>"
                            "<Integer Name=\"Leaf\"><Value>0</Value></Integer>"
                            "<Integer Name=\"Watcher\"><pInvalidator>Leaf</pInvalidator><Value>0</Value></Integer>"
                            "<Category Name=\"Category\"/>";

} // namespace

TEST_F(Node, TextsAreThoseOfTheDescription)
{
    const auto map = Describe(
        "<Integer Name=\"Gain\" NameSpace=\"Standard\"><ToolTip>Tip</ToolTip><Description>Much text</Description>"
        "<DisplayName>The gain</DisplayName><Value>1</Value></Integer><Category Name=\"Bare\"/>");
    const auto gain = Find(map, "Gain");
    ExpectTextOut("name", "Gain", KORO_Node_GetName, gain);
    ExpectTextOut("displayName", "The gain", KORO_Node_GetDisplayName, gain);
    ExpectTextOut("toolTip", "Tip", KORO_Node_GetToolTip, gain);
    ExpectTextOut("description", "Much text", KORO_Node_GetDescription, gain);

    const auto bare = Find(map, "Bare");
    ExpectTextOut("toolTip", "", KORO_Node_GetToolTip, bare);
    ExpectTextOut("description", "", KORO_Node_GetDescription, bare);
}

TEST_F(Node, NumbersAreGenApisOwn)
{
    const auto map = Describe(
        "<Integer Name=\"Standard\" NameSpace=\"Standard\"><Visibility>Guru</Visibility><Value>1</Value></Integer>"
        "<Integer Name=\"Custom\" NameSpace=\"Custom\"><Visibility>Invisible</Visibility><Value>1</Value></Integer>"
        "<Integer Name=\"Bare\"><Value>1</Value></Integer><Integer Name=\"Expert\"><Visibility>Expert</Visibility>"
        "<Value>1</Value></Integer>");
    ExpectScalarOut("_namespace", 1, KORO_Node_GetNamespace, Find(map, "Standard"));
    ExpectScalarOut("_namespace", 0, KORO_Node_GetNamespace, Find(map, "Custom"));
    ExpectScalarOut("visibility", 2, KORO_Node_GetVisibility, Find(map, "Standard"));
    ExpectScalarOut("visibility", 3, KORO_Node_GetVisibility, Find(map, "Custom"));
    ExpectScalarOut("visibility", 1, KORO_Node_GetVisibility, Find(map, "Expert"));
    ExpectScalarOut("visibility", 0, KORO_Node_GetVisibility, Find(map, "Bare"));
}

TEST_F(Node, AccessStatusIsGenApisOwn)
{
    const auto map =
        Describe("<Integer Name=\"ReadWrite\"><Value>1</Value></Integer>"
                 "<IntSwissKnife Name=\"ReadOnly\"><Formula>1</Formula></IntSwissKnife>"
                 "<Integer Name=\"Unavailable\"><pIsAvailable>Zero</pIsAvailable><Value>1</Value></Integer>"
                 "<Integer Name=\"Unimplemented\"><pIsImplemented>Zero</pIsImplemented><Value>1</Value></Integer>"
                 "<Integer Name=\"Zero\"><Value>0</Value></Integer>"
                 "<IntReg Name=\"WriteOnly\"><Address>0</Address><Length>4</Length><AccessMode>WO</AccessMode>"
                 "<pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>");
    ExpectScalarOut("accessStatus", 0, KORO_Node_GetAccessStatus, Find(map, "Unimplemented"));
    ExpectScalarOut("accessStatus", 1, KORO_Node_GetAccessStatus, Find(map, "Unavailable"));
    ExpectScalarOut("accessStatus", 2, KORO_Node_GetAccessStatus, Find(map, "WriteOnly"));
    ExpectScalarOut("accessStatus", 3, KORO_Node_GetAccessStatus, Find(map, "ReadOnly"));
    ExpectScalarOut("accessStatus", 4, KORO_Node_GetAccessStatus, Find(map, "ReadWrite"));
}

TEST_F(Node, FlagsAreThoseOfTheDescription)
{
    const auto map = Describe(
        "<Category Name=\"Root\"><pFeature>Feature</pFeature></Category>" +
        IntRegister("Feature", 0, "<Streamable>Yes</Streamable><IsDeprecated>Yes</IsDeprecated>") +
        IntRegister("Hidden", 4, "<Cachable>NoCache</Cachable>"));
    const auto feature = Find(map, "Feature");
    const auto hidden = Find(map, "Hidden");
    const auto expect = [&](const char* parameter, auto function, KORO_Bool8 ofFeature, KORO_Bool8 ofHidden) {
        ExpectScalarOut(parameter, ofFeature, function, feature);
        ExpectScalarOut(parameter, ofHidden, function, hidden);
    };
    expect("isFeature", KORO_Node_GetIsFeature, 1, 0);
    expect("isDeprecated", KORO_Node_GetIsDeprecated, 1, 0);
    expect("isStreamable", KORO_Node_GetIsStreamable, 1, 0);
    expect("isCacheable", KORO_Node_GetIsCacheable, 1, 0);
}

TEST_F(Node, CachingAndPollingAreThoseOfTheDescription)
{
    const auto map = Describe(
        IntRegister("None", 0, "<Cachable>NoCache</Cachable><PollingTime>250</PollingTime>") +
        IntRegister("Through", 4, "<Cachable>WriteThrough</Cachable>") +
        IntRegister("Around", 8, "<Cachable>WriteAround</Cachable>"));
    ExpectScalarOut("cachingMode", 0, KORO_Node_GetCachingMode, Find(map, "None"));
    ExpectScalarOut("cachingMode", 1, KORO_Node_GetCachingMode, Find(map, "Through"));
    ExpectScalarOut("cachingMode", 2, KORO_Node_GetCachingMode, Find(map, "Around"));
    ExpectScalarOut("pollingTime_ms", std::int64_t{250}, KORO_Node_GetPollingTime, Find(map, "None"));
    ExpectScalarOut("pollingTime_ms", std::int64_t{-1}, KORO_Node_GetPollingTime, Find(map, "Through"));
}

TEST_F(Node, AccessStatusIsCacheableOnlyIfGenApiSaysYes)
{
    const auto map = Describe(
        IntRegister("Switch", 0, "<Cachable>NoCache</Cachable>") + IntRegister("Cached", 4) +
        "<Integer Name=\"Uncached\"><pIsAvailable>Switch</pIsAvailable><Value>1</Value></Integer>");
    ExpectScalarOut(
        "isAccessStatusCacheable", KORO_Bool8{1}, KORO_Node_GetIsAccessStatusCacheable, Find(map, "Cached"));
    ExpectScalarOut(
        "isAccessStatusCacheable", KORO_Bool8{0}, KORO_Node_GetIsAccessStatusCacheable, Find(map, "Uncached"));
}

TEST_F(Node, TypesAreTheLibrarysNumbers)
{
    const auto map = Describe(oneOfEach);
    for (const auto& type : Types())
        ExpectScalarOut("type", type.number, KORO_Node_GetType, Find(map, type.node));
    ExpectScalarOut("type", 9, KORO_Node_GetType, Find(map, "Plain"));
    ExpectScalarOut("type", 9, KORO_Node_GetType, Find(map, "Device"));
}

TEST_F(Node, CastToTheOwnTypeWorksAndToEveryOtherLeavesTheOutputAlone)
{
    const auto map = Describe(oneOfEach);
    for (const auto& target : Types())
    {
        for (const auto& source : Types())
        {
            SCOPED_TRACE(source.node + " as " + target.kind);
            bool written = false;
            const Error outcome = target.cast(Find(map, source.node), &written);
            const bool same = source.number == target.number;
            EXPECT_EQ(written, same);
            const Error refused{KORO_RETURN_CODE_INVALID_CAST, "Node cannot be cast to " + target.kind + " node!"};
            EXPECT_EQ(outcome, same ? Error{} : refused);
        }
        for (const auto* plain : {"Plain", "Device"})
        {
            bool written = false;
            EXPECT_EQ(target.cast(Find(map, plain), &written).code, KORO_RETURN_CODE_INVALID_CAST);
            EXPECT_FALSE(written);
        }
    }
}

TEST_F(Node, CastGivesOneHandleThatEndsWithTheMap)
{
    const auto map = Describe(oneOfEach);
    const auto node = Find(map, "Integer");
    EXPECT_EQ(
        Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, node),
        Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, node));
    EXPECT_EQ(Outcome(KORO_Node_ToIntegerNode(node, nullptr)), NullPointer("integerNodeHandle"));
    EXPECT_EQ(Outcome(KORO_Node_ToFloatNode(node, nullptr)), NullPointer("floatNodeHandle"));

    Require(KORO_Device_Destruct(tree.device));
    KORO_IntegerNodeHandle typed = nullptr;
    EXPECT_EQ(Outcome(KORO_Node_ToIntegerNode(node, &typed)), InvalidHandle("nodeHandle"));
}

TEST_F(Node, ParentIsTheMapThatTheNodeCameFrom)
{
    const auto map = Describe("");
    ExpectScalarOut("nodeMapHandle", map, KORO_Node_GetParentNodeMap, Find(map, "Device"));
}

TEST_F(Node, InvalidatedAreAllThatDependAndInvalidatingTheDirectOnes)
{
    const auto map = Describe(
        related + "<IntSwissKnife Name=\"Sum\"><pVariable Name=\"A\">Watcher</pVariable><Formula>A</Formula>"
                  "</IntSwissKnife>");
    EXPECT_EQ(invalidated.Names(Find(map, "Leaf")), (Strings{"Sum", "Watcher"}));
    EXPECT_EQ(invalidating.Names(Find(map, "Watcher")), Strings{"Leaf"});
    EXPECT_EQ(invalidating.Names(Find(map, "Leaf")), Strings{"Inner"}); // its selector
    EXPECT_EQ(invalidating.Names(Find(map, "Outer")), Strings{});
    EXPECT_EQ(invalidated.Names(Find(map, "Sum")), Strings{});
}

TEST_F(Node, SelectedAndSelectingAreThoseOfSelectors)
{
    const auto map = Describe(related);
    EXPECT_EQ(selected.Names(Find(map, "Outer")), Strings{"Inner"});
    EXPECT_EQ(selected.Names(Find(map, "Inner")), Strings{"Leaf"});
    EXPECT_EQ(selecting.Names(Find(map, "Inner")), Strings{"Outer"});
    EXPECT_EQ(selecting.Names(Find(map, "Outer")), Strings{});
}

TEST_F(Node, WhatIsNoSelectorHasNeitherSelectedNorSelectingNodes)
{
    const auto map = Describe(related);
    for (const auto* name : {"Leaf", "Category", "Device"})
    {
        EXPECT_EQ(selected.Names(Find(map, name)), Strings{}) << name;
        EXPECT_EQ(selecting.Names(Find(map, name)), Strings{}) << name;
    }
}

TEST_F(Node, ListsGiveTheNodesOwnHandles)
{
    const auto map = Describe(related);
    EXPECT_EQ(Get<KORO_NodeHandle>(KORO_Node_GetSelectedNode, Find(map, "Outer"), std::size_t{0}), Find(map, "Inner"));
    const auto found =
        Get<KORO_NodeHandle>(KORO_Node_FindInvalidatedNode, Find(map, "Leaf"), "Watcher", std::size_t{8});
    EXPECT_EQ(found, Find(map, "Watcher"));
    // Of a node that nobody has asked for yet.
    Require(KORO_Device_Destruct(tree.device));
    std::size_t size = 0;
    EXPECT_EQ(Outcome(KORO_Node_GetName(found, nullptr, &size)), InvalidHandle("nodeHandle"));
}

TEST_F(Node, ListsFindByNameWhatTheyHold)
{
    const auto map = Describe(related);
    const std::pair<const List*, std::pair<const char*, const char*>> found[] = {
        {&invalidated, {"Leaf", "Watcher"}},
        {&invalidating, {"Watcher", "Leaf"}},
        {&selected, {"Outer", "Inner"}},
        {&selecting, {"Inner", "Outer"}}};
    for (const auto& [list, names] : found)
    {
        const auto& [of, name] = names;
        EXPECT_EQ(Get<KORO_NodeHandle>(list->find, Find(map, of), name, std::strlen(name) + 1), Find(map, name));
    }
}

TEST_F(Node, ListsTellTheirOwnMessages)
{
    const auto map = Describe(related);
    // In the map, but in no list of this node.
    const auto node = Find(map, "Category");
    for (const auto* list : lists)
    {
        KORO_NodeHandle output = nullptr;
        const std::string start = std::string("There is no ") + list->kind + " node with the given name (";
        EXPECT_EQ(
            Outcome(list->find(node, "Outer", 6, &output)), (Error{KORO_RETURN_CODE_NOT_FOUND, start + "Outer)!"}));
        EXPECT_EQ(Outcome(list->find(node, "x", 1, &output)), (Error{KORO_RETURN_CODE_NOT_FOUND, start + ")!"}));
        EXPECT_EQ(Outcome(list->getNode(node, 0, &output)), outOfRange);
        EXPECT_EQ(output, nullptr);

        EXPECT_EQ(Outcome(list->find(node, nullptr, 1, &output)), NullPointer("name"));
        EXPECT_EQ(Outcome(list->find(node, "Outer", 6, nullptr)), NullPointer(list->element));
        EXPECT_EQ(Outcome(list->getNode(node, 0, nullptr)), NullPointer(list->element));
        EXPECT_EQ(Outcome(list->getCount(node, nullptr)), NullPointer(list->count));
    }
}

TEST_F(Node, IndexAtTheCountOfAListIsOutOfRange)
{
    const auto map = Describe(related);
    KORO_NodeHandle output = nullptr;
    EXPECT_EQ(Outcome(KORO_Node_GetSelectedNode(Find(map, "Outer"), 1, &output)), outOfRange);
    EXPECT_EQ(Outcome(KORO_Node_GetSelectedNode(Find(map, "Outer"), ~std::size_t{0}, &output)), outOfRange);
}

TEST_F(Node, NodesThatReferToEachOtherInACircleEndAllTheSame)
{
    const auto map = Describe("<Integer Name=\"A\"><pInvalidator>B</pInvalidator><Value>1</Value></Integer>"
                              "<Integer Name=\"B\"><pInvalidator>A</pInvalidator><Value>1</Value></Integer>");
    EXPECT_EQ(invalidating.Names(Find(map, "A")), Strings{"B"});
    EXPECT_EQ(invalidating.Names(Find(map, "B")), Strings{"A"});
    Require(KORO_Device_Destruct(tree.device)); // a sanitizer sees what is left
}

TEST_F(Node, FailureOfTheRegistersComesWithItsCodeAndText)
{
    const auto map = Describe(
        IntRegister("Switch", 0, "<Cachable>NoCache</Cachable>") +
        "<Integer Name=\"Feature\"><pIsAvailable>Switch</pIsAvailable><Value>1</Value></Integer>");
    const auto feature = Find(map, "Feature");
    for (const auto& error : producerErrors)
    {
        producer->Answer("GCReadPort", error.code);
        std::int32_t status = -1;
        EXPECT_EQ(Outcome(KORO_Node_GetAccessStatus(feature, &status)), CallFailure("GCReadPort", error));
        EXPECT_EQ(status, -1);
    }
    producer->AnswerAsUsual("GCReadPort");
    EXPECT_EQ(Get<std::int32_t>(KORO_Node_GetAccessStatus, feature), KORO_NODE_ACCESS_STATUS_NOT_AVAILABLE);
}

TEST_F(Node, FailureOfGenApiComesWithItsCodeAndText)
{
    const auto map =
        Describe("<IntSwissKnife Name=\"Broken\"><Formula>1 / 0</Formula></IntSwissKnife>"
                 "<Integer Name=\"Feature\"><pIsAvailable>Broken</pIsAvailable><Value>1</Value></Integer>");
    std::int32_t status = -1;
    const Error outcome = Outcome(KORO_Node_GetAccessStatus(Find(map, "Feature"), &status));
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_ERROR);
    EXPECT_NE(outcome.text.find("Broken"), std::string::npos) << outcome;
    EXPECT_EQ(status, -1);
}

TEST_F(Node, AnswerThatNobodyWantsIsAskedForAllTheSame)
{
    const auto map = Describe(
        IntRegister("Switch", 0, "<Cachable>NoCache</Cachable>") +
        "<Integer Name=\"Feature\"><pIsAvailable>Switch</pIsAvailable><Value>1</Value></Integer>");
    producer->AnswerOnce("GCReadPort", GenTL::GC_ERR_IO);
    EXPECT_EQ(
        Outcome(KORO_Node_GetAccessStatus(Find(map, "Feature"), nullptr)),
        CallFailure("GCReadPort", ProducerErrorOf(GenTL::GC_ERR_IO)));
}

// Each of these would wait for ever if it took the lock.
TEST_F(Node, ConstantAnswersNeedNoLock)
{
    const auto map = Describe(related);
    const auto leaf = Find(map, "Leaf");
    Require(KORO_NodeMap_Lock(map));
    InThread([&] {
        EXPECT_EQ(GetText(KORO_Node_GetName, leaf), "Leaf");
        EXPECT_EQ(GetText(KORO_Node_GetToolTip, leaf), "");
        EXPECT_EQ(GetText(KORO_Node_GetDescription, leaf), "");
        EXPECT_EQ(GetText(KORO_Node_GetDisplayName, leaf), "Leaf");
        EXPECT_EQ(Get<std::int32_t>(KORO_Node_GetType, leaf), KORO_NODE_TYPE_INTEGER);
        EXPECT_EQ(Get<KORO_Bool8>(KORO_Node_GetIsFeature, leaf), 0);
        EXPECT_EQ(selected.Names(Find(map, "Outer")), Strings{"Inner"});
        return 0;
    });
    Require(KORO_NodeMap_Unlock(map));
}

// The thread that holds the lock asks for a list that another one is just asking for.
TEST_F(Node, ListIsGivenToTheHolderOfTheLockWhoeverElseAsksForIt)
{
    const auto map = Describe(related);
    const auto leaf = Find(map, "Leaf");
    Require(KORO_NodeMap_Lock(map));
    auto other = std::async(std::launch::async, [&] { return invalidated.Names(leaf); });
    EXPECT_EQ(invalidated.Names(leaf), Strings{"Watcher"});
    Require(KORO_NodeMap_Unlock(map));
    EXPECT_EQ(other.get(), Strings{"Watcher"});
}

} // namespace koro::test
