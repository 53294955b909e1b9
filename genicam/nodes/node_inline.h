// Templates of Node and NodeMap that need each other.
#pragma once

#include "map/node_map.h"
#include "nodes/node.h"

namespace GENAPI_NAMESPACE::runtime
{

template <class Act>
void Node::ForEachLinked(Property property, const Act& act) const
{
    for (const PropertyRecord& record : Source().PropertiesOf(index))
    {
        if (record.property == property) act(*map.At(record.node));
    }
}

template <class Act>
void Node::WriteAnnounced(const Act& act)
{
    map.AnnounceWrite(*this);
    try
    {
        act();
    }
    catch (...)
    {
        map.DropChanged();
        throw;
    }
}

template <class Act>
void NodeMap::Operate(const Node* node, const char* operation, const Act& act)
{
    CallbackList callbacks;
    {
        const AutoLock held(*lock);
        {
            const Entry entry(*this, node, operation);
            act();
            callbacks = CollectCallbacks();
        }
        callbacks.CallInside();
    }
    callbacks.CallOutside();
}

template <class Act>
void Node::Change(const char* operation, const Act& act)
{
    map.Operate(this, operation, act);
}

} // namespace GENAPI_NAMESPACE::runtime
