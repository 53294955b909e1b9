#include "tests/unit/genicam/interface_proof.h"
#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using namespace GENAPI_NAMESPACE;
using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::LogicalErrorException;
using koro::test::IntReg;
using koro::test::MemoryPort;
using koro::test::SmallMap;

static_assert(is_same<CBasePtr, CPointer<IBase>> && is_same<CNodePtr, CPointer<INode>>);
static_assert(is_same<CValuePtr, CPointer<IValue>> && is_same<CCategoryPtr, CPointer<ICategory>>);
static_assert(is_same<CBooleanPtr, CPointer<IBoolean>> && is_same<CIntegerPtr, CPointer<IInteger>>);
static_assert(is_same<CStringPtr, CPointer<IString>> && is_same<CRegisterPtr, CPointer<IRegister>>);
static_assert(is_same<CEnumerationPtr, CPointer<IEnumeration>> && is_same<CEnumEntryPtr, CPointer<IEnumEntry>>);
static_assert(is_same<CPortPtr, CPointer<IPort>> && is_same<CPortReplayPtr, CPointer<IPortReplay>>);
static_assert(is_same<CPortRecorderPtr, CPointer<IPortRecorder>> && is_same<CChunkPortPtr, CPointer<IChunkPort>>);
static_assert(is_same<CSelectorPtr, CPointer<ISelector>> && is_same<CCommandPtr, CPointer<ICommand>>);
static_assert(is_same<CPortConstructPtr, CPointer<IPortConstruct>>);
static_assert(is_same<CPortStackedConstructPtr, CPointer<IPortStackedConstruct>>);
static_assert(is_same<CNodeUserDataPtr, CPointer<IUserData, IBase>>);
static_assert(is_same<CPortWriteListPtr, CPointer<IPortWriteList, IPortWriteList>>);
static_assert(is_same<CNodeMapPtr, CPointer<INodeMap, INodeMap>>);
static_assert(is_same<CDeviceInfoPtr, CPointer<IDeviceInfo, INodeMap>>);
static_assert(is_same<CNodeMapUserDataPtr, CPointer<IUserData, INodeMap>>);
static_assert(std::is_base_of_v<CPointer<IFloat, IBase>, CFloatPtr> && !is_same<CFloatPtr, CPointer<IFloat>>);
static_assert(std::has_virtual_destructor_v<CIntegerPtr> && std::is_convertible_v<IBase*, CIntegerPtr>);
static_assert(std::is_convertible_v<IBase*, CFloatPtr> && std::is_assignable_v<CFloatPtr&, IBase*>);
HAS(CIntegerPtr, operator IInteger*, IInteger*, () const);
HAS(CIntegerPtr, operator*, IInteger&, () const);
HAS(CIntegerPtr, operator(), IInteger&, () const);
HAS(CIntegerPtr, operator->, IInteger*, () const);
HAS(CIntegerPtr, IsValid, bool, () const);
HAS(CIntegerPtr, operator bool, bool, () const);
HAS(CIntegerPtr, operator==, bool, (IInteger*) const);
HAS(CIntegerPtr, operator==, bool, (const CIntegerPtr&) const);
HAS(CIntegerPtr, operator==, bool, (int) const);
HAS(CIntegerPtr, operator=, CIntegerPtr&, (IBase*));
HAS(CFloatPtr, GetIntAlias, IInteger*, ());
HAS(CFloatPtr, GetEnumAlias, IEnumeration*, ());
static_assert(noexcept(std::declval<const CIntegerPtr&>().IsValid()));

