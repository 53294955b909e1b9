// Every operation of the interfaces with its exact type. What is virtual is proved by classes that override it, what is
// defaulted by calls that leave it out.
#include "tests/unit/genicam/interface_proof.h"

#include <GenICam.h>
#include <gtest/gtest.h>

namespace
{

using namespace GENAPI_NAMESPACE;
using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;

HAS(IBase, GetAccessMode, EAccessMode, () const);

HAS(IValue, GetNode, INode*, ());
HAS(IValue, ToString, gcstring, (bool, bool));
HAS(IValue, FromString, void, (const gcstring&, bool));
HAS(IValue, IsValueCacheValid, bool, () const);

HAS(INode, GetName, gcstring, (bool) const);
HAS(INode, GetNameSpace, ENameSpace, () const);
HAS(INode, GetVisibility, EVisibility, () const);
HAS(INode, InvalidateNode, void, ());
HAS(INode, IsCachable, bool, () const);
HAS(INode, IsAccessModeCacheable, EYesNo, () const);
HAS(INode, GetCachingMode, ECachingMode, () const);
HAS(INode, GetPollingTime, int64_t, () const);
HAS(INode, GetToolTip, gcstring, () const);
HAS(INode, GetDescription, gcstring, () const);
HAS(INode, GetDisplayName, gcstring, () const);
HAS(INode, GetDeviceName, gcstring, () const);
HAS(INode, GetChildren, void, (NodeList_t&, ELinkType) const);
HAS(INode, GetParents, void, (NodeList_t&) const);
HAS(INode, RegisterCallback, CallbackHandleType, (CNodeCallback*));
HAS(INode, DeregisterCallback, bool, (CallbackHandleType));
HAS(INode, GetNodeMap, INodeMap*, () const);
HAS(INode, GetEventID, gcstring, () const);
HAS(INode, IsStreamable, bool, () const);
HAS(INode, GetPropertyNames, void, (gcstring_vector&) const);
HAS(INode, GetProperty, bool, (const gcstring&, gcstring&, gcstring&));
HAS(INode, ImposeAccessMode, void, (EAccessMode));
HAS(INode, ImposeVisibility, void, (EVisibility));
HAS(INode, GetAlias, INode*, () const);
HAS(INode, GetCastAlias, INode*, () const);
HAS(INode, GetDocuURL, gcstring, () const);
HAS(INode, IsDeprecated, bool, () const);
HAS(INode, GetPrincipalInterfaceType, EInterfaceType, () const);
HAS(INode, IsFeature, bool, () const);

HAS(INodeMap, GetNodes, void, (NodeList_t&) const);
HAS(INodeMap, GetNode, INode*, (const gcstring&) const);
HAS(INodeMap, InvalidateNodes, void, () const);
HAS(INodeMap, Connect, bool, (IPort*, const gcstring&) const);
HAS(INodeMap, Connect, bool, (IPort*) const);
HAS(INodeMap, Connect, bool, (IPortStacked*, const gcstring&));
HAS(INodeMap, Connect, bool, (IPortStacked*));
HAS(INodeMap, GetDeviceName, gcstring, ());
HAS(INodeMap, Poll, void, (int64_t));
HAS(INodeMap, GetLock, CLock&, () const);
HAS(INodeMap, GetNumNodes, uint64_t, () const);
HAS(INodeMap, ParseSwissKnifes, bool, (gcstring_vector*) const);
HAS(INodeMap, NewNodeWriteConcatenator, CNodeWriteConcatenator*, () const);
HAS(INodeMap, ConcatenatedWrite, bool, (CNodeWriteConcatenator*, bool, gcstring_vector*));
HAS(INodeMap, SetSuppressCallbackMode, void, (ECallbackSuppressMode));

HAS(IDestroy, Destroy, void, ());
HAS(IDeviceInfo, GetModelName, gcstring, ());
HAS(IDeviceInfo, GetVendorName, gcstring, ());
HAS(IDeviceInfo, GetToolTip, gcstring, ());
HAS(IDeviceInfo, GetStandardNameSpace, gcstring, ());
HAS(IDeviceInfo, GetGenApiVersion, void, (Version_t&, uint16_t&));
HAS(IDeviceInfo, GetSchemaVersion, void, (Version_t&));
HAS(IDeviceInfo, GetDeviceVersion, void, (Version_t&));
HAS(IDeviceInfo, GetProductGuid, gcstring, ());
HAS(IDeviceInfo, GetVersionGuid, gcstring, ());
HAS(IUserData, GetUserData, UserData_t, () const);
HAS(IUserData, SetUserData, UserData_t, (UserData_t));

HAS(IInteger, SetValue, void, (int64_t, bool));
HAS(IInteger, operator=, IInteger&, (int64_t));
HAS(IInteger, GetValue, int64_t, (bool, bool));
HAS(IInteger, operator(), int64_t, ());
HAS(IInteger, operator*, int64_t, ());
HAS(IInteger, GetMin, int64_t, ());
HAS(IInteger, GetMax, int64_t, ());
HAS(IInteger, GetIncMode, EIncMode, ());
HAS(IInteger, GetInc, int64_t, ());
HAS(IInteger, GetListOfValidValues, int64_autovector_t, (bool));
HAS(IInteger, GetRepresentation, ERepresentation, ());
HAS(IInteger, GetUnit, gcstring, ());
HAS(IInteger, ImposeMin, void, (int64_t));
HAS(IInteger, ImposeMax, void, (int64_t));

HAS(IFloat, SetValue, void, (double, bool));
HAS(IFloat, operator=, IFloat&, (double));
HAS(IFloat, GetValue, double, (bool, bool));
HAS(IFloat, operator(), double, ());
HAS(IFloat, operator*, double, ());
HAS(IFloat, GetMin, double, ());
HAS(IFloat, GetMax, double, ());
HAS(IFloat, HasInc, bool, ());
HAS(IFloat, GetIncMode, EIncMode, ());
HAS(IFloat, GetInc, double, ());
HAS(IFloat, GetListOfValidValues, double_autovector_t, (bool));
HAS(IFloat, GetRepresentation, ERepresentation, ());
HAS(IFloat, GetUnit, gcstring, () const);
HAS(IFloat, GetDisplayNotation, EDisplayNotation, () const);
HAS(IFloat, GetDisplayPrecision, int64_t, () const);
HAS(IFloat, ImposeMin, void, (double));
HAS(IFloat, ImposeMax, void, (double));

HAS(IBoolean, SetValue, void, (bool, bool));
HAS(IBoolean, operator=, IBoolean&, (bool));
HAS(IBoolean, GetValue, bool, (bool, bool) const);
HAS(IBoolean, operator(), bool, () const);
HAS(ICommand, Execute, void, (bool));
HAS(ICommand, operator(), void, ());
HAS(ICommand, IsDone, bool, (bool));
HAS(IString, SetValue, void, (const gcstring&, bool));
HAS(IString, operator=, IString&, (const gcstring&));
HAS(IString, GetValue, gcstring, (bool, bool));
HAS(IString, operator(), gcstring, ());
HAS(IString, operator*, gcstring, ());
HAS(IString, GetMaxLength, int64_t, (bool));
HAS(IRegister, Set, void, (const uint8_t*, int64_t, bool));
HAS(IRegister, Get, void, (uint8_t*, int64_t, bool, bool));
HAS(IRegister, GetLength, int64_t, (bool));
HAS(IRegister, GetAddress, int64_t, (bool));
HAS(ICategory, GetFeatures, void, (FeatureList_t&) const);
HAS(IEnumeration, GetSymbolics, void, (StringList_t&));
HAS(IEnumeration, GetEntries, void, (NodeList_t&));
HAS(IEnumeration, operator=, IEnumeration&, (const gcstring&));
HAS(IEnumeration, SetIntValue, void, (int64_t, bool));
HAS(IEnumeration, operator*, gcstring, ());
HAS(IEnumeration, GetIntValue, int64_t, (bool, bool));
HAS(IEnumeration, GetEntryByName, IEnumEntry*, (const gcstring&));
HAS(IEnumeration, GetEntry, IEnumEntry*, (int64_t));
HAS(IEnumeration, GetCurrentEntry, IEnumEntry*, (bool, bool));
HAS(IEnumEntry, GetValue, int64_t, ());
HAS(IEnumEntry, GetSymbolic, gcstring, () const);
HAS(IEnumEntry, GetNumericValue, double, ());
HAS(IEnumEntry, IsSelfClearing, bool, ());
HAS(ISelector, IsSelector, bool, () const);
HAS(ISelector, GetSelectedFeatures, void, (FeatureList_t&) const);
HAS(ISelector, GetSelectingFeatures, void, (FeatureList_t&) const);

HAS(IPort, Read, void, (void*, int64_t, int64_t));
HAS(IPort, Write, void, (const void*, int64_t, int64_t));
HAS(IPortStacked, Write, void, (PORT_REGISTER_STACK_ENTRY*, size_t));
HAS(IPortConstruct, SetPortImpl, void, (IPort*));
HAS(IPortConstruct, GetSwapEndianess, EYesNo, ());
HAS(IPortStackedConstruct, SetPortImpl, void, (IPortStacked*));
HAS(IPortStackedConstruct, GetSwapEndianess, EYesNo, ());
HAS(IChunkPort, GetChunkID, gcstring, () const);
HAS(IChunkPort, CacheChunkData, EYesNo, () const);
HAS(IPortReplay, Replay, void, (IPortWriteList*, bool));
HAS(IPortRecorder, StartRecording, void, (IPortWriteList*));
HAS(IPortRecorder, StopRecording, void, ());
HAS(IPortWriteList, Write, void, (const void*, int64_t, int64_t));
HAS(IPortWriteList, Replay, void, (IPort*));
HAS(IPortWriteList, SetCookie, void, (int64_t));
HAS(IPortWriteList, GetCookie, int64_t, ());
static_assert(is_same<decltype(PORT_REGISTER_STACK_ENTRY::Address), uint64_t>);
static_assert(is_same<decltype(PORT_REGISTER_STACK_ENTRY::pBuffer), void*>);
static_assert(is_same<decltype(PORT_REGISTER_STACK_ENTRY::Size), size_t>);

HAS(CLock, TryLock, bool, ());
HAS(CLock, Lock, void, ());
HAS(CLock, Unlock, void, ());
static_assert(!std::is_copy_constructible_v<CLock> && !std::is_copy_assignable_v<CLock>);
static_assert(!std::is_polymorphic_v<CLock> && std::is_base_of_v<CLock, CLockEx>);
static_assert(std::is_constructible_v<AutoLock, CLock&> && !std::is_copy_constructible_v<AutoLock>);

HAS(CNodeCallback, operator(), void, (ECallbackType) const);
HAS(CNodeCallback, Destroy, void, ());
HAS(CNodeCallback, GetNode, INode*, ());
static_assert(std::is_abstract_v<CNodeCallback> && std::has_virtual_destructor_v<CNodeCallback>);
static_assert(is_same<decltype(&GENAPI_NAMESPACE::Deregister), void (*)(CallbackHandleType)>);
static_assert(is_same<decltype(&GENAPI_NAMESPACE::CastToIDestroy), IDestroy* (*)(INodeMap*)>);
static_assert(is_same<decltype(&GENAPI_NAMESPACE::GetInterfaceName), gcstring (*)(IBase*)>);

HAS(CNodeMapFactory, IsEmpty, bool, () const);
HAS(CNodeMapFactory, IsLoaded, bool, () const);
HAS(CNodeMapFactory, IsPreprocessed, bool, () const);
HAS(CNodeMapFactory, IsCameraDescriptionFileDataReleased, bool, () const);
HAS(CNodeMapFactory, Preprocess, void, ());
HAS(CNodeMapFactory, ReleaseCameraDescriptionFileData, void, ());
HAS(CNodeMapFactory, GetSupportedSchemaVersions, void, (gcstring_vector&) const);
HAS(CNodeMapFactory, CreateNodeMap, INodeMap*, (const gcstring&, bool));
HAS(CNodeMapFactory, CreateNodeMap, INodeMap*, (CLock&, const gcstring&, bool));
HAS(CNodeMapFactory, GetNodeStatistics, void, (CNodeMapFactory::NodeStatistics_t&));
static_assert(is_same<decltype(&CNodeMapFactory::CreateEmptyNodeMap), INodeMap* (*)()>);
static_assert(is_same<decltype(&CNodeMapFactory::ClearCache), bool (*)()>);
static_assert(is_same<decltype(CNodeMapFactory::NodeStatistics_t::NumNodes), uint32_t>);
static_assert(is_same<decltype(CNodeMapFactory::NodeStatistics_t::NumProperties), uint32_t>);
static_assert(is_same<decltype(CNodeMapFactory::NodeStatistics_t::NumLinks), uint32_t>);
static_assert(is_same<decltype(CNodeMapFactory::NodeStatistics_t::NumStrings), uint32_t>);
static_assert(std::has_virtual_destructor_v<CNodeMapFactory> && std::is_convertible_v<gcstring, CNodeMapFactory>);

HAS(CNodeMapRef, _Destroy, void, ());
HAS(CNodeMapRef, _LoadXMLFromFile, void, (const gcstring&));
HAS(CNodeMapRef, _LoadXMLFromZIPFile, void, (const gcstring&));
HAS(CNodeMapRef, _LoadXMLFromZIPData, void, (const void*, size_t));
HAS(CNodeMapRef, _LoadXMLFromString, void, (const gcstring&));
HAS(CNodeMapRef, _GetDeviceName, gcstring, () const);
HAS(CNodeMapRef, _Poll, void, (int64_t));
HAS(CNodeMapRef, _GetNodes, void, (NodeList_t&) const);
HAS(CNodeMapRef, _GetNode, INode*, (const gcstring&) const);
HAS(CNodeMapRef, _InvalidateNodes, void, () const);
HAS(CNodeMapRef, _Connect, bool, (IPort*, const gcstring&) const);
HAS(CNodeMapRef, _Connect, bool, (IPort*) const);
HAS(CNodeMapRef, _Connect, bool, (IPortStacked*, const gcstring&));
HAS(CNodeMapRef, _Connect, bool, (IPortStacked*));
HAS(CNodeMapRef, _ParseSwissKnifes, bool, (gcstring_vector*) const);
HAS(CNodeMapRef, _SetSuppressCallbackMode, void, (ECallbackSuppressMode));
HAS(CNodeMapRef, _NewNodeWriteConcatenator, CNodeWriteConcatenator*, () const);
HAS(CNodeMapRef, _ConcatenatedWrite, bool, (CNodeWriteConcatenator*, bool, gcstring_vector*));
HAS(CNodeMapRef, _GetSupportedSchemaVersions, void, (gcstring_vector&) const);
static_assert(is_same<decltype(&CNodeMapRef::_ClearXMLCache), bool (*)()>);
static_assert(std::is_base_of_v<CNodeMapRefT<CGeneric_XMLLoaderParams>, CNodeMapRef>);
static_assert(std::is_base_of_v<CGeneric_XMLLoaderParams, CNodeMapRef>);
static_assert(is_same<decltype(CNodeMapRef::_Ptr), INodeMap*>);

// Classes with exactly the listed operations are whole: nothing else is pure, and each one is virtual.
struct Port : virtual IPort
{
    EAccessMode GetAccessMode() const override { return RW; }
    void Read(void*, int64_t, int64_t) override {}
    void Write(const void*, int64_t, int64_t) override {}
};

struct StackedPort : virtual IPortStacked, Port
{
    using Port::Write;
    void Write(const void* buffer, int64_t address, int64_t length) override { Port::Write(buffer, address, length); }
    void Write(PORT_REGISTER_STACK_ENTRY*, size_t) override {}
};

struct ChunkPort : IChunkPort, Port
{
    gcstring GetChunkID() const override { return "1"; }
    EYesNo CacheChunkData() const override { return No; }
};

struct Recorder : IPortRecorder, IPortConstruct, Port
{
    void Replay(IPortWriteList*, bool) override {}
    void StartRecording(IPortWriteList*) override {}
    void StopRecording() override {}
    void SetPortImpl(IPort*) override {}
    EYesNo GetSwapEndianess() override { return No; }
};

struct Selector : ISelector
{
    EAccessMode GetAccessMode() const override { return RW; }
    bool IsSelector() const override { return false; }
    void GetSelectedFeatures(FeatureList_t&) const override {}
    void GetSelectingFeatures(FeatureList_t&) const override {}
};

struct Node : INode
{
    EAccessMode GetAccessMode() const override { return RW; }
    gcstring GetName(bool) const override { return "N"; }
    ENameSpace GetNameSpace() const override { return Custom; }
    EVisibility GetVisibility() const override { return Beginner; }
    void InvalidateNode() override {}
    bool IsCachable() const override { return true; }
    EYesNo IsAccessModeCacheable() const override { return Yes; }
    ECachingMode GetCachingMode() const override { return WriteThrough; }
    int64_t GetPollingTime() const override { return -1; }
    gcstring GetToolTip() const override { return ""; }
    gcstring GetDescription() const override { return ""; }
    gcstring GetDisplayName() const override { return ""; }
    gcstring GetDeviceName() const override { return ""; }
    void GetChildren(NodeList_t&, ELinkType) const override {}
    void GetParents(NodeList_t&) const override {}
    CallbackHandleType RegisterCallback(CNodeCallback*) override { return 0; }
    bool DeregisterCallback(CallbackHandleType) override { return false; }
    INodeMap* GetNodeMap() const override { return nullptr; }
    gcstring GetEventID() const override { return ""; }
    bool IsStreamable() const override { return false; }
    void GetPropertyNames(gcstring_vector&) const override {}
    bool GetProperty(const gcstring&, gcstring&, gcstring&) override { return false; }
    void ImposeAccessMode(EAccessMode) override {}
    void ImposeVisibility(EVisibility) override {}
    INode* GetAlias() const override { return nullptr; }
    INode* GetCastAlias() const override { return nullptr; }
    gcstring GetDocuURL() const override { return ""; }
    bool IsDeprecated() const override { return false; }
    EInterfaceType GetPrincipalInterfaceType() const override { return intfIBoolean; }
    bool IsFeature() const override { return false; }
};

// Leaves out what has a body: assignment, call and GetNode.
struct BooleanNode : Node, IBoolean
{
    EAccessMode GetAccessMode() const override { return RW; }
    gcstring ToString(bool, bool) override { return value ? "1" : "0"; }
    void FromString(const gcstring& text, bool) override { value = text == "1"; }
    bool IsValueCacheValid() const override { return false; }
    void SetValue(bool written, bool) override { value = written; }
    bool GetValue(bool, bool) const override { return value; }
    using IBoolean::operator=;

