#include "nodes/structure_nodes.h"

#include "nodes/errors.h"
#include "nodes/node_inline.h"

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::gcstring;

void CategoryNode::GetFeatures(FeatureList_t& Features) const
{
    ForEachLinked(Property::pFeature, [&](Node& node) {
        if (IValue* const value = dynamic_cast<IValue*>(&node)) Features.push_back(value);
    });
}

// Not implemented when nothing in it is; what is merely not available leaves it as it is.
EAccessMode CategoryNode::NaturalMode() const
{
    bool any = false;
    ForEachLinked(Property::pFeature, [&](const Node& node) { any = any || IsImplemented(node.AccessMode()); });
    return any ? RO : NI;
}

// Of the own conditions only "implemented" counts.
EAccessMode CategoryNode::ConditionMode() const
{
    Node* const condition = Linked(Property::pIsImplemented);
    if (!condition) return RW;
    if (!IsReadable(condition->AccessMode())) return condition->AccessMode() == NI ? NI : NA;
    return condition->PlainNumber() == 0 ? NI : RW;
}

gcstring CategoryNode::ValueText(ReadOptions)
{
    return GetDisplayName();
}

void CategoryNode::SetText(const gcstring&, bool)
{
    throw AccessError(*this, "Node is not writable.");
}

gcstring PlainNode::ValueText(ReadOptions)
{
    return gcstring();
}

void PlainNode::SetText(const gcstring&, bool)
{
    throw AccessError(*this, "Node is not writable.");
}

} // namespace GENAPI_NAMESPACE::runtime
