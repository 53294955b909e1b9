// Script: what a test says to a scripted producer, and what it reads back.
//
// The producer exports KoroScript() beside the functions of the standard. The script lives in the loaded file and goes
// with it; Reset() brings back the well-behaved producer. Any thread, also from inside a hook.
#pragma once

#include "gentl/api/gentl.h"
#include "producers/scripted/tree.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace scripted
{

// What GCGetLastError answers in place of the truth. For its own result see Script::Answer.
struct LastError
{
    std::optional<GenTL::GC_ERROR> code{}; // the true one if empty
    std::optional<std::string> text{};     // bytes; a terminator is added
    bool terminated = true;                // false: the text ends without one
    bool writesCode = true;
    std::optional<std::size_t> claimedSize{}; // of the size query
};

using Interceptor = std::function<std::optional<GenTL::GC_ERROR>(const std::vector<std::string>& arguments)>;

class Script
{
public:
    virtual void Reset() = 0;

    // Results. A set answer is given without acting; GC_ERR_SUCCESS too.
    virtual void Answer(const std::string& function, GenTL::GC_ERROR result) = 0;
    // Counts calls of this function from now on; the first is 1.
    virtual void AnswerAtCall(const std::string& function, std::uint64_t call, GenTL::GC_ERROR result) = 0;
    virtual void AnswerAsUsual(const std::string& function) = 0;
    virtual void SetLastError(const LastError& answer) = 0;
    // A second GCInitLib answers GC_ERR_RESOURCE_IN_USE and one GCCloseLib ends all; by default they count.
    virtual void SetStrictInit(bool strict) = 0;

    // Outputs. `number` is the info command, or the index of the functions that deliver an id.
    // `index` narrows the answer to one URL or part.
    virtual void SetInfo(
        const std::string& function, std::int32_t number, const Info& answer,
        std::optional<std::uint32_t> index = std::nullopt) = 0;
    // Of GCReadPort and GCWritePort: the bytes that one transfer does at most, with success.
    virtual void SetCount(const std::string& function, std::uint32_t count) = 0;
    // An empty value: pbChanged is left unwritten.
    virtual void SetChanged(const std::string& function, std::optional<GenTL::bool8_t> changed) = 0;

    // Runs at each entry of the function on the caller's thread, with no lock held; it may block or throw.
    virtual void OnEntry(const std::string& function, std::function<void()> hook) = 0;
    // The same, behind those that are there, with the arguments as the journal has them; the first answer that is not
    // empty is given without acting.
    virtual void Intercept(const std::string& function, Interceptor interceptor) = 0;
    // Holds what hooks refer to until Reset(), or until the file's static destructors.
    virtual void Keep(std::shared_ptr<void> object) = 0;

    // The modules that the producer has. Open ones live on when they leave the tree.
    virtual void Edit(const std::function<void(Tree&)>& edit) = 0;

    // Fills the oldest queued buffer of the open stream and hands it out. Without one it counts an underrun; both
    // only while acquiring. Returns whether a buffer was filled.
    virtual bool Deliver(const std::string& streamID, const Frame& frame = Frame()) = 0;
    // Queues an entry, if the event is registered on the open module. Returns whether it is.
    virtual bool Fire(const std::string& moduleID, GenTL::EVENT_TYPE type, const std::string& block) = 0;
    // The handle of an open module, for blocks that carry one; null when it is not open.
    virtual void* HandleOf(const std::string& moduleID) const = 0;
    // Blocks until that many threads wait inside EventGetData.
    virtual void AwaitWaiters(std::size_t count) = 0;

    // The calls in order, as "IFOpenDevice(if0, if0-dev0, 3)"; info queries are marked "size" or "data".
    virtual std::vector<std::string> Journal() const = 0;
    virtual void ClearJournal() = 0;
    virtual void KeepJournal(bool keep) = 0;

    // Ids of what the consumer has open or registered: modules, buffers as "<stream>/<private pointer>", events.
    virtual std::vector<std::string> Open() const = 0;
    // GCInitLib less GCCloseLib.
    virtual std::int64_t InitCount() const = 0;

    // Conveniences.
    void AnswerOnce(const std::string& function, GenTL::GC_ERROR result) { AnswerAtCall(function, 1, result); }

protected:
    ~Script() = default;
};

// The exported function's type and name.
using GetScript = Script* (*)();
inline constexpr const char* getScriptName = "KoroScript";

} // namespace scripted
