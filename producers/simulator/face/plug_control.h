// PlugControl: pulls cameras out and plugs them in again, at the wish of features or of a script, and reports it by
// the system's connection event. Lets modules send events in the same way.
//
// Owned by its System. Any thread. One change at a time: its mutex comes before all others.
#pragma once

#include "producers/simulator/face/connection_script.h"
#include "producers/simulator/face/event_requests.h"
#include "producers/simulator/face/interface.h"

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace koro::simulator
{

class Library;
class System;

class PlugControl
{
public:
    PlugControl(System& owningSystem, const Library& library);

    void AddRegisters(RegisterMap& map);

    // Between these two the script runs, if it has times.
    void Start() { script.Start(); }
    void Stop() { script.Stop(); }
    // What the script may wait for. Whether the camera is unplugged in place of this frame of an acquisition.
    bool IsUnpluggedAt(const Camera& camera, std::uint64_t frame);
    // An update of the list has missed the camera, which is unplugged.
    void OnMissed(const Camera& camera);

    // EVENT_SIZE_MAX; 0: the system has no connection event.
    std::size_t RecordBytes() const noexcept { return settings.recordBytes; }

private:
    struct Place
    {
        std::shared_ptr<const InterfaceModel> interface;
        std::shared_ptr<Camera> camera;
        std::uint32_t numReplugs = 0; // guarded by mutex
    };

    // The camera that the selector of the description shows; GC_ERR_NOT_AVAILABLE when there are none.
    const Place& Selected() const;
    void PerformOnSelected(ConnectionStep::Kind kind);
    void Perform(const ConnectionStep& step);
    void SendOfSelected(const EventRequest& request);
    bool Unplug(const Place& place, const std::shared_ptr<Interface>& open);
    bool Replug(Place& place, const std::shared_ptr<Interface>& open);
    void Tell(const Place& place, const Interface& open, const ConnectionStep& step);

    System& system;
    const ConnectionSettings& settings;
    std::mutex mutex;
    std::vector<Place> places; // all cameras, in the order of the settings
    std::atomic<std::uint64_t> selector{0};
    EventRequests requests;
    ConnectionScript script; // last: its thread uses the others
};

} // namespace koro::simulator
