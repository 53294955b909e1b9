// Features: node maps, nodes, and nodes with values. All of them are views that can be copied; they end with their
// module.
//
// Programs include <koro/koro.hpp>, which includes this header. Any thread may call these functions. NodeMap::Lock()
// protects calls that belong together, such as setting a selector and then the selected feature.
#ifndef KORO_CPP_NODES_HPP
#define KORO_CPP_NODES_HPP

#include <koro/cpp/callbacks.hpp>
#include <koro/cpp/support.hpp>
#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace koro
{

enum class CachePolicy : int32_t
{
    UseCache = 0,
    IgnoreCache = 1, // reads from the device
};

class Buffer;
class Event;
class NodeMap;
class IntegerNode;
class FloatNode;
class BooleanNode;
class CommandNode;
class StringNode;
class RegisterNode;
class CategoryNode;
class EnumerationNode;
class EnumerationEntryNode;

// What all nodes have in common. Numbers for which this header has no type are those of <koro/node.h>.
class Node : public detail::View<KORO_NodeHandle>
{
public:
    using View::View;

    std::string Name() const { return detail::Text(KORO_Node_GetName, Get()); }
    std::string DisplayName() const { return detail::Text(KORO_Node_GetDisplayName, Get()); }
    KORO_NodeNamespace Namespace() const { return detail::Get(KORO_Node_GetNamespace, Get()); }
    KORO_NodeVisibility Visibility() const { return detail::Get(KORO_Node_GetVisibility, Get()); }
    KORO_NodeType Type() const { return detail::Get(KORO_Node_GetType, Get()); }
    std::string ToolTip() const { return detail::Text(KORO_Node_GetToolTip, Get()); }
    std::string Description() const { return detail::Text(KORO_Node_GetDescription, Get()); }
    bool IsFeature() const { return detail::Flag(KORO_Node_GetIsFeature, Get()); }
    bool IsDeprecated() const { return detail::Flag(KORO_Node_GetIsDeprecated, Get()); }
    bool IsStreamable() const { return detail::Flag(KORO_Node_GetIsStreamable, Get()); }

    KORO_NodeAccessStatus AccessStatus() const { return detail::Get(KORO_Node_GetAccessStatus, Get()); }
    bool IsImplemented() const { return AccessStatus() != KORO_NODE_ACCESS_STATUS_NOT_IMPLEMENTED; }
    bool IsAvailable() const
    {
        const KORO_NodeAccessStatus status = AccessStatus();
        return status != KORO_NODE_ACCESS_STATUS_NOT_IMPLEMENTED && status != KORO_NODE_ACCESS_STATUS_NOT_AVAILABLE;
    }
    bool IsReadable() const
    {
        const KORO_NodeAccessStatus status = AccessStatus();
        return status == KORO_NODE_ACCESS_STATUS_READ_ONLY || status == KORO_NODE_ACCESS_STATUS_READ_WRITE;
    }
    bool IsWritable() const
    {
        const KORO_NodeAccessStatus status = AccessStatus();
        return status == KORO_NODE_ACCESS_STATUS_WRITE_ONLY || status == KORO_NODE_ACCESS_STATUS_READ_WRITE;
    }

    bool IsCacheable() const { return detail::Flag(KORO_Node_GetIsCacheable, Get()); }
    bool IsAccessStatusCacheable() const { return detail::Flag(KORO_Node_GetIsAccessStatusCacheable, Get()); }
    KORO_NodeCachingMode CachingMode() const { return detail::Get(KORO_Node_GetCachingMode, Get()); }
    // Milliseconds; -1 for a node that is not polled.
    int64_t PollingTime_ms() const { return detail::Get(KORO_Node_GetPollingTime, Get()); }

    NodeMap ParentNodeMap() const;
    std::vector<Node> InvalidatedNodes() const
    {
        return detail::Children<Node>(KORO_Node_GetNumInvalidatedNodes, KORO_Node_GetInvalidatedNode, Get());
    }
    Node InvalidatedNode(const std::string& name) const
    {
        return detail::FindByName<Node>(KORO_Node_FindInvalidatedNode, Get(), name);
    }
    std::vector<Node> InvalidatingNodes() const
    {
        return detail::Children<Node>(KORO_Node_GetNumInvalidatingNodes, KORO_Node_GetInvalidatingNode, Get());
    }
    Node InvalidatingNode(const std::string& name) const
    {
        return detail::FindByName<Node>(KORO_Node_FindInvalidatingNode, Get(), name);
    }
    std::vector<Node> SelectedNodes() const
    {
        return detail::Children<Node>(KORO_Node_GetNumSelectedNodes, KORO_Node_GetSelectedNode, Get());
    }
    Node SelectedNode(const std::string& name) const
    {
        return detail::FindByName<Node>(KORO_Node_FindSelectedNode, Get(), name);
    }
    std::vector<Node> SelectingNodes() const
    {
        return detail::Children<Node>(KORO_Node_GetNumSelectingNodes, KORO_Node_GetSelectingNode, Get());
    }
    Node SelectingNode(const std::string& name) const
    {
        return detail::FindByName<Node>(KORO_Node_FindSelectingNode, Get(), name);
    }

    // Each cast throws Error with KORO_RETURN_CODE_INVALID_CAST for a node of another type.
    IntegerNode ToInteger() const;
    FloatNode ToFloat() const;
    BooleanNode ToBoolean() const;
    CommandNode ToCommand() const;
    StringNode ToString() const;
    RegisterNode ToRegister() const;
    CategoryNode ToCategory() const;
    EnumerationNode ToEnumeration() const;
    EnumerationEntryNode ToEnumerationEntry() const;

    // The function may use any node of the map, and may end its own registration, which stays alive until the function
    // returns. It must not wait for another thread that uses the map.
    [[nodiscard]] Registration OnChanged(std::function<void(Node)> changed) const
    {
        return detail::Register(
            KORO_Node_RegisterChangedCallback, KORO_Node_UnregisterChangedCallback, Get(),
            &detail::CallFound<Node, KORO_NodeHandle>, std::move(changed));
    }
};

namespace detail
{

// A node with values. It converts to a Node by a look-up; the most frequent calls on nodes are available directly.
template <typename Handle, KORO_ReturnCode (*toNode)(Handle, KORO_NodeHandle*)>
class TypedNode : public View<Handle>
{
public:
    using View<Handle>::View;

    koro::Node Node() const { return koro::Node(detail::Get(toNode, this->Get())); }
    operator koro::Node() const { return Node(); }

    std::string Name() const { return Node().Name(); }
    std::string DisplayName() const { return Node().DisplayName(); }
    KORO_NodeType Type() const { return Node().Type(); }
    KORO_NodeAccessStatus AccessStatus() const { return Node().AccessStatus(); }
    bool IsImplemented() const { return Node().IsImplemented(); }
    bool IsAvailable() const { return Node().IsAvailable(); }
    bool IsReadable() const { return Node().IsReadable(); }
    bool IsWritable() const { return Node().IsWritable(); }
    [[nodiscard]] Registration OnChanged(std::function<void(koro::Node)> changed) const
    {
        return Node().OnChanged(std::move(changed));
    }
};

} // namespace detail

class IntegerNode : public detail::TypedNode<KORO_IntegerNodeHandle, KORO_IntegerNode_ToNode>
{
public:
    using TypedNode::TypedNode;

    int64_t Value(CachePolicy policy = CachePolicy::UseCache) const
    {
        int64_t value = 0;
        detail::Check(KORO_IntegerNode_GetValue(Get(), static_cast<int32_t>(policy), &value));
        return value;
    }
    void SetValue(int64_t value) const { detail::Check(KORO_IntegerNode_SetValue(Get(), value)); }
    int64_t Minimum() const { return detail::Get(KORO_IntegerNode_GetMinimum, Get()); }
    int64_t Maximum() const { return detail::Get(KORO_IntegerNode_GetMaximum, Get()); }
    int64_t Increment() const { return detail::Get(KORO_IntegerNode_GetIncrement, Get()); }
    KORO_NodeIncrementType IncrementType() const { return detail::Get(KORO_IntegerNode_GetIncrementType, Get()); }
    std::vector<int64_t> ValidValues() const { return detail::Values(KORO_IntegerNode_GetValidValues, Get()); }
    KORO_NodeRepresentation Representation() const { return detail::Get(KORO_IntegerNode_GetRepresentation, Get()); }
    std::string Unit() const { return detail::Text(KORO_IntegerNode_GetUnit, Get()); }
};

class FloatNode : public detail::TypedNode<KORO_FloatNodeHandle, KORO_FloatNode_ToNode>
{
public:
    using TypedNode::TypedNode;

    double Value(CachePolicy policy = CachePolicy::UseCache) const
    {
        double value = 0;
        detail::Check(KORO_FloatNode_GetValue(Get(), static_cast<int32_t>(policy), &value));
        return value;
    }
    void SetValue(double value) const { detail::Check(KORO_FloatNode_SetValue(Get(), value)); }
    double Minimum() const { return detail::Get(KORO_FloatNode_GetMinimum, Get()); }
    double Maximum() const { return detail::Get(KORO_FloatNode_GetMaximum, Get()); }
    bool HasConstantIncrement() const { return detail::Flag(KORO_FloatNode_GetHasConstantIncrement, Get()); }
    double Increment() const { return detail::Get(KORO_FloatNode_GetIncrement, Get()); }
    KORO_NodeIncrementType IncrementType() const { return detail::Get(KORO_FloatNode_GetIncrementType, Get()); }
    std::vector<double> ValidValues() const { return detail::Values(KORO_FloatNode_GetValidValues, Get()); }
    KORO_NodeRepresentation Representation() const { return detail::Get(KORO_FloatNode_GetRepresentation, Get()); }
    std::string Unit() const { return detail::Text(KORO_FloatNode_GetUnit, Get()); }
    KORO_NodeDisplayNotation DisplayNotation() const { return detail::Get(KORO_FloatNode_GetDisplayNotation, Get()); }
    int64_t DisplayPrecision() const { return detail::Get(KORO_FloatNode_GetDisplayPrecision, Get()); }
};

class BooleanNode : public detail::TypedNode<KORO_BooleanNodeHandle, KORO_BooleanNode_ToNode>
{
public:
    using TypedNode::TypedNode;

    bool Value(CachePolicy policy = CachePolicy::UseCache) const
    {
        KORO_Bool8 value = 0;
        detail::Check(KORO_BooleanNode_GetValue(Get(), static_cast<int32_t>(policy), &value));
        return value != 0;
    }
    void SetValue(bool value) const { detail::Check(KORO_BooleanNode_SetValue(Get(), value ? 1 : 0)); }
};

class CommandNode : public detail::TypedNode<KORO_CommandNodeHandle, KORO_CommandNode_ToNode>
{
public:
    using TypedNode::TypedNode;

    // Starts the command. Does not wait until it is done.
    void Execute() const { detail::Check(KORO_CommandNode_Execute(Get())); }
    bool IsDone() const { return detail::Flag(KORO_CommandNode_GetIsDone, Get()); }
    // Throws Error with KORO_RETURN_CODE_TIMEOUT when the command is not done in time.
    void WaitUntilDone(uint64_t timeout_ms) const { detail::Check(KORO_CommandNode_WaitUntilDone(Get(), timeout_ms)); }
    void WaitUntilDone() const { detail::Check(KORO_CommandNode_WaitUntilDoneInfinite(Get())); }
};

class StringNode : public detail::TypedNode<KORO_StringNodeHandle, KORO_StringNode_ToNode>
{
public:
    using TypedNode::TypedNode;

    std::string Value(CachePolicy policy = CachePolicy::UseCache) const
    {
        return detail::FetchText([&](char* buffer, size_t* size) {
            return KORO_StringNode_GetValue(Get(), static_cast<int32_t>(policy), buffer, size);
        });
    }
    void SetValue(const std::string& value) const
    {
        detail::Check(KORO_StringNode_SetValue(Get(), value.c_str(), value.size() + 1));
    }
    // Bytes, without the terminating zero.
    int64_t MaximumLength() const { return detail::Get(KORO_StringNode_GetMaximumLength, Get()); }
};

class RegisterNode : public detail::TypedNode<KORO_RegisterNodeHandle, KORO_RegisterNode_ToNode>
{
public:
    using TypedNode::TypedNode;

    uint64_t Address() const { return detail::Get(KORO_RegisterNode_GetAddress, Get()); }
    size_t Length() const { return detail::Get(KORO_RegisterNode_GetLength, Get()); }
    // Reads the whole register. IgnoreCache makes the read check the error nodes of the node, and may still use the
    // cache.
    std::vector<uint8_t> Read(CachePolicy policy = CachePolicy::UseCache) const
    {
        const size_t length = Length();
        if (length > detail::maxBytesSize)
            throw Error(KORO_RETURN_CODE_ERROR, "A register claims a length of " + std::to_string(length) + " bytes!");
        std::vector<uint8_t> bytes(length);
        if (length == 0) return bytes;
        detail::Check(KORO_RegisterNode_Read(Get(), static_cast<int32_t>(policy), bytes.data(), bytes.size()));
        return bytes;
    }
    // Writing no bytes is not a failure, and the device is not accessed.
    void Write(const std::vector<uint8_t>& bytes) const
    {
        if (bytes.empty())
            Node(); // checks the handle
        else
            detail::Check(KORO_RegisterNode_Write(Get(), bytes.data(), bytes.size()));
    }
};

class CategoryNode : public detail::TypedNode<KORO_CategoryNodeHandle, KORO_CategoryNode_ToNode>
{
public:
    using TypedNode::TypedNode;

    std::vector<koro::Node> SubNodes() const
    {
        return detail::Children<koro::Node>(KORO_CategoryNode_GetNumSubNodes, KORO_CategoryNode_GetSubNode, Get());
    }
};

class EnumerationEntryNode : public detail::TypedNode<KORO_EnumerationEntryNodeHandle, KORO_EnumerationEntryNode_ToNode>
{
public:
    using TypedNode::TypedNode;

    std::string SymbolicValue() const { return detail::Text(KORO_EnumerationEntryNode_GetSymbolicValue, Get()); }
    int64_t Value() const { return detail::Get(KORO_EnumerationEntryNode_GetValue, Get()); }
    bool IsSelfClearing() const { return detail::Flag(KORO_EnumerationEntryNode_GetIsSelfClearing, Get()); }
};

class EnumerationNode : public detail::TypedNode<KORO_EnumerationNodeHandle, KORO_EnumerationNode_ToNode>
{
public:
    using TypedNode::TypedNode;

    EnumerationEntryNode CurrentEntry(CachePolicy policy = CachePolicy::UseCache) const
    {
        KORO_EnumerationEntryNodeHandle entry{};
        detail::Check(KORO_EnumerationNode_GetCurrentEntry(Get(), static_cast<int32_t>(policy), &entry));
        return EnumerationEntryNode(entry);
    }
    void SetCurrentEntry(EnumerationEntryNode entry) const
    {
        detail::Check(KORO_EnumerationNode_SetCurrentEntry(Get(), entry.Get()));
    }
    void SetCurrentEntry(int64_t value) const
    {
        detail::Check(KORO_EnumerationNode_SetCurrentEntryByValue(Get(), value));
    }
    void SetCurrentEntry(const std::string& symbolicValue) const
    {
        detail::Check(KORO_EnumerationNode_SetCurrentEntryBySymbolicValue(
            Get(), symbolicValue.c_str(), symbolicValue.size() + 1));
    }
    // In the order of the description, including entries that are not available.
    std::vector<EnumerationEntryNode> Entries() const
    {
        return detail::Children<EnumerationEntryNode>(
            KORO_EnumerationNode_GetNumEntries, KORO_EnumerationNode_GetEntry, Get());
    }
    EnumerationEntryNode Entry(int64_t value) const
    {
        KORO_EnumerationEntryNodeHandle entry{};
        detail::Check(KORO_EnumerationNode_FindEntryByValue(Get(), value, &entry));
        return EnumerationEntryNode(entry);
    }
    EnumerationEntryNode Entry(const std::string& symbolicValue) const
    {
        return detail::FindByName<EnumerationEntryNode>(
            KORO_EnumerationNode_FindEntryBySymbolicValue, Get(), symbolicValue);
    }
    // Empty when there is no such object.
    EnumerationEntryNode TryEntry(int64_t value) const
    {
        KORO_EnumerationEntryNodeHandle entry{};
        detail::Check(KORO_EnumerationNode_TryFindEntryByValue(Get(), value, &entry));
        return EnumerationEntryNode(entry);
    }
    EnumerationEntryNode TryEntry(const std::string& symbolicValue) const
    {
        return detail::FindByName<EnumerationEntryNode>(
            KORO_EnumerationNode_TryFindEntryBySymbolicValue, Get(), symbolicValue);
    }
    bool HasEntry(int64_t value) const
    {
        KORO_Bool8 hasEntry = 0;
        detail::Check(KORO_EnumerationNode_GetHasEntryByValue(Get(), value, &hasEntry));
        return hasEntry != 0;
    }
    bool HasEntry(const std::string& symbolicValue) const
    {
        KORO_Bool8 hasEntry = 0;
        detail::Check(KORO_EnumerationNode_GetHasEntryBySymbolicValue(
            Get(), symbolicValue.c_str(), symbolicValue.size() + 1, &hasEntry));
        return hasEntry != 0;
    }
};

// Holds the recursive lock of a node map while it exists. Destroy it on the thread that created it.
class NodeMapLock
{
public:
    NodeMapLock(NodeMapLock&& other) noexcept : locked(std::exchange(other.locked, KORO_NodeMapHandle{})) {}
    NodeMapLock& operator=(NodeMapLock&&) = delete;
    ~NodeMapLock()
    {
        if (locked) KORO_NodeMap_Unlock(locked);
    }

private:
    friend class NodeMap;
    explicit NodeMapLock(KORO_NodeMapHandle map) noexcept : locked(map) {}

    KORO_NodeMapHandle locked;
};

// The node map of a module. The first call on a map parses its description and reports errors of the description.
class NodeMap : public detail::View<KORO_NodeMapHandle>
{
public:
    using View::View;

    bool HasNode(const std::string& name) const
    {
        KORO_Bool8 hasNode = 0;
        detail::Check(KORO_NodeMap_GetHasNode(Get(), name.c_str(), name.size() + 1, &hasNode));
        return hasNode != 0;
    }
    // Throws Error with KORO_RETURN_CODE_NOT_FOUND when there is no such node.
    koro::Node Node(const std::string& name) const
    {
        return detail::FindByName<koro::Node>(KORO_NodeMap_FindNode, Get(), name);
    }
    // Empty when there is no such object.
    koro::Node TryNode(const std::string& name) const
    {
        return detail::FindByName<koro::Node>(KORO_NodeMap_TryFindNode, Get(), name);
    }
    // All nodes, including those that are not features.
    std::vector<koro::Node> Nodes() const
    {
        return detail::Children<koro::Node>(KORO_NodeMap_GetNumNodes, KORO_NodeMap_GetNode, Get());
    }

    // Each function is Node(name) followed by the cast.
    IntegerNode Integer(const std::string& name) const { return Node(name).ToInteger(); }
    FloatNode Float(const std::string& name) const { return Node(name).ToFloat(); }
    BooleanNode Boolean(const std::string& name) const { return Node(name).ToBoolean(); }
    CommandNode Command(const std::string& name) const { return Node(name).ToCommand(); }
    StringNode String(const std::string& name) const { return Node(name).ToString(); }
    RegisterNode Register(const std::string& name) const { return Node(name).ToRegister(); }
    CategoryNode Category(const std::string& name) const { return Node(name).ToCategory(); }
    EnumerationNode Enumeration(const std::string& name) const { return Node(name).ToEnumeration(); }

    // Whether UpdateChunkNodes accepts the chunks of the buffer.
    bool HasBufferSupportedChunks(const Buffer& buffer) const;
    // Attaches the buffer: chunk nodes read its memory until the next call or until the buffer is revoked.
    void UpdateChunkNodes(const Buffer& buffer) const;
    // Whether the event belongs to the module that this map describes.
    bool HasEventSupportedData(const Event& event) const;
    // Copies the event's data to its nodes and calls their changed callbacks.
    void UpdateEventNodes(const Event& event) const;

    // Stores the values of the features in a text file, and loads them. Paths are UTF-8. A value that is refused does
    // not stop the loading of the others; a failed transfer does.
    void StoreToFile(const std::string& path) const
    {
        detail::Check(KORO_NodeMap_StoreToFile(Get(), path.c_str(), path.size() + 1));
    }
    // LoadSettings() of <koro/cpp/settings.hpp> loads more values and reports the lines that fail.
    void LoadFromFile(const std::string& path) const
    {
        detail::Check(KORO_NodeMap_LoadFromFile(Get(), path.c_str(), path.size() + 1));
    }

    void InvalidateNodes() const { detail::Check(KORO_NodeMap_InvalidateNodes(Get())); }
    // Advances the polling clock by this time; the library has no polling thread.
    void PollNodes(int64_t elapsed_ms) const { detail::Check(KORO_NodeMap_PollNodes(Get(), elapsed_ms)); }

    [[nodiscard]] NodeMapLock Lock() const
    {
        detail::Check(KORO_NodeMap_Lock(Get()));
        return NodeMapLock(Get());
    }
    // Returns empty while another thread holds the lock.
    [[nodiscard]] std::optional<NodeMapLock> TryLock() const
    {
        KORO_Bool8 locked = 0;
        detail::Check(KORO_NodeMap_TryLock(Get(), &locked));
        if (locked == 0) return std::nullopt;
        return NodeMapLock(Get());
    }
};

inline NodeMap Node::ParentNodeMap() const
{
    return NodeMap(detail::Get(KORO_Node_GetParentNodeMap, Get()));
}
inline IntegerNode Node::ToInteger() const
{
    return IntegerNode(detail::Get(KORO_Node_ToIntegerNode, Get()));
}
inline FloatNode Node::ToFloat() const
{
    return FloatNode(detail::Get(KORO_Node_ToFloatNode, Get()));
}
inline BooleanNode Node::ToBoolean() const
{
    return BooleanNode(detail::Get(KORO_Node_ToBooleanNode, Get()));
}
inline CommandNode Node::ToCommand() const
{
    return CommandNode(detail::Get(KORO_Node_ToCommandNode, Get()));
}
inline StringNode Node::ToString() const
{
    return StringNode(detail::Get(KORO_Node_ToStringNode, Get()));
}
inline RegisterNode Node::ToRegister() const
{
    return RegisterNode(detail::Get(KORO_Node_ToRegisterNode, Get()));
}
inline CategoryNode Node::ToCategory() const
{
    return CategoryNode(detail::Get(KORO_Node_ToCategoryNode, Get()));
}
inline EnumerationNode Node::ToEnumeration() const
{
    return EnumerationNode(detail::Get(KORO_Node_ToEnumerationNode, Get()));
}
inline EnumerationEntryNode Node::ToEnumerationEntry() const
{
    return EnumerationEntryNode(detail::Get(KORO_Node_ToEnumerationEntryNode, Get()));
}

} // namespace koro

#endif
