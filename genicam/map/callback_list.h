// Registration: a callback, from its registration to its destruction. CallbackList: the callbacks that one operation
// calls, each once.
#pragma once

#include <GenApi/NodeCallback.h>
#include <atomic>
#include <memory>
#include <vector>

namespace GENAPI_NAMESPACE::runtime
{

// Shared by its node and the lists that currently use it; the last of them destroys the callback.
class Registration
{
public:
    explicit Registration(CNodeCallback* owned) : callback(owned) {}
    ~Registration() { callback->Destroy(); }
    Registration(const Registration&) = delete;
    Registration& operator=(const Registration&) = delete;

    const CNodeCallback* Callback() const { return callback; }
    // Thread-safe. A call that is running on another thread may outlast this function.
    void End() { live = false; }
    void Call(ECallbackType type) const
    {
        if (live) (*callback)(type);
    }

private:
    CNodeCallback* const callback;
    std::atomic<bool> live{true};
};

using Registrations = std::vector<std::shared_ptr<Registration>>;

// Exists during the operation. A callback that was deregistered meanwhile is skipped.
class CallbackList
{
public:
    void Add(const Registrations& added) { registrations.insert(registrations.end(), added.begin(), added.end()); }
    // Called while the lock of the map is held.
    void CallInside() const { Call(cbPostInsideLock); }
    void CallOutside() const { Call(cbPostOutsideLock); }

private:
    void Call(ECallbackType type) const
    {
        for (const std::shared_ptr<Registration>& registration : registrations)
            registration->Call(type);
    }

    Registrations registrations;
};

} // namespace GENAPI_NAMESPACE::runtime
