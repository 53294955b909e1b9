// One node map used by many threads at once: the runtime's lock, its callbacks inside and outside of it, and what
// several maps share.
#include "tests/threads/threads.h"
#include "tests/unit/genicam/small_map.h"

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <string>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::Described;
using koro::test::IntReg;
using koro::test::MemoryPort;
using koro::test::SmallMap;
using koro::test::Threads;

const int rounds = 1000;

// One of each kind that keeps something between two calls.
const std::string camera =
    "<Category Name=\"Root\"><pFeature>Value</pFeature><pFeature>Format</pFeature></Category>" + IntReg("Reg", "0") +
    IntReg("Overlap", "2") + IntReg("Polled", "16", "<PollingTime>10</PollingTime><Cachable>NoCache</Cachable>") +
    IntReg("Follower", "20", "<pInvalidator>Reg</pInvalidator>") +
    IntReg("Selected", "64</Address><pIndex Offset=\"8\">Format</pIndex><Address>0") +
    "<Integer Name=\"Value\"><pIsLocked>Lock</pIsLocked><pValue>Reg</pValue><Max>100000</Max></Integer>"
    "<Integer Name=\"Lock\"><Value>0</Value></Integer>"
    "<Converter Name=\"Scaled\"><FormulaTo>FROM*10</FormulaTo><FormulaFrom>TO/10</FormulaFrom><pValue>Value</pValue>"
    "<Slope>Automatic</Slope></Converter>"
    "<Enumeration Name=\"Format\"><EnumEntry Name=\"A\"><Value>0</Value></EnumEntry><EnumEntry Name=\"B\"><Value>1"
    "</Value></EnumEntry><Value>0</Value><pSelected>Selected</pSelected></Enumeration>"
    "<Command Name=\"Start\"><pValue>Reg</pValue><CommandValue>7</CommandValue></Command>"
    "<StringReg Name=\"Text\"><Address>128</Address><Length>16</Length><AccessMode>RW</AccessMode><pPort>Device</pPort>"
    "</StringReg>";

// What an application does with one map, each on threads of its own. The port and its plain memory are guarded by
// nothing but the map's lock.
struct User
{
    const SmallMap& map;

    void Write(std::size_t number) const
    {
        for (int round = 0; round < rounds; ++round)
        {
            map.Integer("Value")->SetValue(static_cast<int64_t>(number) * rounds + round);
            map.Float("Scaled")->SetValue(round);
            map.Value("Format")->FromString(round % 2 ? "A" : "B");
            map.Integer("Selected")->SetValue(round);
            CCommandPtr(map.Node("Start"))->Execute();
            map.Value("Text")->FromString(std::to_string(round).c_str());
        }
    }
    void Read() const
    {
        for (int round = 0; round < rounds; ++round)
        {
            for (const char* const name : {"Scaled", "Overlap", "Follower", "Selected", "Format", "Text", "Start"})
                map.Value(name)->ToString();
            map.Float("Scaled")->GetMax();
            CCommandPtr(map.Node("Start"))->IsDone();
            map.Node("Value")->GetAccessMode();
            map.Node("Root")->GetVisibility();
            for (const ELinkType type : {ctDependingNodes, ctTerminalNodes, ctInvalidatingChildren})
            {
                NodeList_t nodes;
                map.Node("Reg")->GetChildren(nodes, type);
            }
        }
    }
    void Invalidate() const
    {
        for (int round = 0; round < rounds; ++round)
        {
            map.map->Poll(5);
            map.Node("Reg")->InvalidateNode();
            if (round % 8 == 0) map.map->InvalidateNodes();
            map.Integer("Value")->ImposeMax(1000000 + round);
            map.Node("Text")->ImposeVisibility(Guru);
            EXPECT_TRUE(map.map->Connect(const_cast<MemoryPort*>(&map.port)));
        }
    }
    void Hold() const
    {
        const CIntegerPtr value = map.Integer("Value");
        for (int round = 0; round < rounds; ++round)
        {
            const AutoLock held(map.map->GetLock());
            value->SetValue(round);
            EXPECT_EQ(value->GetValue(false, true), round) << "nobody writes while the lock is held";
        }
    }
};

