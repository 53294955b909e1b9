#include "nodes/node_map.h"

#include "capi/node_entries.h"
#include "modules/buffer.h"
#include "modules/event.h"
#include <koro/node_map.h>

#include <stdexcept>

using namespace koro::internal;

namespace
{

// Runs `body` with the map and its other object; the map's handle is checked first.
template <class Handle, class Body>
KORO_ReturnCode WithMapAnd(
    const NamedArgument<KORO_NodeMapHandle>& nodeMapHandle, const NamedArgument<Handle>& handle, Body&& body)
{
    return WithObject(nodeMapHandle, [&](const auto& nodeMap) {
        const auto object = Find(handle.value);
        if (!object) return InvalidHandle(handle);
        return body(*nodeMap, object->Get());
    });
}

} // namespace

KORO_ReturnCode KORO_NodeMap_GetHasNode(
    KORO_NodeMapHandle nodeMapHandle, const char* nodeName, size_t nodeNameSize, KORO_Bool8* hasNode)
{
    return WithObject(KORO_ARG(nodeMapHandle), [&](const auto& nodeMap) {
        if (!nodeName) return InvalidPointer(KORO_ARG(nodeName));
        const KORO_Bool8 found = nodeMap->HasNode(TextArgument(nodeName, nodeNameSize));
        return CopyScalarOut(found, hasNode, "hasNode");
    });
}

KORO_ReturnCode KORO_NodeMap_FindNode(
    KORO_NodeMapHandle nodeMapHandle, const char* nodeName, size_t nodeNameSize, KORO_NodeHandle* nodeHandle)
{
    return WithObject(KORO_ARG(nodeMapHandle), [&](const auto& nodeMap) {
        if (!nodeName) return InvalidPointer(KORO_ARG(nodeName));
        if (!nodeHandle) return InvalidPointer(KORO_ARG(nodeHandle));
        *nodeHandle = EnterNode(nodeMap->FindNode(TextArgument(nodeName, nodeNameSize)));
        return success;
    });
}

KORO_ReturnCode KORO_NodeMap_TryFindNode(
    KORO_NodeMapHandle nodeMapHandle, const char* nodeName, size_t nodeNameSize, KORO_NodeHandle* nodeHandle)
{
    return WithObject(KORO_ARG(nodeMapHandle), [&](const auto& nodeMap) {
        if (!nodeName) return InvalidPointer(KORO_ARG(nodeName));
        if (!nodeHandle) return InvalidPointer(KORO_ARG(nodeHandle));
        const auto node = nodeMap->TryFindNode(TextArgument(nodeName, nodeNameSize));
        *nodeHandle = node ? EnterNode(node) : nullptr;
        return success;
    });
}

KORO_ReturnCode KORO_NodeMap_GetNumNodes(KORO_NodeMapHandle nodeMapHandle, size_t* numNodes)
{
    return GetScalar(KORO_ARG(nodeMapHandle), KORO_ARG(numNodes), [](auto& nodeMap) { return nodeMap.Nodes().size(); });
}

KORO_ReturnCode KORO_NodeMap_GetNode(KORO_NodeMapHandle nodeMapHandle, size_t index, KORO_NodeHandle* nodeHandle)
{
    return GetHandle(KORO_ARG(nodeMapHandle), KORO_ARG(nodeHandle), [&](const auto& nodeMap) {
        const auto& nodes = nodeMap->Nodes();
        // Differs from other lists; kept for compatibility.
        if (index >= nodes.size()) throw std::out_of_range("invalid vector subscript");
        return EnterNode(nodes[index]);
    });
}

KORO_ReturnCode KORO_NodeMap_GetHasBufferSupportedChunks(
    KORO_NodeMapHandle nodeMapHandle, KORO_BufferHandle bufferHandle, KORO_Bool8* hasSupportedChunks)
{
    return WithMapAnd(KORO_ARG(nodeMapHandle), KORO_ARG(bufferHandle), [&](auto& nodeMap, const auto& buffer) {
        const KORO_Bool8 has = nodeMap.HasBufferSupportedChunks(*buffer);
        return CopyScalarOut(has, hasSupportedChunks, "hasSupportedChunks");
    });
}

