#include "tests/unit/genicam/listener.h"
#include "tests/unit/genicam/small_map.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace
{

using namespace GENICAM_NAMESPACE;
using namespace GENAPI_NAMESPACE;
using koro::test::IntReg;
using koro::test::Listener;
using koro::test::ListenToAll;
using koro::test::SmallMap;

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

TEST(Callbacks, EveryKindOfWriteTellsTheSame)
{
    const SmallMap map(
        chain + "<Command Name=\"Do\"><pValue>R</pValue><CommandValue>1</CommandValue></Command>"
                "<IntConverter Name=\"C\"><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom><pValue>A</pValue>"
                "<Slope>Increasing</Slope></IntConverter>");
    Listener listener;
    ListenToAll(map, listener);
    const std::string all = "A B C Do Other R Root";
    map.Value("A")->FromString("3");
    EXPECT_EQ(listener.Take(), all);
    map.Integer("C")->SetValue(4);
    EXPECT_EQ(listener.Take(), all);
    const uint8_t bytes[4] = {};
    CRegisterPtr(map.Node("R"))->Set(bytes, sizeof bytes);
    EXPECT_EQ(listener.Take(), all);
    CCommandPtr(map.Node("Do"))->Execute();
    EXPECT_EQ(listener.Take(), all);
}

TEST(Callbacks, AllOfOneNodeAreCalledAndNoneByItsRegistration)
{
    const SmallMap map(chain);
    int first = 0;
    int second = 0;
    Register(map.Node("Lone"), std::function<void(INode*)>([&](INode*) { ++first; }));
    const CallbackHandleType handle =
        Register(map.Node("Lone"), std::function<void(INode*)>([&](INode*) { ++second; }));
    EXPECT_EQ(first + second, 0);
    map.Integer("Lone")->SetValue(1);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(second, 1);
    EXPECT_TRUE(map.Node("Lone")->DeregisterCallback(handle));
    map.Integer("Lone")->SetValue(1);
    EXPECT_EQ(first, 2);
    EXPECT_EQ(second, 1);
}

// Counts its destructions.
class Counted : public CNodeCallback
{
public:
    Counted(INode* node, int& counter) : CNodeCallback(node, cbPostInsideLock), destroyed(counter) {}
    void operator()(ECallbackType) const override {}
    void Destroy() override
    {
        ++destroyed;
        delete this;
    }

private:
    int& destroyed;
};

TEST(Callbacks, BelongToTheirNode)
{
    int destroyed = 0;
    {
        const SmallMap map(chain);
        INode* const node = map.Node("A");
        Counted* const callback = new Counted(node, destroyed);
        const CallbackHandleType handle = node->RegisterCallback(callback);
        EXPECT_EQ(node->RegisterCallback(callback), handle) << "once is enough";
        EXPECT_FALSE(map.Node("B")->DeregisterCallback(handle)) << "not of this node";
        EXPECT_EQ(destroyed, 0);
        EXPECT_TRUE(node->DeregisterCallback(handle));
        EXPECT_EQ(destroyed, 1);
        EXPECT_FALSE(node->DeregisterCallback(handle));
        EXPECT_THROW(node->RegisterCallback(nullptr), InvalidArgumentException);
        node->RegisterCallback(new Counted(node, destroyed));
    }
    EXPECT_EQ(destroyed, 2) << "the end of the map ends what is left";
}

TEST(Callbacks, OneThatIsDeregisteredByAnotherIsNotCalledAnyMore)
{
    const SmallMap map(chain);
    std::vector<CallbackHandleType> handles(2);
    int calls = 0;
    for (size_t i = 0; i < handles.size(); ++i)
    {
        handles[i] = Register(map.Node("Lone"), std::function<void(INode*)>([&map, &handles, &calls, i](INode* node) {
                                  ++calls;
                                  node->DeregisterCallback(handles[1 - i]);
                              }));
    }
    map.Integer("Lone")->SetValue(1);
    EXPECT_EQ(calls, 1);
}

TEST(Callbacks, WriteThatAPortMakesInsideOfAnotherAddsToThatOne)
{
    SmallMap map(chain);
    Listener listener;
    ListenToAll(map, listener);
    std::string meanwhile = "not asked";
    map.port.onWrite = [&] {
        map.Integer("Lone")->SetValue(2);
        meanwhile = listener.Take();
    };
    map.Integer("A")->SetValue(5);
    EXPECT_EQ(meanwhile, "") << "the outer write is not done yet";
    EXPECT_EQ(listener.Take(), "A B Lone Other R Root");
}

TEST(Callbacks, MayBeSuppressed)
{
    const SmallMap map(chain);
    Listener listener;
    ListenToAll(map, listener);
    map.map->SetSuppressCallbackMode(csmActive);
    map.Integer("Lone")->SetValue(2);
    map.Integer("Lone")->SetValue(2);
    EXPECT_EQ(listener.Take(), "");
    map.map->SetSuppressCallbackMode(csmOnce);
    map.Integer("Lone")->SetValue(2);
    EXPECT_EQ(listener.Take(), "") << "the next operation is silent";
    map.Integer("Lone")->SetValue(2);
    EXPECT_EQ(listener.Take(), "Lone") << "and the one behind it is not";
}

TEST(Selectors, SelectedNodesDependOnTheirSelector)
{
    const SmallMap map("<Integer Name=\"S\"><Value>0</Value><pSelected>F</pSelected></Integer>"
                       "<Integer Name=\"F\"><Value>0</Value></Integer>");
    Listener listener;
    ListenToAll(map, listener);
    map.Integer("S")->SetValue(1);
    EXPECT_EQ(listener.Take(), "F S");
}

} // namespace
