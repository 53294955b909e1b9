#include "tests/unit/genicam/refusal.h"
#include "tests/unit/genicam/small_map.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Described;
using koro::test::Load;
using koro::test::MemoryPort;
using koro::test::RefusalOf;
using testing::HasSubstr;

std::string Constant(const std::string& name, int value, const std::string& more = "")
{
    return "<Integer Name=\"" + name + "\"" + more + "><Value>" + std::to_string(value) + "</Value></Integer>";
}

// A description of `elements` with others injected, one after the other.
class Merged
{
public:
    Merged(const std::string& elements, const std::vector<std::string>& injected)
    {
        CNodeMapFactory factory(Described(elements).c_str());
        for (const std::string& more : injected)
        {
            CNodeMapFactory addition(Described(more).c_str());
            factory.AddInjectionData(addition);
        }
        map = factory.CreateNodeMap();
    }

    int64_t ValueOf(const char* name) const { return CIntegerPtr(map._GetNode(name))->GetValue(); }
    std::string Names() const
    {
        NodeList_t nodes;
        map._GetNodes(nodes);
        std::string names;
        for (INode* const node : nodes)
            names += std::string(names.empty() ? "" : " ") + node->GetName().c_str();
        return names;
    }

    CNodeMapRef map;
};

std::string Refusal(const std::string& elements, const std::string& injected)
{
    return RefusalOf<RuntimeException>([&] { Merged(elements, {injected}); });
}

TEST(Injection, AddsNodesThatMayNameEachOther)
{
    const Merged merged(
        "<Integer Name=\"A\"><pValue>Given</pValue></Integer>" + Constant("B", 2),
        {Constant("Given", 7) + "<Integer Name=\"C\"><pValue>B</pValue></Integer>"});
    EXPECT_EQ(merged.ValueOf("A"), 7);
    EXPECT_EQ(merged.ValueOf("C"), 2);
    EXPECT_EQ(merged.Names(), "A Given B Device C");
}

TEST(Injection, TheHigherPriorityStays)
{
    const Merged merged(
        Constant("A", 1) + Constant("B", 1) + Constant("C", 1, " MergePriority=\"-1\""),
        {Constant("A", 2, " MergePriority=\"+1\"") + Constant("B", 2, " MergePriority=\"-1\"") + Constant("C", 2)});
    EXPECT_EQ(merged.ValueOf("A"), 2);
    EXPECT_EQ(merged.ValueOf("B"), 1);
    EXPECT_EQ(merged.ValueOf("C"), 2);
}

TEST(Injection, WhatTheLoserBroughtAlongGoesWithIt)
{
    const std::string entries = "<EnumEntry Name=\"On\"><Value>1</Value></EnumEntry>";
    const std::string rest = "<Value>1</Value></Enumeration>";
    const Merged merged(
        "<Enumeration Name=\"E\"><EnumEntry Name=\"Off\"><Value>0</Value></EnumEntry>" + entries + rest,
        {"<Enumeration Name=\"E\" MergePriority=\"+1\">" + entries + rest});
    EXPECT_EQ(merged.Names(), "E EnumEntry_E_On Device");
    EXPECT_STREQ(CValuePtr(merged.map._GetNode("E"))->ToString().c_str(), "On");
}

TEST(Injection, EqualPrioritiesAreAConflictUnlessBothSayTheSame)
{
    EXPECT_EQ(
        Refusal(Constant("A", 1), "\n\n" + Constant("A", 2)),
        "Node 'A' at line 3 : it differs from the one of the description that it is injected into, whose merge "
        "priority "
        "is the same");
    EXPECT_THAT(
        Refusal(Constant("A", 1), "<Float Name=\"A\"><Value>1</Value></Float>"), HasSubstr("Node 'A' at line 1"));
    const std::string knife = "<IntSwissKnife Name=\"K\"><pVariable Name=\"V\">A</pVariable><Constant "
                              "Name=\"C\">3</Constant><Formula>V*C</Formula></IntSwissKnife>";
    const Merged merged(Constant("A", 4) + knife, {Constant("A", 4) + knife});
    EXPECT_EQ(merged.ValueOf("K"), 12);
    EXPECT_EQ(merged.Names(), "A K _K_C Device");
    const std::string other = "<IntSwissKnife Name=\"K\"><pVariable Name=\"V\">A</pVariable><Constant "
                              "Name=\"C\">4</Constant><Formula>V*C</Formula></IntSwissKnife>";
    EXPECT_THAT(Refusal(Constant("A", 4) + knife, other), HasSubstr("Node 'K' at line 1"));
}