KORO_ReturnCode KORO_NodeMap_UpdateChunkNodes(KORO_NodeMapHandle nodeMapHandle, KORO_BufferHandle bufferHandle)
{
    return WithMapAnd(KORO_ARG(nodeMapHandle), KORO_ARG(bufferHandle), [](auto& nodeMap, const auto& buffer) {
        nodeMap.UpdateChunkNodes(*buffer);
        return success;
    });
}

KORO_ReturnCode KORO_NodeMap_GetHasEventSupportedData(
    KORO_NodeMapHandle nodeMapHandle, KORO_EventHandle eventHandle, KORO_Bool8* hasSupportedData)
{
    return WithMapAnd(KORO_ARG(nodeMapHandle), KORO_ARG(eventHandle), [&](auto& nodeMap, const auto& event) {
        const KORO_Bool8 has = nodeMap.HasEventSupportedData(*event);
        return CopyScalarOut(has, hasSupportedData, "hasSupportedData");
    });
}

KORO_ReturnCode KORO_NodeMap_UpdateEventNodes(KORO_NodeMapHandle nodeMapHandle, KORO_EventHandle eventHandle)
{
    return WithMapAnd(KORO_ARG(nodeMapHandle), KORO_ARG(eventHandle), [](auto& nodeMap, const auto& event) {
        nodeMap.UpdateEventNodes(*event);
        return success;
    });
}

KORO_ReturnCode KORO_NodeMap_StoreToFile(KORO_NodeMapHandle nodeMapHandle, const char* filePath, size_t filePathSize)
{
    return WithObject(KORO_ARG(nodeMapHandle), [&](const auto& nodeMap) {
        if (!filePath) return InvalidPointer(KORO_ARG(filePath));
        nodeMap->StoreToFile(TextArgument(filePath, filePathSize));
        return success;
    });
}

KORO_ReturnCode KORO_NodeMap_LoadFromFile(KORO_NodeMapHandle nodeMapHandle, const char* filePath, size_t filePathSize)
{
    return WithObject(KORO_ARG(nodeMapHandle), [&](const auto& nodeMap) {
        if (!filePath) return InvalidPointer(KORO_ARG(filePath));
        nodeMap->LoadFromFile(TextArgument(filePath, filePathSize));
        return success;
    });
}

KORO_ReturnCode KORO_NodeMap_InvalidateNodes(KORO_NodeMapHandle nodeMapHandle)
{
    return Perform(KORO_ARG(nodeMapHandle), &NodeMap::InvalidateNodes);
}

KORO_ReturnCode KORO_NodeMap_PollNodes(KORO_NodeMapHandle nodeMapHandle, int64_t elapsedTime_ms)
{
    return Perform(KORO_ARG(nodeMapHandle), [&](auto& nodeMap) { nodeMap.PollNodes(elapsedTime_ms); });
}

KORO_ReturnCode KORO_NodeMap_Lock(KORO_NodeMapHandle nodeMapHandle)
{
    return Perform(KORO_ARG(nodeMapHandle), &NodeMap::LockForApplication);
}

KORO_ReturnCode KORO_NodeMap_Unlock(KORO_NodeMapHandle nodeMapHandle)
{
    // A map may have ended while it was locked: its lock must be released for the threads that wait.
    if (!IsLibraryInitialized() || !Find(nodeMapHandle)) NodeMap::UnlockEnded(nodeMapHandle);
    return Perform(KORO_ARG(nodeMapHandle), &NodeMap::UnlockForApplication);
}

// If the result cannot be reported, the lock is released.
KORO_ReturnCode KORO_NodeMap_TryLock(KORO_NodeMapHandle nodeMapHandle, KORO_Bool8* locked)
{
    return WithObject(KORO_ARG(nodeMapHandle), [&](const auto& nodeMap) {
        const bool isTaken = nodeMap->TryLockForApplication();
        if (isTaken && !locked) nodeMap->UnlockForApplication();
        return CopyScalarOut(KORO_Bool8{isTaken}, locked, "locked");
    });
}
