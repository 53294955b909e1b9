#include "base/exceptions.h"
#include "nodes/node.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/nodes/open_port.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace koro::test
{

using namespace internal;

namespace
{

const std::string circle = "<Integer Name=\"A\"><pInvalidator>B</pInvalidator><Value>1</Value></Integer>"
                           "<Integer Name=\"B\"><pInvalidator>A</pInvalidator><Value>1</Value></Integer>";

class NodeOfMap : public OpenPort
{
protected:
    std::shared_ptr<NodeMap> map = MapOf(circle);
    std::shared_ptr<Node> node = map->FindNode("A");
};

} // namespace

TEST_F(NodeOfMap, NodeWhoseMapHasGoneSaysSoWhateverItIsAsked)
{
    const auto handle = node->RegisterChangedCallback([](const auto&) {});
    map.reset();
    const std::vector<std::pair<const char*, std::function<void()>>> operations = {
        {"Name", [&] { node->Name(); }},
        {"DisplayName", [&] { node->DisplayName(); }},
        {"ToolTip", [&] { node->ToolTip(); }},
        {"Description", [&] { node->Description(); }},
        {"Namespace", [&] { node->Namespace(); }},
        {"Visibility", [&] { node->Visibility(); }},
        {"AccessStatus", [&] { node->AccessStatus(); }},
        {"CachingMode", [&] { node->CachingMode(); }},
        {"IsCacheable", [&] { node->IsCacheable(); }},
        {"IsAccessStatusCacheable", [&] { node->IsAccessStatusCacheable(); }},
        {"PollingTime", [&] { node->PollingTime(); }},
        {"Type", [&] { node->Type(); }},
        {"IsFeature", [&] { node->IsFeature(); }},
        {"IsDeprecated", [&] { node->IsDeprecated(); }},
        {"IsStreamable", [&] { node->IsStreamable(); }},
        {"ParentNodeMap", [&] { node->ParentNodeMap(); }},
        {"InvalidatedNodes", [&] { node->InvalidatedNodes(); }},
        {"FindInvalidatedNode", [&] { node->FindInvalidatedNode("B"); }},
        {"InvalidatingNodes", [&] { node->InvalidatingNodes(); }},
        {"FindInvalidatingNode", [&] { node->FindInvalidatingNode("B"); }},
        {"SelectedNodes", [&] { node->SelectedNodes(); }},
        {"FindSelectedNode", [&] { node->FindSelectedNode("B"); }},
        {"SelectingNodes", [&] { node->SelectingNodes(); }},
        {"FindSelectingNode", [&] { node->FindSelectingNode("B"); }},
        {"RegisterChangedCallback", [&] { node->RegisterChangedCallback([](const auto&) {}); }},
        {"UnregisterChangedCallback", [&] { node->UnregisterChangedCallback(handle); }},
        {"UnregisterChangedCallback of nothing", [&] { node->UnregisterChangedCallback(nullptr); }},
    };
    for (const auto& [name, operation] : operations)
    {
        SCOPED_TRACE(name);
        EXPECT_THAT(operation, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
    }
}

TEST_F(NodeOfMap, NodeThatIsHeldSurvivesItsMapAndEndsWithItsLastHolder)
{
    const std::weak_ptr<Node> watched = node;
    const std::weak_ptr<Node> unheld = map->FindNode("B");
    map.reset();
    EXPECT_FALSE(watched.expired());
    EXPECT_TRUE(unheld.expired());
    node.reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(NodeOfMap, EndOfTheMapLetsTheCallbacksGo)
{
    const auto token = std::make_shared<int>(0);
    node->RegisterChangedCallback([token](const auto&) {});
    map->FindNode("B")->RegisterChangedCallback([token](const auto&) {});
    const std::weak_ptr<Node> watched = node;
    node.reset();
    EXPECT_EQ(token.use_count(), 3);
    map.reset();
    EXPECT_EQ(token.use_count(), 1);
    EXPECT_TRUE(watched.expired());
}

TEST_F(NodeOfMap, UnregisteringLetsTheCallbackGo)
{
    const auto token = std::make_shared<int>(0);
    const auto handle = node->RegisterChangedCallback([token](const auto&) {});
    node->UnregisterChangedCallback(handle);
    EXPECT_EQ(token.use_count(), 1);
}

TEST_F(NodeOfMap, CallbackThatUnregistersItselfRunsToItsEnd)
{
    const auto token = std::make_shared<int>(0);
    Node::ChangedCallbackHandle handle = nullptr;
    std::string name;
    handle = node->RegisterChangedCallback([&handle, &name, token](const std::shared_ptr<Node>& changed) {
        const auto held = token; // from the callable itself, which must still be there
        changed->UnregisterChangedCallback(handle);
        name = changed->Name() + std::to_string(token.use_count());
    });
    map->InvalidateNodes();
    EXPECT_EQ(name, "A3");
    EXPECT_EQ(token.use_count(), 1);
}

TEST_F(NodeOfMap, EmptyCallbackIsNotCalled)
{
    const auto handle = node->RegisterChangedCallback({});
    EXPECT_NE(handle, nullptr);
    EXPECT_NO_THROW(map->InvalidateNodes());
    node->UnregisterChangedCallback(handle);
}

TEST_F(NodeOfMap, CallbackGetsTheNodeItself)
{
    std::shared_ptr<Node> told;
    node->RegisterChangedCallback([&](const auto& changed) { told = changed; });
    map->InvalidateNodes();
    EXPECT_EQ(told, node);
}

TEST_F(NodeOfMap, NodeThatNobodySharesTakesNoCallback)
{
    Node alone(map->GenApiNodeMap()->GetNode("A"), map);
    EXPECT_THROW(alone.RegisterChangedCallback([](const auto&) {}), std::bad_weak_ptr);
    EXPECT_NO_THROW(map->InvalidateNodes());
}

TEST_F(NodeOfMap, NodesInACircleKeepNothingAlive)
{
    EXPECT_EQ(node->InvalidatingNodes().size(), 1u);
    EXPECT_EQ(map->FindNode("B")->InvalidatingNodes().front(), node);
    EXPECT_EQ(node->FindInvalidatedNode("B"), map->FindNode("B"));
    const std::weak_ptr<Node> watched = node;
    node.reset();
    map.reset();
    EXPECT_TRUE(watched.expired());
}

} // namespace koro::test