    bool value = false;
};

struct NodeMap : INodeMap, IDeviceInfo, IUserData, IDestroy
{
    void GetNodes(NodeList_t&) const override {}
    INode* GetNode(const gcstring&) const override { return nullptr; }
    void InvalidateNodes() const override {}
    bool Connect(IPort*, const gcstring&) const override { return true; }
    bool Connect(IPort*) const override { return true; }
    bool Connect(IPortStacked*, const gcstring&) override { return false; }
    bool Connect(IPortStacked*) override { return false; }
    gcstring GetDeviceName() override { return "Mine"; }
    void Poll(int64_t) override {}
    CLock& GetLock() const override { return lock; }
    uint64_t GetNumNodes() const override { return 0; }
    bool ParseSwissKnifes(gcstring_vector*) const override { return true; }
    CNodeWriteConcatenator* NewNodeWriteConcatenator() const override { return nullptr; }
    bool ConcatenatedWrite(CNodeWriteConcatenator*, bool, gcstring_vector*) override { return true; }
    void SetSuppressCallbackMode(ECallbackSuppressMode) override {}
    gcstring GetModelName() override { return ""; }
    gcstring GetVendorName() override { return ""; }
    gcstring GetToolTip() override { return ""; }
    gcstring GetStandardNameSpace() override { return ""; }
    void GetGenApiVersion(Version_t&, uint16_t&) override {}
    void GetSchemaVersion(Version_t&) override {}
    void GetDeviceVersion(Version_t&) override {}
    gcstring GetProductGuid() override { return ""; }
    gcstring GetVersionGuid() override { return ""; }
    UserData_t GetUserData() const override { return nullptr; }
    UserData_t SetUserData(UserData_t) override { return nullptr; }
    void Destroy() override { ++destroyed; }

