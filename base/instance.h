// Instance: common base of everything that an application can hold a handle for.
//
// It carries the destruction callbacks by which the handle tables tie a child's entry to its parent object.
// Any thread may add and remove callbacks.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

namespace koro::internal
{

class Instance
{
public:
    using DestructionCallback = std::function<void()>;
    using DestructionCallbackID = std::uint64_t;

    Instance() = default;
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    // Runs the callbacks that are left. An empty one among them ends the process with std::bad_function_call,
    // as any exception out of a destructor does.
    virtual ~Instance();

    // Returns the address of the stored callable, unique while it is stored.
    DestructionCallbackID AddDestructionCallback(DestructionCallback callback);
    // An unknown id is ignored.
    void RemoveDestructionCallback(DestructionCallbackID id);
    // Runs one before its time, and once. An unknown id is ignored.
    void RunDestructionCallback(DestructionCallbackID id);

protected:
    // For the class whose children's entries have to go before its own close call.
    void RunDestructionCallbacks();

private:
    std::unique_ptr<DestructionCallback> Take(DestructionCallbackID id);

    // Never held while a callback runs: callbacks take the locks of the handle tables, and the tables take this
    // one while they hold theirs.
    std::mutex destructionMutex;
    std::map<DestructionCallbackID, std::unique_ptr<DestructionCallback>> destructionCallbacks;
};

} // namespace koro::internal
