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

// `Source` returns the raw bytes by Info(role), which is called on the monitor's thread.
template <class Source, class Role, class CallbackHandle>
class TRoleBasedPropertyMonitor
{
public:
    using Roles = std::vector<Role>;
    using ChangedCallback = typename TCallbackManager<const Roles&>::Function;

    // Takes no lock, because the list of children holds its lock while it creates a descriptor.
    TRoleBasedPropertyMonitor(const Source& monitored, std::initializer_list<Role> initialRoles) : source(monitored)
    {
        for (const auto role : initialRoles)
            lastValues.try_emplace(role);
    }
    TRoleBasedPropertyMonitor(const TRoleBasedPropertyMonitor&) = delete;
    TRoleBasedPropertyMonitor& operator=(const TRoleBasedPropertyMonitor&) = delete;
    virtual ~TRoleBasedPropertyMonitor() = default;

    // A role that is already monitored keeps its last value.
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

    // Callbacks run on the monitor's thread and must not throw. The first registration starts the thread. Throws the
    // standard deadlock error inside a callback, and std::system_error when no thread can be started.
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

    // Afterwards the callback does not run any more. The last unregistration ends the thread, which takes at most 50 ms
    // plus the rest of a tick. Throws the standard deadlock error inside a callback.
    void UnregisterChangedCallback(CallbackHandle handle)
    {
        changedCallbacks.UnregisterCallback(handle);
        timer.StopUnless([&] { return !changedCallbacks.IsEmpty(); });
    }

    // Throws the standard deadlock error inside a callback.
    void RefuseInCallback() const { changedCallbacks.RefuseInCallback(); }

    // Ends the thread for good: a registration that would start it throws InternalErrorException from now on. The
    // registrations stay but are not called any more. Must not be called inside a callback.
    void End() { timer.End(); }

private:
    // One tick of the timer.
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
                    // A role that cannot be read counts as unchanged: a device may return with the same value.
                }
            }
        }
        if (!changed.empty()) changedCallbacks.TriggerCallback(changed);
    }

    const Source& source;
    std::unordered_map<Role, std::vector<std::uint8_t>> lastValues; // empty before the first read
    TCallbackManager<const Roles&> changedCallbacks;
    mutable std::mutex rolesMutex;              // guards lastValues, also while the producer is queried
    PeriodicTimer timer{[this] { Compare(); }}; // destroyed first, which ends the thread
};

} // namespace koro::internal