TEST(SharedNodeMap, IsReadWrittenPolledAndListenedToByManyThreads)
{
    const SmallMap map(camera);
    const User user{map};
    std::atomic<int> calls{0};
    Threads threads;
    threads.Add(2, [&](std::size_t number) { user.Write(number); });
    threads.Add(2, [&](std::size_t) { user.Read(); });
    threads.Add(1, [&](std::size_t) { user.Invalidate(); });
    threads.Add(1, [&](std::size_t) { user.Hold(); });
    threads.Add(2, [&](std::size_t number) {
        const ECallbackType type = number ? cbPostInsideLock : cbPostOutsideLock;
        for (int round = 0; round < rounds; ++round)
        {
            const CallbackHandleType handle = Register(
                map.Node(round % 2 ? "Value" : "Root"), std::function<void(INode*)>([&](INode* node) {
                    node->GetAccessMode();
                    map.Integer("Overlap")->GetValue();
                    ++calls;
                }),
                type);
            map.Integer("Value")->SetValue(round);
            Deregister(handle);
        }
    });
    threads.Join();
    EXPECT_GE(calls, rounds) << "each registration saw at least its own write";
}

TEST(SharedNodeMap, InsideCallbackIsOverWhenItsDeregistrationReturns)
{
    const SmallMap map(camera);
    std::atomic<bool> done{false};
    Threads threads;
    threads.Add(2, [&](std::size_t) {
        for (int64_t value = 0; !done; ++value)
            map.Integer("Value")->SetValue(value % 1000);
    });
    threads.Add(1, [&](std::size_t) {
        for (int round = 0; round < rounds; ++round)
        {
            bool registered = true; // read by the callback under the map's lock only
            const CallbackHandleType handle =
                Register(map.Node("Value"), std::function<void(INode*)>([&](INode*) { EXPECT_TRUE(registered); }));
            Deregister(handle);
            registered = false;
        }
        done = true;
    });
    threads.Join();
}

TEST(SharedNodeMap, OutsideCallbackRunsWithoutTheLock)
{
    const SmallMap map(camera);
    std::mutex ofTheApplication;
    // The application's lock is taken before the map's; a callback that came with the map's lock held would turn the
    // order round.
    const CallbackHandleType handle = Register(
        map.Node("Value"), std::function<void(INode*)>([&](INode* node) {
            const std::lock_guard lock(ofTheApplication);
            CIntegerPtr(node)->GetValue();
        }),
        cbPostOutsideLock);
    Threads threads;
    threads.Add(2, [&](std::size_t) {
        for (int round = 0; round < rounds; ++round)
        {
            {
                const std::lock_guard lock(ofTheApplication);
                map.Integer("Value")->GetValue();
            }
            map.Integer("Value")->SetValue(round);
        }
    });
    threads.Join();
    Deregister(handle);
}

// Reports when it is destroyed; must not be running then.
class Tracked : public CNodeCallback
{
public:
    Tracked(INode* node, ECallbackType type, std::atomic<int>& counter) : CNodeCallback(node, type), destroyed(counter)
    {}
    void operator()(ECallbackType type) const override
    {
        if (type != m_CallbackType) return;
        ++running;
        m_pNode->GetAccessMode();
        --running;
    }
    void Destroy() override
    {
        EXPECT_EQ(running, 0);
        ++destroyed;
        delete this;
    }

private:
    mutable std::atomic<int> running{0};
    std::atomic<int>& destroyed;
};

