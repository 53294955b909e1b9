// Node maps as an application meets them: made, shared, locked, observed and destroyed only through the interface.
#include "tests/unit/genicam/small_map.h"

#include <GenApi/ConcatenatedWrite.h>
#include <atomic>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <stdio.h>
#include <string>
#include <thread>
#include <vector>

namespace
{

using namespace GENAPI_NAMESPACE;
using namespace GENICAM_NAMESPACE;
using koro::test::Described;
using koro::test::IntReg;
using koro::test::MemoryPort;
using koro::test::SmallMap;

const std::string lone = "<Integer Name=\"A\"><Value>1</Value></Integer>";

void Destroy(INodeMap* map)
{
    CastToIDestroy(map)->Destroy();
}

// Counts its calls and its end outside of itself.
struct Counts
{
    int calls = 0;
    int ends = 0;
};

class CountedCallback : public CNodeCallback
{
public:
    CountedCallback(INode* node, Counts& where, ECallbackType type = cbPostInsideLock)
        : CNodeCallback(node, type), counts(where)
    {}
    void operator()(ECallbackType type) const override { counts.calls += type == m_CallbackType; }
    void Destroy() override
    {
        ++counts.ends;
        delete this;
    }

private:
    Counts& counts;
};

TEST(Factory, ReadsAFileOnlyWhenTheMapIsMade)
{
    const std::string path = "description.xml";
    remove(path.c_str());
    CNodeMapFactory factory(ContentType_Xml, path.c_str(), CacheUsage_Automatic, false);
    EXPECT_FALSE(factory.IsEmpty());
    EXPECT_FALSE(factory.IsLoaded());
    EXPECT_THROW(factory.CreateNodeMap("Camera", true), RuntimeException);
    std::ofstream(path) << Described(lone);
    INodeMap* const map = factory.CreateNodeMap("Camera", true);
    EXPECT_TRUE(factory.IsLoaded());
    EXPECT_STREQ(map->GetDeviceName().c_str(), "Camera");
    EXPECT_STREQ(map->GetNode("A")->GetDeviceName().c_str(), "Camera");
    Destroy(map);
    remove(path.c_str());
}

TEST(Factory, ReadsMemoryWithoutATerminator)
{
    const std::string text = Described(lone);
    const std::vector<char> bytes(text.begin(), text.end());
    CNodeMapFactory factory(ContentType_Xml, bytes.data(), bytes.size(), CacheUsage_Automatic, false);
    INodeMap* const map = factory.CreateNodeMap("Device", true);
    EXPECT_NE(map->GetNode("A"), nullptr);
    Destroy(map);
}

TEST(Factory, CopiesTheTextThatItIsGiven)
{
    std::string text = Described(lone);
    CNodeMapFactory factory(gcstring(text.data(), text.size()));
    text.assign(text.size(), 'x');
    Destroy(factory.CreateNodeMap());
}

TEST(Factory, RefusesNothingAsADescription)
{
    EXPECT_THROW(CNodeMapFactory(ContentType_Xml, gcstring()), InvalidArgumentException);
    EXPECT_THROW(CNodeMapFactory(ContentType_Xml, nullptr, 4), InvalidArgumentException);
    EXPECT_THROW(CNodeMapFactory(ContentType_Xml, "data", 0), InvalidArgumentException);
    EXPECT_THROW(CNodeMapFactory(""), InvalidArgumentException);
    CNodeMapFactory empty;
    EXPECT_TRUE(empty.IsEmpty());
    EXPECT_THROW(empty.CreateNodeMap(), LogicalErrorException);
}

TEST(Factory, MakesMapsThatKnowNothingOfEachOther)
{
    CNodeMapFactory factory(Described(lone).c_str());
    const CNodeMapFactory copy(factory);
    INodeMap* const first = factory.CreateNodeMap();
    INodeMap* const second = factory.CreateNodeMap("Second");
    EXPECT_TRUE(copy.IsLoaded()) << "copies share their data";
    CIntegerPtr(first->GetNode("A"))->SetValue(5);
    EXPECT_EQ(CIntegerPtr(second->GetNode("A"))->GetValue(), 1);
    Destroy(first);
    EXPECT_EQ(CIntegerPtr(second->GetNode("A"))->GetValue(), 1);
    Destroy(second);
}

TEST(Factory, TellsTheSchemasThatItKnows)
{
    gcstring_vector versions;
    CNodeMapFactory().GetSupportedSchemaVersions(versions);
    ASSERT_EQ(versions.size(), 2u);
    EXPECT_STREQ(versions[0].c_str(), "1.0");
    EXPECT_STREQ(versions[1].c_str(), "1.1");
}

TEST(Factory, MakesAMapWithoutNodes)
{
    INodeMap* const map = CNodeMapFactory::CreateEmptyNodeMap();
    EXPECT_EQ(map->GetNumNodes(), 0u);
    EXPECT_STREQ(map->GetDeviceName().c_str(), "Device");
    MemoryPort port;
    EXPECT_FALSE(map->Connect(&port));
    map->InvalidateNodes();
    map->Poll(1);
    Destroy(map);
    EXPECT_TRUE(CNodeMapRef::_ClearXMLCache());
}

TEST(Factory, CountsWhatADescriptionHolds)
{
    CNodeMapFactory factory(Described("<Integer Name=\"A\"><ToolTip>t</ToolTip><pValue>B</pValue></Integer>"
                                      "<Integer Name=\"B\"><Value>1</Value></Integer>")
                                .c_str());
    CNodeMapFactory::NodeStatistics_t statistics;
    factory.GetNodeStatistics(statistics);
    EXPECT_EQ(statistics.NumNodes, 3u);
    EXPECT_EQ(statistics.NumProperties, 3u);
    EXPECT_EQ(statistics.NumLinks, 1u);
    EXPECT_EQ(statistics.NumStrings, 1u);
    EXPECT_TRUE(factory.IsLoaded());
}

TEST(Factory, MapUsesTheLockThatItIsGiven)
{
    CNodeMapFactory factory(Described(lone).c_str());
    CLock lock;
    INodeMap* const map = factory.CreateNodeMap(lock, "Device");
    EXPECT_EQ(&map->GetLock(), &lock);
    Destroy(map);
    EXPECT_TRUE(lock.TryLock()) << "the lock outlives the map";
    lock.Unlock();
}

// Parameters that look at the map at each attachment.
class Watched
{
public:
    virtual ~Watched() = default;
    static int initialised;
    static bool refuses;

protected:
    virtual void _Initialize(INodeMap*)
    {
        ++initialised;
        if (refuses) throw RUNTIME_EXCEPTION("refused");
    }
};
int Watched::initialised = 0;
bool Watched::refuses = false;

class DyingMap
{
public:
    DyingMap() : map(CNodeMapFactory(Described(lone).c_str()).CreateNodeMap("Mine"))
    {
        map->GetNode("A")->RegisterCallback(new CountedCallback(map->GetNode("A"), counts));
    }
    bool HasDied() const { return counts.ends == 1; }

