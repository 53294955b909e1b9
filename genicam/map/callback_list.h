// CallbackList: the callbacks that one operation fires, each once.
//
// Lives on the stack of the operation. A callback that was deregistered meanwhile is passed over; one that deregisters
// itself is destroyed when no list is at work any more.
#pragma once

#include <GenApi/NodeCallback.h>
#include <vector>

namespace GENAPI_NAMESPACE::runtime
{

class NodeMap;

class CallbackList
{
public:
    CallbackList() = default;
    CallbackList(NodeMap& owner, std::vector<CNodeCallback*> called);
    CallbackList(CallbackList&& other) noexcept;
    CallbackList& operator=(CallbackList&& other) noexcept;
    ~CallbackList();

    // With the lock of the map held.
    void CallInside() const { Call(cbPostInsideLock); }
    void CallOutside() const { Call(cbPostOutsideLock); }

private:
    void Call(ECallbackType type) const;
    void Release();

    NodeMap* map = nullptr;
    std::vector<CNodeCallback*> callbacks;
};

} // namespace GENAPI_NAMESPACE::runtime