TEST(SharedNodeMap, CallbacksAreDestroyedOnceAndNotWhileTheyRun)
{
    std::atomic<int> destroyed{0};
    const int registrars = 2;
    {
        const SmallMap map(camera);
        std::atomic<int> busy{registrars};
        Threads threads;
        threads.Add(2, [&](std::size_t) {
            for (int64_t value = 0; busy > 0; ++value)
                map.Integer("Value")->SetValue(value % 1000);
        });
        threads.Add(registrars, [&](std::size_t number) {
            const ECallbackType type = number ? cbPostInsideLock : cbPostOutsideLock;
            for (int round = 0; round < rounds; ++round)
            {
                INode* const node = map.Node("Value");
                const CallbackHandleType handle = node->RegisterCallback(new Tracked(node, type, destroyed));
                EXPECT_TRUE(node->DeregisterCallback(handle));
            }
            --busy;
        });
        threads.Join();
        EXPECT_EQ(destroyed, registrars * rounds) << "nothing waits for the end of the map";
        map.Node("Value")->RegisterCallback(new Tracked(map.Node("Value"), cbPostInsideLock, destroyed));
    }
    EXPECT_EQ(destroyed, registrars * rounds + 1);
}

TEST(SharedNodeMap, CallbacksOfBothTypesMayChangeTheRegistrations)
{
    const SmallMap map(camera);
    Threads threads;
    for (const ECallbackType type : {cbPostInsideLock, cbPostOutsideLock})
    {
        threads.Add(2, [&map, type](std::size_t) {
            for (int round = 0; round < rounds; ++round)
            {
                const auto handle = std::make_shared<std::atomic<CallbackHandleType>>(0);
                CNodeCallback* const callback = make_NodeCallback(
                    map.Node("Value"), std::function<void(INode*)>([handle](INode* node) {
                        const CallbackHandleType own = handle->exchange(0);
                        if (own != 0) node->DeregisterCallback(own);
                    }),
                    type);
                *handle = reinterpret_cast<CallbackHandleType>(callback);
                map.Node("Value")->RegisterCallback(callback);
                map.Integer("Value")->SetValue(round);
                EXPECT_EQ(*handle, 0) << "it was called and has taken itself away";
            }
        });
    }
    threads.Join();
}

TEST(MapsOfOneFactory, ShareTheirRecordsAndNothingThatChanges)
{
    const std::string xml = Described(camera);
    CNodeMapFactory factory(ContentType_Xml, xml.data(), xml.size());
    factory.Preprocess();
    Threads threads;
    threads.Add(4, [&](std::size_t number) {
        for (int round = 0; round < rounds / 10; ++round)
        {
            MemoryPort port;
            CNodeMapFactory copy(factory);
            INodeMap* const map = copy.CreateNodeMap();
            map->Connect(&port);
            CFloatPtr(map->GetNode("Scaled"))->SetValue(static_cast<double>(number));
            EXPECT_EQ(CIntegerPtr(map->GetNode("Reg"))->GetValue(), static_cast<int64_t>(10 * number));
            CastToIDestroy(map)->Destroy();
        }
    });
    threads.Join();
}

TEST(MapsUnderOneLock, WaitForEachOther)
{
    const std::string xml = Described(camera);
    CNodeMapFactory factory(ContentType_Xml, xml.data(), xml.size());
    CLock lock;
    MemoryPort port; // shared, and guarded by the common lock alone
    INodeMap* const maps[] = {factory.CreateNodeMap(lock), factory.CreateNodeMap(lock)};
    Threads threads;
    for (INodeMap* const map : maps)
        map->Connect(&port);
    threads.Add(2, [&](std::size_t number) {
        const CIntegerPtr value = maps[number]->GetNode("Value");
        for (int round = 0; round < rounds; ++round)
        {
            const AutoLock held(lock);
            value->SetValue(round);
            EXPECT_EQ(value->GetValue(false, true), round);
        }
    });
    threads.Join();
    for (INodeMap* const map : maps)
        CastToIDestroy(map)->Destroy();
}

} // namespace