TEST(Injection, NodesThatAnotherBringsAlongMeetNoneOfTheirName)
{
    const std::string knife =
        "<IntSwissKnife Name=\"K\"><Constant Name=\"C\">3</Constant><Formula>C</Formula></IntSwissKnife>";
    const std::string entry = "<EnumEntry Name=\"On\"><Value>1</Value></EnumEntry>";
    EXPECT_THAT(
        Refusal(
            Constant("EnumEntry_E_On", 1) + knife,
            "<Enumeration Name=\"E\">" + entry + "<Value>1</Value></Enumeration>"),
        HasSubstr("Node 'EnumEntry_E_On' at line 1 : it differs"));
}

TEST(Injection, CategoriesAreJoined)
{
    const std::string root = "<Category Name=\"Root\"><DisplayName>Base</DisplayName><pFeature>A</pFeature></Category>";
    const Merged merged(
        root + Constant("A", 1), {"<Category Name=\"Root\"><DisplayName>Other</DisplayName><pFeature>B</pFeature>"
                                  "<pFeature>A</pFeature></Category>" +
                                  Constant("B", 2) + Constant("A", 1)});
    FeatureList_t features;
    CCategoryPtr(merged.map._GetNode("Root"))->GetFeatures(features);
    ASSERT_EQ(features.size(), 2u);
    EXPECT_STREQ(features[0]->GetNode()->GetName().c_str(), "A");
    EXPECT_STREQ(features[1]->GetNode()->GetName().c_str(), "B");
    EXPECT_STREQ(merged.map._GetNode("Root")->GetDisplayName().c_str(), "Base");
    EXPECT_TRUE(merged.map._GetNode("B")->IsFeature());
}

TEST(Injection, TheWinnerTakesOverInvalidatorsAndSelectedNodes)
{
    const Merged merged(
        Constant("Event", 1) + Constant("X", 1) +
            "<Integer Name=\"A\"><pInvalidator>Event</pInvalidator><Value>1</Value>" +
            "<pSelected>X</pSelected></Integer>",
        {"<Integer Name=\"A\" MergePriority=\"+1\"><Value>5</Value></Integer>"});
    EXPECT_EQ(merged.ValueOf("A"), 5);
    NodeList_t invalidating;
    merged.map._GetNode("A")->GetChildren(invalidating, ctInvalidatingChildren);
    ASSERT_EQ(invalidating.size(), 1u);
    EXPECT_STREQ(invalidating[0]->GetName().c_str(), "Event");
    EXPECT_TRUE(CSelectorPtr(merged.map._GetNode("A"))->IsSelector());
}

TEST(Injection, SeveralDescriptionsFollowEachOther)
{
    const Merged merged(
        Constant("A", 1), {Constant("A", 2, " MergePriority=\"+1\"") + Constant("B", 2),
                           "<Integer Name=\"C\"><pValue>B</pValue></Integer>"});
    EXPECT_EQ(merged.ValueOf("A"), 2);
    EXPECT_EQ(merged.ValueOf("C"), 2);
}

TEST(Injection, WhatIsWrongIsSaidWithTheDescriptionThatItStandsIn)
{
    EXPECT_THAT(
        Refusal(Constant("A", 1), "\n<Integer Name=\"B\"><pValue>Gone</pValue></Integer>"),
        HasSubstr("Node 'B' at line 2 of injected description 1 : pValue names 'Gone'"));
    EXPECT_THAT(
        Refusal("<Integer Name=\"A\"><pValue>B</pValue></Integer>", "<Integer Name=\"B\"><pValue>A</pValue></Integer>"),
        HasSubstr("read cycle detected : A -> B -> A"));
    EXPECT_THAT(Refusal(Constant("A", 1), "<Integer"), HasSubstr("Error while parsing XML stream at line 1"));
    EXPECT_THAT(
        Refusal(Constant("A", 1), Constant("A", 1, " MergePriority=\"2\"")),
        HasSubstr("value is not in enumeration: '2'"));
}

