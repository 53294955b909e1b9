// The lists of a node: the nodes that it invalidates and selects, and the nodes that invalidate and select it.

#include "base/exceptions.h"
#include "nodes/node.h"
#include "nodes/text.h"

#include <GenApi/Container.h>
#include <GenApi/ISelector.h>

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

namespace
{

void AddNode(LinkedNodes& list, NodeMap& nodeMap, const INode& genApiNode)
{
    const std::string name = ToText(genApiNode.GetName(false));
    list.Add(name, nodeMap.FindNode(name));
}

LinkedNodes Children(const INode& genApiNode, ELinkType link, NodeMap& nodeMap)
{
    node_vector children;
    genApiNode.GetChildren(children, link);

    LinkedNodes list;
    list.Reserve(children.size());
    for (const INode* const child : children)
        AddNode(list, nodeMap, *child);
    return list;
}

// Empty for a node that is not a selector, including the list of nodes that select it.
LinkedNodes Features(INode* genApiNode, void (ISelector::*get)(FeatureList_t&) const, NodeMap& nodeMap)
{
    const auto* const selector = dynamic_cast<const ISelector*>(genApiNode);
    if (!selector || !selector->IsSelector()) return {};
    value_vector features;
    (selector->*get)(features);
    return LinkedFeatures(features, nodeMap);
}

} // namespace

LinkedNodes LinkedFeatures(const value_vector& features, NodeMap& nodeMap)
{
    LinkedNodes list;
    list.Reserve(features.size());
    for (IValue* const feature : features)
        AddNode(list, nodeMap, *feature->GetNode());
    return list;
}

enum class Node::Link
{
    Invalidated,
    Invalidating,
    Selected,
    Selecting
};

NodeList Node::InvalidatedNodes()
{
    return AllLinked(Link::Invalidated);
}

std::shared_ptr<Node> Node::FindInvalidatedNode(const std::string& name)
{
    return FindLinked(Link::Invalidated, "invalidated", name);
}

NodeList Node::InvalidatingNodes()
{
    return AllLinked(Link::Invalidating);
}

std::shared_ptr<Node> Node::FindInvalidatingNode(const std::string& name)
{
    return FindLinked(Link::Invalidating, "invalidating", name);
}

NodeList Node::SelectedNodes()
{
    return AllLinked(Link::Selected);
}

std::shared_ptr<Node> Node::FindSelectedNode(const std::string& name)
{
    return FindLinked(Link::Selected, "selected", name);
}

NodeList Node::SelectingNodes()
{
    return AllLinked(Link::Selecting);
}

std::shared_ptr<Node> Node::FindSelectingNode(const std::string& name)
{
    return FindLinked(Link::Selecting, "selecting", name);
}

NodeList Node::AllLinked(Link link)
{
    const auto nodeMap = ParentNodeMap();
    return InBothLayers([&] { return NodeList(nodeMap, Linked(link, *nodeMap)); });
}

std::shared_ptr<Node> Node::FindLinked(Link link, const char* kind, const std::string& name)
{
    const auto nodeMap = ParentNodeMap();
    return InBothLayers([&] {
        auto node = Linked(link, *nodeMap).TryFind(name);
        if (node) return node;
        throw NotFoundException(std::string("There is no ") + kind + " node with the given name (" + name + ")!");
    });
}

const LinkedNodes& Node::Linked(Link link, NodeMap& nodeMap)
{
    switch (link)
    {
    case Link::Invalidated:
        return invalidatedNodes.Get([&] { return Children(*genApiNode, ctDependingNodes, nodeMap); });
    case Link::Invalidating:
        return invalidatingNodes.Get([&] { return Children(*genApiNode, ctInvalidatingChildren, nodeMap); });
    case Link::Selected:
        return selectedNodes.Get([&] { return Features(genApiNode, &ISelector::GetSelectedFeatures, nodeMap); });
    default:
        return selectingNodes.Get([&] { return Features(genApiNode, &ISelector::GetSelectingFeatures, nodeMap); });
    }
}

} // namespace koro::internal
