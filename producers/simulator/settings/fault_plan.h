// FaultPlan: the misbehaviour that the settings ask for, and the counting that makes it come at the same call every
// time.
//
// One for each start of the library. Any thread.
#pragma once

#include "producers/kit/gentl.h"
#include "producers/kit/info_value.h"
#include "producers/simulator/frames/chunks.h"
#include "producers/simulator/kit.h"
#include "producers/simulator/settings/file_access.h"

#include <atomic>
#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace koro::simulator
{

inline constexpr std::uint64_t everyTime = UINT64_MAX;

// Occurrences first .. first + count - 1, counted from 1.
struct Occurrences
{
    std::uint64_t first = 1;
    std::uint64_t count = 1;

    bool Contains(std::uint64_t number) const noexcept { return number >= first && number - first < count; }
};

// What happens to calls of one function.
struct CallFault
{
    std::string function;
    Occurrences calls;
    std::uint64_t delay_ms = 0;
    GC_ERROR error = GC_ERR_SUCCESS;         // success: the call is only delayed
    GC_ERROR lastErrorCode = GC_ERR_SUCCESS; // what GCGetLastError returns afterwards; as a rule the same as `error`
    std::string text = "a failure that the settings ask for";
};

// What an info command of one function answers instead of the truth.
struct InfoFault
{
    std::string function;
    std::int32_t command = 0;
    GC_ERROR error = GC_ERR_SUCCESS;
    std::optional<INFO_DATATYPE> type;
    std::optional<std::string> bytes;       // text with terminator, or raw bytes
    std::optional<std::int64_t> number;     // in the width of the (new) type
    std::optional<std::size_t> size;        // cut or filled with zeros to that many bytes
    std::optional<std::size_t> claimedSize; // returned by size queries only
};

// What happens to frames of one camera, counted from the start of the acquisition.
struct FrameFault
{
    std::string camera; // serial number, "*" for all
    Occurrences frames;
    std::optional<std::size_t> deliveredLines; // incomplete: so many lines arrive
    std::uint64_t late_ms = 0;
    ChunkSpoil chunkSpoil = ChunkSpoil::None;
};

// When a camera is unplugged and plugged in again.
struct DeviceFault
{
    std::string camera;
    std::uint64_t vanishAtFrame = 0;  // of the n-th frame of an acquisition nothing arrives any more; 0 never
    std::uint64_t vanishAtUpdate = 0; // in the n-th update of its interface's list; 0 never
    std::uint64_t missingUpdates = 0; // so many updates find it missing, then it is back; 0: for good
};

// What happens to file operations of one camera, counted from GCInitLib on.
struct FileFault
{
    std::string camera;
    std::optional<FileName> file;           // nothing: any
    std::optional<FileOperation> operation; // nothing: any
    Occurrences executions;
    std::uint64_t busyPolls = 0;             // so often the command says that it is not done
    FileStatus status = FileStatus::Success; // success: as it went
    std::uint64_t movedBytes = UINT64_MAX;   // more are not moved at once
    GC_ERROR error = GC_ERR_SUCCESS;         // of the access that starts the operation
};

struct Misbehaviour
{
    std::vector<CallFault> calls;
    std::vector<InfoFault> info;
    std::vector<FrameFault> frames;
    std::vector<DeviceFault> devices;
    std::vector<FileFault> files;
    std::size_t portWriteLimit = 0; // bytes of one write, 0 unlimited
    GC_ERROR deadHandleError = GC_ERR_INVALID_HANDLE;
};

class FaultPlan
{
public:
    explicit FaultPlan(const Misbehaviour& misbehaviour);

    // False: calls and info queries need not ask at all.
    bool ConcernsCalls() const noexcept { return !callFaults.empty() || !infoFaults.empty(); }

    // Counts the call, waits the delay on the calling thread; the fault to answer with, or null.
    const CallFault* OnCall(std::string_view function);

    // Null for a command that answers the truth.
    const InfoFault* FindInfo(std::string_view function, std::int32_t command) const noexcept;

private:
    struct CountedFault
    {
        CallFault fault;
        std::atomic<std::uint64_t> calls{0};
    };

    std::deque<CountedFault> callFaults;
    std::vector<InfoFault> infoFaults;
};

// Turns the true answer into the one asked for. Throws when that is an error.
InfoValue Falsify(const InfoFault& fault, InfoValue truth);

} // namespace koro::simulator