const std::string oneOfEach =
    IntReg("IntReg", "0") +
    "<Integer Name=\"Integer\"><Value>1</Value></Integer>"
    "<Float Name=\"Float\"><pCastAlias>Integer</pCastAlias><Value>1</Value></Float>"
    "<Float Name=\"EnumFloat\"><pCastAlias>Enumeration</pCastAlias><Value>1</Value></Float>"
    "<Float Name=\"LoneFloat\"><Value>1</Value></Float>"
    "<Boolean Name=\"Boolean\"><Value>true</Value></Boolean>"
    "<Command Name=\"Command\"><Value>0</Value><CommandValue>1</CommandValue></Command>"
    "<String Name=\"String\"><Value>text</Value></String>"
    "<Register Name=\"Register\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
    "</Register><Category Name=\"Category\"><pFeature>Integer</pFeature></Category>"
    "<Enumeration Name=\"Enumeration\"><EnumEntry Name=\"One\"><Value>1</Value></EnumEntry><Value>1</Value>"
    "</Enumeration><Node Name=\"Node\"/>";

// The value interfaces that a node is found to have.
std::string InterfacesOf(INode* node)
{
    std::string text;
    const auto note = [&text](bool has, const char* name) { text += has ? std::string(name) + ' ' : ""; };
    note(CIntegerPtr(node), "IInteger");
    note(CFloatPtr(node), "IFloat");
    note(CBooleanPtr(node), "IBoolean");
    note(CCommandPtr(node), "ICommand");
    note(CStringPtr(node), "IString");
    note(CRegisterPtr(node), "IRegister");
    note(CCategoryPtr(node), "ICategory");
    note(CEnumerationPtr(node), "IEnumeration");
    note(CEnumEntryPtr(node), "IEnumEntry");
    note(CPortPtr(node), "IPort");
    note(CChunkPortPtr(node), "IChunkPort");
    note(CPortConstructPtr(node), "IPortConstruct");
    note(CValuePtr(node), "IValue");
    return text;
}

TEST(Pointers, FindTheInterfacesOfEachKindAndNoOthers)
{
    const SmallMap map(oneOfEach);
    EXPECT_EQ(InterfacesOf(map.Node("Integer")), "IInteger IValue ");
    EXPECT_EQ(InterfacesOf(map.Node("IntReg")), "IInteger IRegister IValue ");
    EXPECT_EQ(InterfacesOf(map.Node("Float")), "IFloat IValue ");
    EXPECT_EQ(InterfacesOf(map.Node("Boolean")), "IBoolean IValue ");
    EXPECT_EQ(InterfacesOf(map.Node("Command")), "ICommand IValue ");
    EXPECT_EQ(InterfacesOf(map.Node("String")), "IString IValue ");
    EXPECT_EQ(InterfacesOf(map.Node("Register")), "IRegister IValue ");
    EXPECT_EQ(InterfacesOf(map.Node("Category")), "ICategory IValue ");
    EXPECT_EQ(InterfacesOf(map.Node("Enumeration")), "IEnumeration IValue ");
    EXPECT_EQ(InterfacesOf(map.Node("EnumEntry_Enumeration_One")), "IEnumEntry IValue ");
    EXPECT_EQ(InterfacesOf(map.Node("Device")), "IPort IChunkPort IPortConstruct ");
    EXPECT_EQ(InterfacesOf(map.Node("Node")), "IValue ");
    NodeList_t nodes;
    map.map->GetNodes(nodes);
    for (INode* const node : nodes)
        EXPECT_TRUE(CNodePtr(node) && CSelectorPtr(node) && CNodeUserDataPtr(node)) << node->GetName().c_str();
}

TEST(Pointers, NameThePrincipalInterface)
{
    const SmallMap map(oneOfEach);
    const auto name = [&map](const char* node) { return std::string(GetInterfaceName(map.Node(node)).c_str()); };
    EXPECT_EQ(name("Integer"), "IInteger");
    EXPECT_EQ(name("IntReg"), "IInteger");
    EXPECT_EQ(name("Float"), "IFloat");
    EXPECT_EQ(name("Boolean"), "IBoolean");
    EXPECT_EQ(name("Command"), "ICommand");
    EXPECT_EQ(name("String"), "IString");
    EXPECT_EQ(name("Register"), "IRegister");
    EXPECT_EQ(name("Category"), "ICategory");
    EXPECT_EQ(name("Enumeration"), "IEnumeration");
    EXPECT_EQ(name("EnumEntry_Enumeration_One"), "IEnumEntry");
    EXPECT_EQ(name("Device"), "IPort");
    EXPECT_EQ(name("Node"), "IValue");
}

