// TRoleBasedPropertyMonitor: reports changed information of an object, by querying it at an interval.
//
// A role is the number of an information command. While a callback is registered, a thread of the monitor reads the
// roles one by one, compares their bytes with the previous ones and reports the roles that differ. The first report
// contains every role that has a value. Roles and interval can be changed at any time; without a callback there is no
// thread and no query. Thread-safe, but not to be ended on its own thread.
#pragma once

#include "base/callback_registry.h"
#include "base/periodic_timer.h"

#include <cstdint>
#include <initializer_list>
#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

namespace koro::internal
{

// `Source` answers Info(role) with the raw bytes. It is asked on the monitor's thread.
template <class Source, class Role, class CallbackHandle>
class TRoleBasedPropertyMonitor
{
public:
    using Roles = std::vector<Role>;
    using ChangedCallback = typename TCallbackManager<const Roles&>::Function;

    // Takes no lock: the list of children holds its own while it makes a descriptor.
    TRoleBasedPropertyMonitor(const Source& monitored, std::initializer_list<Role> initialRoles) : source(monitored)
    {
        for (const auto role : initialRoles)
            lastValues.try_emplace(role);
    }
    TRoleBasedPropertyMonitor(const TRoleBasedPropertyMonitor&) = delete;
    TRoleBasedPropertyMonitor& operator=(const TRoleBasedPropertyMonitor&) = delete;
    virtual ~TRoleBasedPropertyMonitor() = default;

    // A role that is there already keeps its last value.
    void AddRole(Role role)
    {
        const std::lock_guard lock(rolesMutex);
        lastValues.try_emplace(role);
    }

    // An absent role is ignored.
    void RemoveRole(Role role)
    {
        const std::lock_guard lock(rolesMutex);
        lastValues.erase(role);
    }

    bool IsRoleMonitored(Role role) const
    {
        const std::lock_guard lock(rolesMutex);
        return lastValues.count(role) > 0;
    }

    std::uint64_t UpdateInterval_ms() const noexcept { return timer.Interval_ms(); }
    void SetUpdateInterval_ms(std::uint64_t value) noexcept { timer.SetInterval_ms(value); }

    // Callbacks run on the monitor's thread and must not throw. The first one starts the thread. Throws the standard
    // deadlock error inside a callback, and std::system_error when no thread is to be had.
    CallbackHandle RegisterChangedCallback(ChangedCallback callback)
    {
        const auto handle = changedCallbacks.RegisterCallback(std::move(callback));
        try
        {
            timer.Start();
        }
        catch (...)
        {
            changedCallbacks.UnregisterCallback(handle);
            throw;
        }
        return const_cast<CallbackHandle>(handle);
    }

    // After it the callback does not run any more. The last one ends the thread, which takes at most 50 ms and what is
    // left of a tick. Throws the standard deadlock error inside a callback.
    void UnregisterChangedCallback(CallbackHandle handle)
    {
        changedCallbacks.UnregisterCallback(handle);
        timer.StopUnless([&] { return !changedCallbacks.IsEmpty(); });
    }

    // Throws the standard deadlock error inside a callback.
    void RefuseInCallback() const { changedCallbacks.RefuseInCallback(); }

    // Ends the thread for good: from now on a registration that would start one throws InternalErrorException. The
    // registrations stand and are not called any more. Not inside a callback.
    void End() { timer.End(); }

private:
    // A tick.
    void Compare()
    {
        Roles changed;
        {
            const std::lock_guard lock(rolesMutex);
            for (auto& [role, lastValue] : lastValues)
            {
                try
                {
                    auto value = source.Info(role).bytes;
                    if (value == lastValue) continue;
                    changed.push_back(role);
                    lastValue = std::move(value);
                }
                catch (...)
                {
                    // What cannot be read has not changed: a device may come back with the same value.
                }
            }
        }
        if (!changed.empty()) changedCallbacks.TriggerCallback(changed);
    }

    const Source& source;
    std::unordered_map<Role, std::vector<std::uint8_t>> lastValues; // empty before the first read
    TCallbackManager<const Roles&> changedCallbacks;
    mutable std::mutex rolesMutex;              // over lastValues, also while the producer is asked
    PeriodicTimer timer{[this] { Compare(); }}; // its end, the first of all, ends the thread
};

} // namespace koro::internal
