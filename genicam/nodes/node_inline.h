// Templates of Node that need the map.
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
void Node::Change(const char* operation, const Act& act)
{
    CallbackList callbacksToCall;
    map.GetLock().Lock();
    try
    {
        {
            Entry entry(*this, operation);
            act();
            callbacksToCall = map.CollectCallbacks();
        }
        callbacksToCall.CallInside();
    }
    catch (...)
    {
        map.GetLock().Unlock();
        throw;
    }
    map.GetLock().Unlock();
    callbacksToCall.CallOutside();
}

} // namespace GENAPI_NAMESPACE::runtime
