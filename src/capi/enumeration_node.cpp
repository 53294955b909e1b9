#include "nodes/enumeration_node.h"

#include "capi/node_entries.h"
#include "nodes/enumeration_entry_node.h"
#include <koro/enumeration_node.h>

using namespace koro::internal;

namespace
{

using Entry = std::shared_ptr<EnumerationEntryNode>;

// Each call returns the same handle, which ends with the map; null for no entry.
KORO_EnumerationEntryNodeHandle EnterEntry(const Entry& entry)
{
    return entry ? Table<EnumerationEntryNode>().Add(entry, entry->ParentNodeMap()) : nullptr;
}

KORO_ReturnCode GetEntryByValue(
    const NamedArgument<KORO_EnumerationNodeHandle>& handle, std::int64_t value,
    const NamedArgument<KORO_EnumerationEntryNodeHandle*>& entryHandle, Entry (EnumerationNode::*find)(std::int64_t))
{
    return GetHandle(handle, entryHandle, [&](const auto& node) { return EnterEntry(((*node).*find)(value)); });
}

KORO_ReturnCode GetEntryBySymbolicValue(
    const NamedArgument<KORO_EnumerationNodeHandle>& handle, const NamedArgument<const char*>& symbolicValue,
    std::size_t symbolicValueSize, const NamedArgument<KORO_EnumerationEntryNodeHandle*>& entryHandle,
    Entry (EnumerationNode::*find)(const std::string&))
{
    return WithObject(handle, [&](const auto& node) {
        if (!symbolicValue.value) return InvalidPointer(symbolicValue);
        if (!entryHandle.value) return InvalidPointer(entryHandle);
        *entryHandle.value = EnterEntry(((*node).*find)(TextArgument(symbolicValue.value, symbolicValueSize)));
        return success;
    });
}

} // namespace

KORO_ReturnCode KORO_EnumerationNode_GetCurrentEntry(
    KORO_EnumerationNodeHandle enumerationNodeHandle, KORO_NodeCachePolicy cachePolicy,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle)
{
    return GetHandle(KORO_ARG(enumerationNodeHandle), KORO_ARG(enumerationEntryNodeHandle), [&](const auto& node) {
        return EnterEntry(node->CurrentEntry(CachePolicy{cachePolicy}));
    });
}

KORO_ReturnCode KORO_EnumerationNode_SetCurrentEntry(
    KORO_EnumerationNodeHandle enumerationNodeHandle, KORO_EnumerationEntryNodeHandle enumerationEntryNodeHandle)
{
    return WithObject(KORO_ARG(enumerationNodeHandle), [&](const auto& node) {
        const auto entry = Find(enumerationEntryNodeHandle);
        if (!entry) return InvalidHandle(KORO_ARG(enumerationEntryNodeHandle));
        node->SetCurrentEntry(entry->Get());
        return success;
    });
}

KORO_ReturnCode KORO_EnumerationNode_SetCurrentEntryByValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, int64_t value)
{
    return Perform(KORO_ARG(enumerationNodeHandle), [&](auto& node) { node.SetCurrentEntry(value); });
}

KORO_ReturnCode KORO_EnumerationNode_SetCurrentEntryBySymbolicValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, const char* symbolicValue, size_t symbolicValueSize)
{
    return WithObject(KORO_ARG(enumerationNodeHandle), [&](const auto& node) {
        if (!symbolicValue) return InvalidPointer(KORO_ARG(symbolicValue));
        node->SetCurrentEntry(TextArgument(symbolicValue, symbolicValueSize));
        return success;
    });
}

KORO_ReturnCode KORO_EnumerationNode_GetNumEntries(KORO_EnumerationNodeHandle enumerationNodeHandle, size_t* numEntries)
{
    return GetScalar(
        KORO_ARG(enumerationNodeHandle), KORO_ARG(numEntries), [](auto& node) { return node.Entries().size(); });
}

KORO_ReturnCode KORO_EnumerationNode_GetEntry(
    KORO_EnumerationNodeHandle enumerationNodeHandle, size_t index,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle)
{
    return GetIndexed(
        KORO_ARG(enumerationNodeHandle), index, KORO_ARG(enumerationEntryNodeHandle), &EnumerationNode::Entries,
        [](const auto&, const Entry& entry) { return EnterEntry(entry); });
}

KORO_ReturnCode KORO_EnumerationNode_FindEntryByValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, int64_t value,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle)
{
    return GetEntryByValue(
        KORO_ARG(enumerationNodeHandle), value, KORO_ARG(enumerationEntryNodeHandle), &EnumerationNode::FindEntry);
}

KORO_ReturnCode KORO_EnumerationNode_FindEntryBySymbolicValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, const char* symbolicValue, size_t symbolicValueSize,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle)
{
    return GetEntryBySymbolicValue(
        KORO_ARG(enumerationNodeHandle), KORO_ARG(symbolicValue), symbolicValueSize,
        KORO_ARG(enumerationEntryNodeHandle), &EnumerationNode::FindEntry);
}

KORO_ReturnCode KORO_EnumerationNode_TryFindEntryByValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, int64_t value,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle)
{
    return GetEntryByValue(
        KORO_ARG(enumerationNodeHandle), value, KORO_ARG(enumerationEntryNodeHandle), &EnumerationNode::TryFindEntry);
}

KORO_ReturnCode KORO_EnumerationNode_TryFindEntryBySymbolicValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, const char* symbolicValue, size_t symbolicValueSize,
    KORO_EnumerationEntryNodeHandle* enumerationEntryNodeHandle)
{
    return GetEntryBySymbolicValue(
        KORO_ARG(enumerationNodeHandle), KORO_ARG(symbolicValue), symbolicValueSize,
        KORO_ARG(enumerationEntryNodeHandle), &EnumerationNode::TryFindEntry);
}

KORO_ReturnCode KORO_EnumerationNode_GetHasEntryByValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, int64_t value, KORO_Bool8* hasEntry)
{
    return GetScalar(KORO_ARG(enumerationNodeHandle), KORO_ARG(hasEntry), [&](auto& node) {
        return node.TryFindEntry(value) != nullptr;
    });
}

KORO_ReturnCode KORO_EnumerationNode_GetHasEntryBySymbolicValue(
    KORO_EnumerationNodeHandle enumerationNodeHandle, const char* symbolicValue, size_t symbolicValueSize,
    KORO_Bool8* hasEntry)
{
    return WithObject(KORO_ARG(enumerationNodeHandle), [&](const auto& node) {
        if (!symbolicValue) return InvalidPointer(KORO_ARG(symbolicValue));
        const KORO_Bool8 found = node->TryFindEntry(TextArgument(symbolicValue, symbolicValueSize)) != nullptr;
        return CopyScalarOut(found, hasEntry, "hasEntry");
    });
}

KORO_ReturnCode KORO_EnumerationNode_ToNode(
    KORO_EnumerationNodeHandle enumerationNodeHandle, KORO_NodeHandle* nodeHandle)
{
    return CastTo(KORO_ARG(enumerationNodeHandle), KORO_ARG(nodeHandle), &EnumerationNode::ParentNodeMap);
}
