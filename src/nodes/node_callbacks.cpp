// The change notifications of a node.

#include "base/ended_objects.h"
#include "base/own_threads.h"
#include "nodes/node.h"

#include <GenApi/NodeCallback.h>
#include <utility>

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

// The object that GenApi calls for one registration. Its destructor deregisters it, unless GenApi has released it
// before.
class Node::ChangedCallbackDelegate
{
public:
    ChangedCallbackDelegate(std::shared_ptr<Node> changingNode, ChangedCallback function)
        : node(std::move(changingNode)), callback(std::make_shared<const ChangedCallback>(std::move(function)))
    {}
    ~ChangedCallbackDelegate()
    {
        if (!isRegistered) return;
        try
        {
            Deregister(genApiCallbackHandle);
        }
        catch (...) // no caller could receive the failure
        {}
    }
    ChangedCallbackDelegate(const ChangedCallbackDelegate&) = delete;
    ChangedCallbackDelegate& operator=(const ChangedCallbackDelegate&) = delete;

    void RegisterAt(INode* observedNode)
    {
        genApiCallbackHandle = Register(observedNode, *this, &ChangedCallbackDelegate::operator(), cbPostInsideLock);
        isRegistered = true;
    }
    void Forget() { isRegistered = false; }

    // The callback may unregister itself, which ends this object: none of its members is used afterwards. A running
    // call may continue after the end of the module.
    void operator()(INode*)
    {
        const auto heldCallback = callback;
        const auto heldNode = node;
        if (!*heldCallback || heldNode->HasEnded()) return;
        const MapLockHolder holdsLock;
        (*heldCallback)(heldNode);
    }

private:
    const std::shared_ptr<Node> node;
    const std::shared_ptr<const ChangedCallback> callback;
    CallbackHandleType genApiCallbackHandle{};
    bool isRegistered = false;
};

// Defined here, where the delegate's type is complete: the constructor needs its destructor.
Node::Node(INode* node, const std::weak_ptr<NodeMap>& nodeMap) : parentNodeMap(nodeMap), genApiNode(node) {}

Node::~Node() = default;

Node::ChangedCallbackHandle Node::RegisterChangedCallback(ChangedCallback callback)
{
    return AskLocked([&]() -> ChangedCallbackHandle {
        auto delegate = std::make_shared<ChangedCallbackDelegate>(shared_from_this(), std::move(callback));
        delegate->RegisterAt(genApiNode);

        const ChangedCallbackHandle handle = delegate.get();
        const std::lock_guard lock(changedCallbacksMutex);
        changedCallbacks.emplace(handle, std::move(delegate));
        return handle;
    });
}

void Node::UnregisterChangedCallback(ChangedCallbackHandle handle)
{
    AskLocked([&] {
        std::shared_ptr<ChangedCallbackDelegate> removed;
        {
            const std::lock_guard lock(changedCallbacksMutex);
            const auto found = changedCallbacks.find(handle);
            if (found == changedCallbacks.end()) return;
            removed = std::move(found->second);
            changedCallbacks.erase(found);
        }
        EndCallback(std::move(removed)); // while the lock of the map is still held
    });
}

void Node::EndChangedCallbacks()
{
    for (auto& [handle, delegate] : TakeChangedCallbacks())
        EndCallback(std::move(delegate));
}

void Node::ForgetChangedCallbacks()
{
    for (auto& [handle, delegate] : TakeChangedCallbacks())
    {
        delegate->Forget();
        EndCallback(std::move(delegate));
    }
}

// Each callback holds this node.
Node::ChangedCallbacks Node::TakeChangedCallbacks()
{
    const std::lock_guard lock(changedCallbacksMutex);
    return std::exchange(changedCallbacks, {});
}

} // namespace koro::internal
