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

// Not implemented when no node in it is implemented; nodes that are only not available have no influence.
EAccessMode CategoryNode::LinkedMode() const
{
    bool any = false;
    ForEachLinked(Property::pFeature, [&](const Node& node) { any = any || IsImplemented(node.AccessMode()); });
    return any ? RW : NI;
}

// Only the condition "implemented" is used.
EAccessMode CategoryNode::ModeOfLinksAndConditions() const
{
    const EAccessMode mode = Combine(LinkedMode(), ModeOfErrorNodes());
    Node* const condition = Linked(Property::pIsImplemented);
    if (!condition || mode == NI) return mode;
    if (!IsReadable(condition->AccessMode())) return Combine(mode, condition->AccessMode() == NI ? NI : NA);
    return condition->PlainNumber() == 0 ? NI : mode;
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
