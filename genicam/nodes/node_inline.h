// Functions that Node and NodeMap need of each other: templates and inline functions.
#pragma once

#include "map/node_map.h"
#include "nodes/node.h"
#include "xml/links.h"

namespace GENAPI_NAMESPACE::runtime
{

// Each operation of an application uses these functions.
inline Entry::Entry(const Node& node, const char* operation) : Entry(node.Map(), &node, operation) {}

inline Entry::Entry(NodeMap& owner, const Node* node, const char* operation) : map(owner)
{
    map.lock->Lock();
    if (map.entryDepth++ > 0)
    {
        ++map.nestedEntries;
        return;
    }
    map.entryNode = node;
    map.entryOperation = operation;
    map.changed.clear();
    map.changes.clear();
}

inline Entry::~Entry()
{
    if (--map.entryDepth == 0) map.entryNode = nullptr;
    map.lock->Unlock();
}

template <class Act>
void Node::ForEachLinked(Property property, const Act& act) const
{
    for (const PropertyRecord& record :
         IsWalkedInUse(property) ? Source().EssentialsOf(index) : Source().PropertiesOf(index))
    {
        if (record.property == property) act(*map.At(record.node));
    }
}

template <class Act>
void Node::WriteAnnounced(const Act& act)
{
    map.AnnounceWrite(*this);
    const uint64_t before = map.Writes();
    try
    {
        act();
    }
    catch (...)
    {
        // If a write was refused before anything was written, the cached bytes of registers stay valid.
        map.DropChanged(map.Writes() != before);
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
