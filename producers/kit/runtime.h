// Runtime: what exists once in a loaded file: the handle registry, the count of GCInitLib, the producer that it made.
//
// A producer defines one, as a static object. Statics that its threads use are constructed before it, in the same
// source file, so that they outlive it. Any thread. Destroyed when the file is unloaded or the process ends; it then
// closes what the consumer left open.
#pragma once

#include "producers/kit/handle_registry.h"
#include "producers/kit/producer.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <sys/types.h>

namespace koro::kit
{

class Runtime
{
public:
    // `makeProducer` runs in the first GCInitLib; what it throws ends that call.
    explicit Runtime(std::function<std::shared_ptr<Producer>()> makeProducer);
    Runtime(const Runtime&) = delete;
    Runtime& operator=(const Runtime&) = delete;
    ~Runtime();

    static Runtime& Instance() noexcept;

    void Init();
    void Close();
    bool IsInitialised() const noexcept { return initialised; }

    // Throws GC_ERR_NOT_INITIALIZED when there is none.
    std::shared_ptr<Producer> TheProducer() const;
    // Null when calls need not be looked at.
    std::shared_ptr<CallWatch> Watch() const;
    // The newest version whose functions are answered.
    GenTLVersion Newest() const noexcept { return {1, newestMinor}; }

    HandleRegistry& Registry() noexcept { return registry; }

private:
    void Start();

    const std::function<std::shared_ptr<Producer>()> make;
    HandleRegistry registry;
    std::atomic<bool> initialised{false};
    std::atomic<bool> isWatched{false};
    std::atomic<std::uint32_t> newestMinor{0};

    mutable std::mutex mutex; // guards all below
    std::uint64_t initCount = 0;
    pid_t owner = 0; // the process that initialised: a fork has none of its threads
    std::shared_ptr<Producer> producer;
    std::shared_ptr<CallWatch> watch;
};

} // namespace koro::kit