TEST(Pointers, EmptyOnesRefuseToBeFollowed)
{
    const SmallMap map(oneOfEach);
    const CIntegerPtr empty = map.Node("String");
    EXPECT_FALSE(empty.IsValid());
    EXPECT_FALSE(empty);
    EXPECT_TRUE(empty == 0);
    EXPECT_THROW(static_cast<void>(empty == 1), LogicalErrorException);
    EXPECT_THROW(empty->GetValue(), LogicalErrorException);
    EXPECT_THROW(*empty, LogicalErrorException);
    EXPECT_THROW(empty(), LogicalErrorException);
    EXPECT_THROW(static_cast<void>(static_cast<IInteger*>(empty)), LogicalErrorException);
    try
    {
        empty->GetValue();
    }
    catch (const LogicalErrorException& exception)
    {
        EXPECT_STREQ(exception.GetDescription(), "NULL pointer dereferenced");
    }
    EXPECT_FALSE(CIntegerPtr(nullptr).IsValid());
    EXPECT_FALSE(CIntegerPtr().IsValid());
}

TEST(Pointers, AreAssignedAndCompared)
{
    const SmallMap map(oneOfEach);
    CIntegerPtr pointer;
    pointer = map.Node("Integer");
    ASSERT_TRUE(pointer);
    IInteger* const plain = pointer;
    EXPECT_TRUE(pointer == plain);
    EXPECT_TRUE(pointer == CIntegerPtr(map.Node("Integer")));
    EXPECT_FALSE(pointer == CIntegerPtr(map.Node("IntReg")));
    EXPECT_FALSE(pointer == 0);
    EXPECT_EQ((*pointer).GetValue(), 1);
    EXPECT_EQ(pointer().GetValue(), 1);
    pointer = map.Node("Float");
    EXPECT_FALSE(pointer.IsValid());
}

TEST(Pointers, FloatKnowsTheCastAliasOfItsNode)
{
    const SmallMap map(oneOfEach);
    CFloatPtr number = map.Node("Float");
    EXPECT_EQ(number.GetIntAlias(), dynamic_cast<IInteger*>(map.Node("Integer")));
    EXPECT_EQ(number.GetEnumAlias(), nullptr);
    number = map.Node("EnumFloat");
    EXPECT_EQ(number.GetIntAlias(), nullptr);
    EXPECT_EQ(number.GetEnumAlias(), dynamic_cast<IEnumeration*>(map.Node("Enumeration")));
    CFloatPtr lone = map.Node("LoneFloat");
    EXPECT_TRUE(lone.IsValid() && !lone.GetIntAlias() && !lone.GetEnumAlias());
    CFloatPtr integer = map.Node("Integer");
    EXPECT_FALSE(integer.IsValid()) << "an integer is no float, whatever its alias";
}

TEST(Pointers, MapIsSeenAsItsOtherInterfaces)
{
    const SmallMap map(oneOfEach);
    const CNodeMapPtr whole(map.map);
    EXPECT_EQ(whole->GetDeviceName(), "Device");
    const CDeviceInfoPtr info(map.map);
    EXPECT_STREQ(info->GetVendorName().c_str(), "V");
    const CNodeMapUserDataPtr data(map.map);
    int mine = 0;
    EXPECT_EQ(data->SetUserData(&mine), nullptr);
    EXPECT_EQ(data->GetUserData(), &mine);
    const CNodeUserDataPtr atNode(map.Node("Integer"));
    EXPECT_EQ(atNode->SetUserData(&mine), nullptr);
    EXPECT_EQ(atNode->SetUserData(nullptr), &mine);
}

} // namespace