    Counts counts;
    INodeMap* map;
};

TEST(NodeMapReference, LastOfThemEndsTheMap)
{
    DyingMap dying;
    {
        CNodeMapRef first(dying.map);
        {
            const CNodeMapRef second = first;
            CNodeMapRef third("Other");
            third = first;
            EXPECT_STREQ(third._GetDeviceName().c_str(), "Mine");
            first._Destroy();
            EXPECT_EQ(first._Ptr, nullptr);
            EXPECT_FALSE(dying.HasDied());
        }
        EXPECT_TRUE(dying.HasDied());
    }
}

TEST(NodeMapReference, AssignmentOfAMapGivesTheFormerUp)
{
    DyingMap former;
    DyingMap next;
    CNodeMapRef reference(former.map);
    reference = next.map;
    EXPECT_TRUE(former.HasDied());
    EXPECT_EQ(reference._Ptr, next.map);
    reference = reference._Ptr;
    EXPECT_FALSE(next.HasDied()) << "the same map stays";
    const CNodeMapRef& alias = reference;
    reference = alias;
    EXPECT_FALSE(next.HasDied());
    reference = static_cast<INodeMap*>(nullptr);
    EXPECT_TRUE(next.HasDied());
    EXPECT_EQ(reference._Ptr, nullptr);
}

TEST(NodeMapReference, TellsItsParametersOfEachAttachment)
{
    Watched::initialised = 0;
    DyingMap dying;
    CNodeMapRefT<Watched> first(dying.map);
    const CNodeMapRefT<Watched> second(first);
    EXPECT_EQ(Watched::initialised, 2);
    CNodeMapRefT<Watched> third;
    EXPECT_EQ(Watched::initialised, 2);
    third._LoadXMLFromString(Described(lone).c_str());
    EXPECT_EQ(Watched::initialised, 3);
}

TEST(NodeMapReference, RefusedAttachmentLeavesNothingBehind)
{
    DyingMap dying;
    Watched::refuses = true;
    EXPECT_THROW(CNodeMapRefT<Watched>(dying.map), RuntimeException);
    EXPECT_TRUE(dying.HasDied());
    CNodeMapRefT<Watched> reference;
    EXPECT_THROW(reference._LoadXMLFromString(Described(lone).c_str()), RuntimeException);
    EXPECT_EQ(reference._Ptr, nullptr);
    Watched::refuses = false;
    reference._LoadXMLFromString(Described(lone).c_str());
    EXPECT_NE(reference._Ptr, nullptr);
}

TEST(NodeMapReference, LoadsOnlyOnceWhateverTheSource)
{
    CNodeMapRef reference("Mine");
    EXPECT_THROW(reference._LoadXMLFromFile("missing.xml"), RuntimeException);
    EXPECT_THROW(reference._LoadXMLFromZIPFile("missing.zip"), RuntimeException);
    EXPECT_THROW(reference._LoadXMLFromZIPData("no zip", 6), RuntimeException);
    reference._LoadXMLFromString(Described(lone).c_str());
    EXPECT_STREQ(reference._GetDeviceName().c_str(), "Mine");
    const auto refusal = [&](auto load) {
        try
        {
            load();
        }
        catch (const RuntimeException& exception)
        {
            return std::string(exception.GetDescription());
        }
        return std::string("loaded");
    };
    const std::string again = "Node map already created";
    EXPECT_EQ(refusal([&] { reference._LoadXMLFromFile("missing.xml"); }), again);
    EXPECT_EQ(refusal([&] { reference._LoadXMLFromZIPFile("missing.zip"); }), again);
    EXPECT_EQ(refusal([&] { reference._LoadXMLFromZIPData("no zip", 6); }), again);
    EXPECT_EQ(refusal([&] { reference._LoadXMLFromString("no xml"); }), again);
}

TEST(NodeMapReference, WithoutAMapEachQuestionIsAnAccessError)
{
    CNodeMapRef reference;
    MemoryPort port;
    NodeList_t nodes;
    gcstring_vector texts;
    EXPECT_THROW(reference._GetDeviceName(), AccessException);
    EXPECT_THROW(reference._Poll(1), AccessException);
    EXPECT_THROW(reference._GetNodes(nodes), AccessException);
    EXPECT_THROW(reference._GetNode("A"), AccessException);
    EXPECT_THROW(reference._InvalidateNodes(), AccessException);
    EXPECT_THROW(reference._Connect(&port), AccessException);
    EXPECT_THROW(reference._Connect(&port, "Device"), AccessException);
    EXPECT_THROW(reference._ParseSwissKnifes(), AccessException);
    EXPECT_THROW(reference._SetSuppressCallbackMode(csmOff), AccessException);
    EXPECT_THROW(reference._NewNodeWriteConcatenator(), AccessException);
    EXPECT_THROW(reference._ConcatenatedWrite(nullptr), AccessException);
    EXPECT_THROW(reference._GetSupportedSchemaVersions(texts), AccessException);
    reference._Destroy();
}

TEST(NodeMapReference, ForwardsToItsMap)
{
    CNodeMapRef reference;
    reference._LoadXMLFromString(Described(IntReg("R", "0", "<PollingTime>5</PollingTime>")).c_str());
    MemoryPort port;
    EXPECT_TRUE(reference._Connect(&port));
    EXPECT_TRUE(reference._Connect(&port, "Device"));
    EXPECT_FALSE(reference._Connect(&port, "R")) << "no port";
    const CIntegerPtr number = reference._GetNode("R");
    number->GetValue();
    number->GetValue();
    EXPECT_EQ(port.reads, 1);
    reference._Poll(5);
    number->GetValue();
    EXPECT_EQ(port.reads, 2);
    reference._InvalidateNodes();
    number->GetValue();
    EXPECT_EQ(port.reads, 3);
    NodeList_t nodes;
    reference._GetNodes(nodes);
    EXPECT_EQ(nodes.size(), 2u);
    EXPECT_TRUE(reference._ParseSwissKnifes());
    CNodeWriteConcatenator* const writes = reference._NewNodeWriteConcatenator();
    writes->Add("R", int64_t(6));
    EXPECT_TRUE(reference._ConcatenatedWrite(writes));
    writes->Destroy();
    EXPECT_EQ(number->GetValue(), 6);
    gcstring_vector versions;
    reference._GetSupportedSchemaVersions(versions);
    EXPECT_TRUE(versions.contains("1.1"));
}

TEST(Connecting, ChangesTheAccessAtOnceAndTellsNobody)
{
    CNodeMapFactory factory(Described(IntReg("R", "0")).c_str());
    INodeMap* const map = factory.CreateNodeMap();
    Counts counts;
    map->GetNode("R")->RegisterCallback(new CountedCallback(map->GetNode("R"), counts));
    EXPECT_EQ(map->GetNode("R")->GetAccessMode(), NI);
    EXPECT_THROW(CIntegerPtr(map->GetNode("R"))->GetValue(), AccessException);
    MemoryPort port;
    EXPECT_TRUE(map->Connect(&port, "Device"));
    EXPECT_EQ(map->GetNode("R")->GetAccessMode(), RW);
    EXPECT_EQ(port.reads, 0);
    EXPECT_FALSE(map->Connect(&port, "device")) << "names are compared byte by byte";
    EXPECT_EQ(counts.calls, 0);
    Destroy(map);
}

TEST(Lock, IsRecursiveAndKeepsOthersOut)
{
    const SmallMap map(IntReg("R", "0"));
    CLock& lock = map.map->GetLock();
    const AutoLock held(lock);
    map.Integer("R")->SetValue(3); // the operations of the same thread nest
    std::atomic<bool> through{false};
    std::atomic<bool> tried{false};
    std::thread other([&] {
        EXPECT_FALSE(lock.TryLock());
        tried = true;
        lock.Lock();
        through = true;
        lock.Unlock();
    });
    while (!tried)
        std::this_thread::yield();
    EXPECT_FALSE(through);
    lock.Unlock();
    other.join();
    EXPECT_TRUE(through);
    lock.Lock();
}

TEST(Lock, IsGivenBackWhenAnOperationFails)
{
    SmallMap map(IntReg("R", "0"));
    map.port.onWrite = [] { throw RUNTIME_EXCEPTION("broken"); };
    EXPECT_THROW(map.Integer("R")->SetValue(3), RuntimeException);
    map.port.onRead = [] { throw 5; };
    EXPECT_THROW(map.Integer("R")->GetValue(false, true), int);
    Register(map.Node("R"), std::function<void(INode*)>([](INode*) { throw 6; }));
    map.port.onWrite = nullptr;
    EXPECT_THROW(map.Integer("R")->SetValue(3), int);
    EXPECT_THROW(map.map->InvalidateNodes(), int);
    bool free = false;
    std::thread([&] {
        free = map.map->GetLock().TryLock();
        if (free) map.map->GetLock().Unlock();
    }).join();
    EXPECT_TRUE(free);
}

TEST(Lock, LetsOneThreadAtATimeToThePort)
{
    SmallMap map(IntReg("R", "0", "<Cachable>NoCache</Cachable>") + IntReg("Q", "4", "<Cachable>NoCache</Cachable>"));
    std::atomic<int> inside{0};
    std::atomic<bool> met{false};
    const auto visit = [&] {
        if (++inside > 1) met = true;
        std::this_thread::yield();
        --inside;
    };
    map.port.onRead = visit;
    map.port.onWrite = visit;
    std::vector<std::thread> threads;
    for (const char* const name : {"R", "Q", "R"})
    {
        threads.emplace_back([&map, name] {
            const CIntegerPtr number = map.Integer(name);
            for (int i = 0; i < 200; ++i)
            {
                number->SetValue(i);
                number->GetValue();
                map.map->InvalidateNodes();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_FALSE(met);
    EXPECT_EQ(map.port.writes, 600);
}

TEST(CallbackKinds, MemberOfAClientIsCalledThroughItsCallOperator)
{
    struct Delegate
    {
        void operator()(INode* node) { names += std::string(node->GetName().c_str()) + ' '; }
        std::string names;
    } delegate;
    const SmallMap map(lone);
    typedef Member_NodeCallback<Delegate, void (Delegate::*)(INode*)> Callback;
    static_assert(std::is_same_v<Callback::PMEMBERFUNC, void (Delegate::*)(INode*)>);
    const CallbackHandleType handle =
        map.Node("A")->RegisterCallback(new Callback(map.Node("A"), delegate, &Delegate::operator(), cbPostInsideLock));
    map.Integer("A")->SetValue(2);
    EXPECT_EQ(delegate.names, "A ");
    Deregister(handle);
    map.Integer("A")->SetValue(3);
    EXPECT_EQ(delegate.names, "A ");
}

int calledPlain = 0;
void CallPlain(INode*)
{
    ++calledPlain;
}

TEST(CallbackKinds, FunctionsAreCalledUnlessTheyAreNull)
{
    const SmallMap map(lone);
    INode* const node = map.Node("A");
    calledPlain = 0;
    Register(node, &CallPlain);
    Register(node, static_cast<void (*)(INode*)>(nullptr));
    Register(node, std::function<void(INode*)>());
    CNodeCallback* const made = make_NodeCallback(node, &CallPlain, cbPostOutsideLock);
    EXPECT_EQ(made->GetNode(), node);
    node->RegisterCallback(made);
    map.Integer("A")->SetValue(2);
    EXPECT_EQ(calledPlain, 2);
}

TEST(CallbackKinds, InvalidationAndPollingCallBothKinds)
{
    const SmallMap map(IntReg("R", "0", "<PollingTime>10</PollingTime>"));
    INode* const node = map.Node("R");
    Counts inside;
    Counts outside;
    node->RegisterCallback(new CountedCallback(node, inside, cbPostInsideLock));
    node->RegisterCallback(new CountedCallback(node, outside, cbPostOutsideLock));
    node->InvalidateNode();
    map.map->InvalidateNodes();
    map.map->Poll(10);
    map.Value("R")->FromString("7");
    const uint8_t bytes[4] = {};
    CRegisterPtr(node)->Set(bytes, 4);
    EXPECT_EQ(inside.calls, 5);
    EXPECT_EQ(outside.calls, 5);
}

TEST(CallbackKinds, RegisteredOnesEndWithTheirRegistrationOrTheirMap)
{
    Counts first;
    Counts second;
    {
        const SmallMap map(lone + "<Integer Name=\"B\"><Value>1</Value></Integer>");
        INode* const node = map.Node("A");
        const CallbackHandleType handle = node->RegisterCallback(new CountedCallback(node, first));
        node->RegisterCallback(new CountedCallback(node, second));
        EXPECT_FALSE(map.Node("B")->DeregisterCallback(handle)) << "of another node";
        EXPECT_FALSE(node->DeregisterCallback(0));
        EXPECT_EQ(first.ends, 0);
        EXPECT_TRUE(node->DeregisterCallback(handle));
        EXPECT_EQ(first.ends, 1);
        EXPECT_FALSE(node->DeregisterCallback(handle));
        EXPECT_EQ(second.ends, 0);
        EXPECT_THROW(node->RegisterCallback(nullptr), InvalidArgumentException);
    }
    EXPECT_EQ(first.ends, 1);
    EXPECT_EQ(second.ends, 1);
}

TEST(CallbackKinds, HandlesWithoutANodeAreRefused)
{
    const SmallMap map(lone);
    Counts counts;
    const CallbackHandleType handle = map.Node("A")->RegisterCallback(new CountedCallback(nullptr, counts));
    EXPECT_THROW(Deregister(0), InvalidArgumentException);
    EXPECT_THROW(Deregister(handle), InvalidArgumentException);
    EXPECT_TRUE(map.Node("A")->DeregisterCallback(handle));
    EXPECT_EQ(counts.ends, 1);
}

TEST(CallbackKinds, OneThatDeregistersAnotherKeepsItFromBeingCalled)
{
    const SmallMap map(lone);
    INode* const node = map.Node("A");
    CallbackHandleType handles[2] = {};
    int calls = 0;
    for (int i = 0; i < 2; ++i)
    {
        handles[i] = Register(node, std::function<void(INode*)>([&, i](INode*) {
                                  ++calls;
                                  node->DeregisterCallback(handles[1 - i]);
                              }));
    }
    map.Integer("A")->SetValue(2);
    EXPECT_EQ(calls, 1);
    map.Integer("A")->SetValue(3);
    EXPECT_EQ(calls, 2);
}

TEST(CallbackKinds, CommandTellsOnceThatItIsDone)
{
    SmallMap map(
        IntReg("R", "0", "<Cachable>NoCache</Cachable>") +
        "<Command Name=\"C\"><pValue>R</pValue><CommandValue>1</CommandValue></Command>");
    const CCommandPtr command = map.Node("C");
    Counts counts;
    map.Node("C")->RegisterCallback(new CountedCallback(map.Node("C"), counts));
    EXPECT_TRUE(command->IsDone(true));
    EXPECT_EQ(map.port.reads, 0) << "nothing was executed";
    command->Execute(true);
    EXPECT_EQ(counts.calls, 1);
    EXPECT_FALSE(command->IsDone(true));
    EXPECT_EQ(counts.calls, 1);
    map.port.bytes[0] = 0;
    EXPECT_TRUE(command->IsDone(true));
    EXPECT_EQ(counts.calls, 2);
    const int reads = map.port.reads;
    EXPECT_TRUE(command->IsDone(true));
    EXPECT_EQ(map.port.reads, reads);
    EXPECT_EQ(counts.calls, 2);
}

TEST(Reading, VerifiedRegistersAskThePortOnlyWithoutBytes)
{
    SmallMap map("<Register Name=\"Bytes\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                 "<pPort>Device</pPort><Cachable>WriteThrough</Cachable></Register>");
    map.port.bytes[1] = 9;
    const CRegisterPtr bytes = map.Node("Bytes");
    uint8_t read[5] = {};
    bytes->Get(read, 4, false, false);
    EXPECT_EQ(read[1], 9);
    bytes->Get(read, 4, true, false);
    EXPECT_EQ(map.port.reads, 1) << "verifying is no reason to read";
    bytes->Get(read, 4, false, true);
    EXPECT_EQ(map.port.reads, 2);
    EXPECT_EQ(bytes->GetLength(), 4);
    EXPECT_EQ(bytes->GetAddress(), 0);
    EXPECT_THROW(bytes->Get(read, 5), OutOfRangeException);
    EXPECT_THROW(bytes->Set(read, 5), OutOfRangeException);
    EXPECT_THROW(bytes->Get(nullptr, 0), LogicalErrorException);
    EXPECT_THROW(bytes->Set(nullptr, 0), LogicalErrorException);
}

TEST(Reading, IgnoringTheCacheAlwaysAsksThePort)
{
    SmallMap map(
        IntReg("R", "0") +
        "<Integer Name=\"A\"><pValue>R</pValue></Integer>"
        "<Boolean Name=\"B\"><pValue>R</pValue></Boolean><Float Name=\"F\"><pValue>R</pValue></Float>"
        "<Enumeration Name=\"E\"><EnumEntry Name=\"Zero\"><Value>0</Value></EnumEntry>"
        "<pValue>R</pValue></Enumeration>"
        "<StringReg Name=\"S\"><Address>8</Address><Length>4</Length><AccessMode>RW</AccessMode>"
        "<pPort>Device</pPort></StringReg>");
    const auto readsOf = [&map](const std::function<void()>& read) {
        const int before = map.port.reads;
        read();
        return map.port.reads - before;
    };
    const CIntegerPtr a = map.Node("A");
    const CBooleanPtr b = map.Node("B");
    const CFloatPtr f = map.Node("F");
    const CEnumerationPtr e = map.Node("E");
    const CStringPtr s = map.Node("S");
    a->GetValue();
    b->GetValue();
    f->GetValue();
    e->GetCurrentEntry();
    s->GetValue();
    EXPECT_EQ(readsOf([&] { a->GetValue(), b->GetValue(), f->GetValue(), e->GetCurrentEntry(), s->GetValue(); }), 0);
    EXPECT_EQ(readsOf([&] { a->GetValue(false, true); }), 1);
    EXPECT_EQ(readsOf([&] { b->GetValue(false, true); }), 1);
    EXPECT_EQ(readsOf([&] { f->GetValue(false, true); }), 1);
    EXPECT_EQ(readsOf([&] { e->GetCurrentEntry(false, true); }), 1);
    EXPECT_EQ(readsOf([&] { s->GetValue(false, true); }), 1);
}

TEST(Exceptions, ArriveAsTheClassesThatAreTranslated)
{
    SmallMap map(
        "<Integer Name=\"A\"><Value>1</Value><Max>5</Max></Integer>"
        "<Integer Name=\"Locked\"><ImposedAccessMode>RO</ImposedAccessMode><Value>1</Value></Integer>"
        "<Enumeration Name=\"E\"><EnumEntry Name=\"One\"><Value>1</Value></EnumEntry><Value>1</Value>"
        "</Enumeration>" +
        IntReg("R", "0"));
    EXPECT_THROW(map.Integer("A")->SetValue(6), OutOfRangeException);
    EXPECT_THROW(map.Integer("Locked")->SetValue(2), AccessException);
    EXPECT_THROW(map.Enumeration("E")->SetIntValue(2), InvalidArgumentException);
    map.port.onRead = [] { throw TIMEOUT_EXCEPTION("late"); };
    EXPECT_THROW(map.Integer("R")->GetValue(), TimeoutException);
    map.port.onRead = [] { throw std::bad_alloc(); };
    EXPECT_THROW(map.Integer("R")->GetValue(), std::bad_alloc);
}

TEST(Lists, NameWhatBelongsTogether)
{
    const SmallMap map("<Category Name=\"Root\"><pFeature>A</pFeature><pFeature>A</pFeature></Category>" + lone);
    FeatureList_t features;
    CCategoryPtr(map.Node("Root"))->GetFeatures(features);
    ASSERT_EQ(features.size(), 2u) << "duplicates are kept";
    EXPECT_EQ(features[1]->GetNode(), map.Node("A"));
    NodeList_t children;
    map.Node("A")->GetChildren(children, ctDependingNodes);
    EXPECT_EQ(children.size(), 1u);
    FeatureList_t selected;
    const CSelectorPtr selector = map.Node("A");
    EXPECT_FALSE(selector->IsSelector());
    selector->GetSelectedFeatures(selected);
    selector->GetSelectingFeatures(selected);
    EXPECT_TRUE(selected.empty());
}

} // namespace