    virtual ~NodeMap() = default;

    mutable CLock lock;
    int destroyed = 0;
};

static_assert(!std::is_abstract_v<Port> && !std::is_abstract_v<StackedPort> && !std::is_abstract_v<ChunkPort>);
static_assert(!std::is_abstract_v<Recorder> && !std::is_abstract_v<Selector> && !std::is_abstract_v<Node>);
static_assert(!std::is_abstract_v<BooleanNode> && !std::is_abstract_v<NodeMap>);

// Each argument with a default may be left out.
template <class I, class = void>
struct DefaultedReads : std::false_type
{};
template <class I>
struct DefaultedReads<
    I, std::void_t<decltype(std::declval<I&>().GetValue()), decltype(std::declval<I&>().GetValue(true))>>
    : std::true_type
{};
static_assert(DefaultedReads<IInteger>::value && DefaultedReads<IFloat>::value && DefaultedReads<IString>::value);
static_assert(DefaultedReads<const IBoolean>::value);

[[maybe_unused]] void LeaveOutDefaults(
    IInteger& integer, IFloat& real, IBoolean& boolean, ICommand& command, IString& text, IRegister& bytes,
    IEnumeration& choice, IValue& value, INode& node, INodeMap& map, IPortReplay& replay, IPortStacked& stacked,
    CNodeMapRef& reference, CNodeMapFactory& factory, NodeList_t& nodes)
{
    integer.SetValue(1);
    integer.GetListOfValidValues();
    real.SetValue(1);
    real.GetListOfValidValues();
    boolean.SetValue(true);
    command.Execute();
    command.IsDone();
    text.SetValue("");
    text.GetMaxLength();
    bytes.Set(nullptr, 0);
    bytes.Get(nullptr, 0);
    bytes.Get(nullptr, 0, true);
    bytes.GetLength();
    bytes.GetAddress();
    choice.SetIntValue(1);
    choice.GetIntValue();
    choice.GetIntValue(true);
    choice.GetCurrentEntry();
    choice.GetCurrentEntry(true);
    value.ToString();
    value.ToString(true);
    value.FromString("");
    node.GetName();
    node.GetChildren(nodes);
    map.ParseSwissKnifes();
    map.ConcatenatedWrite(nullptr);
    map.ConcatenatedWrite(nullptr, false);
    replay.Replay(nullptr);
    stacked.Write(static_cast<const void*>(nullptr), 0, 0);
    reference._ParseSwissKnifes();
    reference._ConcatenatedWrite(nullptr);
    factory.CreateNodeMap();
    factory.CreateNodeMap("Name");
    factory.CreateNodeMap(map.GetLock());
    factory.CreateNodeMap(map.GetLock(), "Name");
    static_cast<void>(CNodeMapFactory(ContentType_Xml, gcstring("file")));
    static_cast<void>(CNodeMapFactory(ContentType_Xml, gcstring("file"), CacheUsage_Ignore));
    static_cast<void>(CNodeMapFactory(ContentType_Xml, "data", 4));
    static_cast<void>(CNodeMapFactory(ContentType_Xml, "data", 4, CacheUsage_Ignore));
    static_cast<void>(CNodeMapFactory("text"));
    static_cast<void>(CNodeMapFactory("text", CacheUsage_Ignore));
    static_cast<void>(CNodeMapRef(&map));
    static_cast<void>(CNodeMapRef("Name"));
}

TEST(Interfaces, BooleanAssignsAndCallsThroughItsValue)
{
    BooleanNode node;
    IBoolean& boolean = node;
    boolean = true;
    EXPECT_TRUE(node.value);
    EXPECT_TRUE(boolean());
    boolean = false;
    EXPECT_FALSE(boolean());
}

TEST(Interfaces, ValueFindsItsNodeByACrossCast)
{
    BooleanNode node;
    IValue& value = node;
    EXPECT_EQ(value.GetNode(), static_cast<INode*>(&node));
}

TEST(Interfaces, OneObjectIsReachedThroughAllItsInterfaces)
{
    BooleanNode node;
    IBase* const base = static_cast<INode*>(&node);
    EXPECT_EQ(dynamic_cast<IBoolean*>(base), &node);
    EXPECT_EQ(dynamic_cast<IInteger*>(base), nullptr);
    Recorder recorder;
    IPort* const port = &recorder;
    EXPECT_EQ(dynamic_cast<IPortConstruct*>(port), &recorder);
    EXPECT_EQ(dynamic_cast<IPortReplay*>(port), &recorder);
}

TEST(Interfaces, MapIsDestroyedThroughTheCrossCast)
{
    NodeMap map;
    INodeMap* const pointer = &map;
    CastToIDestroy(pointer)->Destroy();
    EXPECT_EQ(map.destroyed, 1);
    EXPECT_EQ(CastToIDestroy(nullptr), nullptr);
}

TEST(Interfaces, PortsOfEitherKindChooseTheirConnect)
{
    NodeMap map;
    INodeMap& interface = map;
    Port plain;
    StackedPort stacked;
    EXPECT_TRUE(interface.Connect(&plain));
    EXPECT_TRUE(interface.Connect(&plain, "Device"));
    EXPECT_FALSE(interface.Connect(static_cast<IPortStacked*>(&stacked)));
    EXPECT_FALSE(interface.Connect(static_cast<IPortStacked*>(&stacked), "Device"));
}

} // namespace