TEST(Injection, TheDeviceIsThatOfTheCameraDescription)
{
    std::string other = Described(Constant("B", 1));
    other.replace(other.find("ModelName=\"M\""), 13, "ModelName=\"X\"");
    CNodeMapRef map;
    map._LoadXMLFromStringInject(Described(Constant("A", 1)).c_str(), other.c_str());
    EXPECT_STREQ(CDeviceInfoPtr(map._Ptr)->GetModelName().c_str(), "M");
    EXPECT_NE(map._GetNode("B"), nullptr);
}

TEST(Injection, TakesFiles)
{
    std::ofstream("target.xml") << Described(Constant("A", 1));
    std::ofstream("injected.xml") << Described(Constant("B", 2));
    CNodeMapRef map("Name");
    map._LoadXMLFromFileInject("target.xml", "injected.xml");
    EXPECT_EQ(CIntegerPtr(map._GetNode("B"))->GetValue(), 2);
    EXPECT_STREQ(map._GetDeviceName().c_str(), "Name");
    EXPECT_THROW(map._LoadXMLFromFileInject("target.xml", "injected.xml"), RuntimeException);
}

TEST(Injection, ALoadedDescriptionMayBeInjected)
{
    CNodeMapFactory inner(Described(Constant("C", 3)).c_str());
    CNodeMapFactory middle(Described(Constant("B", 2)).c_str());
    middle.AddInjectionData(inner);
    Load(middle);
    CNodeMapFactory outer(Described(Constant("A", 1)).c_str());
    outer.AddInjectionData(middle);
    EXPECT_FALSE(outer.IsLoaded());
    outer.LoadAndInject();
    EXPECT_TRUE(outer.IsLoaded());
    CNodeMapRef map(outer.CreateNodeMap());
    EXPECT_EQ(CIntegerPtr(map._GetNode("C"))->GetValue(), 3);
}

TEST(Injection, WhatCannotBeInjectedIsRefused)
{
    const std::string xml = Described(Constant("A", 1));
    CNodeMapFactory first(xml.c_str());
    CNodeMapFactory second(xml.c_str());
    CNodeMapFactory third(xml.c_str());
    CNodeMapFactory nothing;
    const auto refusal = [](CNodeMapFactory& target, CNodeMapFactory& added) {
        return RefusalOf<LogicalErrorException>([&] { target.AddInjectionData(added); });
    };
    EXPECT_EQ(refusal(first, first), "A camera description cannot be injected into itself");
    EXPECT_EQ(refusal(first, nothing), "The injected factory has no camera description");
    first.AddInjectionData(second);
    EXPECT_EQ(refusal(second, first), "A factory with injections of its own must be loaded before it is injected");
    second.AddInjectionData(third);
    EXPECT_EQ(
        RefusalOf<LogicalErrorException>([&] { first.LoadAndInject(); }),
        "A factory with injections of its own must be loaded before it is injected");
    second.LoadAndInject();
    first.LoadAndInject();
    EXPECT_EQ(refusal(first, third), "The camera description is loaded: nothing can be injected any more");
}

TEST(Injection, AFailureLeavesNothingHalfMade)
{
    CNodeMapFactory target(Described("<Integer Name=\"A\"><pValue>B</pValue></Integer>").c_str());
    CNodeMapFactory broken(ContentType_Xml, "appears-later.xml");
    std::remove("appears-later.xml");
    target.AddInjectionData(broken);
    EXPECT_THROW(target.LoadAndInject(), RuntimeException);
    EXPECT_FALSE(target.IsLoaded());
    std::ofstream("appears-later.xml") << Described(Constant("B", 2));
    CNodeMapRef map(target.CreateNodeMap());
    EXPECT_EQ(CIntegerPtr(map._GetNode("A"))->GetValue(), 2);
}

} // namespace
