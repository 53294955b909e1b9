// Runtime: what exists once in a loaded file: the handle registry, the count of GCInitLib, the library it made.
//
// Any thread. Destroyed when the file is unloaded or the process ends, where it closes what the consumer left open.
#pragma once

#include "producers/kit/handle_registry.h"
#include "producers/simulator/face/library.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <sys/types.h>

namespace koro::simulator
{

class Runtime
{
public:
    static Runtime& Instance() noexcept;

    Runtime();
    Runtime(const Runtime&) = delete;
    Runtime& operator=(const Runtime&) = delete;
    ~Runtime();

    void Init();
    void Close();
    bool IsInitialised() const noexcept { return initialised; }

    // Throws GC_ERR_NOT_INITIALIZED when there is none.
    std::shared_ptr<Library> TheLibrary() const;
    // Null when calls need not be looked at.
    std::shared_ptr<FaultPlan> CallFaults() const;

    HandleRegistry& Registry() noexcept { return registry; }

private:
    HandleRegistry registry;
    std::atomic<bool> initialised{false};
    std::atomic<bool> misbehaves{false};

    mutable std::mutex mutex; // guards all below
    std::uint64_t initCount = 0;
    pid_t owner = 0; // the process that initialised: a fork has none of its threads
    std::shared_ptr<Library> library;
};

} // namespace koro::simulator
