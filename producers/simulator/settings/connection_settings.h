// What the settings say of unplugging cameras and plugging them in again, and of the records that report it.
#pragma once

#include "producers/simulator/settings/connection_record.h"
#include "producers/simulator/settings/event_request.h"
#include "producers/simulator/settings/json_reader.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace koro::simulator
{

struct ConnectionStep
{
    enum class Kind
    {
        Unplug,
        Replug,
        Tell, // a record alone
        Send  // an event of a module
    };
    std::string camera; // serial number
    Kind kind = Kind::Unplug;
    std::uint64_t after_ms = 0;       // since the step before
    std::uint64_t atFrame = 0;        // the frame of an acquisition that an unplugging waits for, and loses; 0: none
    std::uint64_t missingUpdates = 0; // of the list, that miss the camera, which a replugging waits for; 0: none
    RecordChanges record;             // of the first three kinds
    EventRequest event;               // of the last

    // In place of its time.
    bool WaitsForOccasion() const noexcept { return atFrame != 0 || missingUpdates != 0; }
};

struct ConnectionSettings
{
    std::size_t recordBytes = sizeof(ConnectionRecord); // EVENT_SIZE_MAX; 0: there is no such event
    bool resumes = true;                                // a replugged camera goes on where it was, with open handles
    bool staysListed = false;                           // an unplugged camera, over updates of the list
    bool listRecords = false;                           // a record about the list follows each one about a camera
    GC_ERROR deadCameraError = GC_ERR_IO;               // of calls that would need the camera
    std::vector<ConnectionStep> script;
    std::uint64_t repeat = 1; // how often the script runs
    bool isStepwise = false;  // steps are done when a feature asks for them
};

ConnectionSettings ReadConnection(const nlohmann::json& value, const std::string& place);

} // namespace koro::simulator
