#include "producers/kit/runtime.h"

#include "producers/kit/failure.h"

#include <unistd.h>
#include <utility>

namespace koro::kit
{
namespace
{

Runtime* instance = nullptr; // set while the file is loaded

} // namespace

Runtime& Runtime::Instance() noexcept
{
    return *instance;
}

HandleRegistry& Handles() noexcept
{
    return instance->Registry();
}

Runtime::Runtime(std::function<std::shared_ptr<Producer>()> makeProducer) : make(std::move(makeProducer))
{
    instance = this;
}

Runtime::~Runtime()
{
    initialised = false;
    if (!producer) return;
    if (owner == getpid())
        producer->Close();
    else
        new std::shared_ptr<Producer>(std::move(producer)); // its threads cannot be joined here: never destroyed
}

void Runtime::Init()
{
    const std::lock_guard lock(mutex);
    if (initCount > 0)
    {
        if (producer->InitIsStrict()) throw Failure(GC_ERR_RESOURCE_IN_USE, "the library is initialised already");
        if (watch) watch->OnCall("GCInitLib");
    }
    else
        Start();
    ++initCount;
}

void Runtime::Start()
{
    auto started = make();
    auto startedWatch = started->Watch();
    if (startedWatch) startedWatch->OnCall("GCInitLib");
    producer = std::move(started);
    watch = std::move(startedWatch);
    registry.SetDeadHandleCode(producer->DeadHandleCode());
    const ProducerFacts& facts = producer->Facts();
    newestMinor = facts.answersNewerFunctions ? newestVersion.minor : facts.claimed.minor;
    isWatched = watch != nullptr;
    owner = getpid();
    initialised = true;
}

void Runtime::Close()
{
    std::shared_ptr<Producer> closing;
    {
        const std::lock_guard lock(mutex);
        if (initCount == 0) throw Failure(GC_ERR_NOT_INITIALIZED, "the library is not initialised");
        if (--initCount > 0) return;
        initialised = false;
        isWatched = false;
        watch = nullptr;
        closing = std::move(producer);
    }
    closing->Close();
}

std::shared_ptr<Producer> Runtime::TheProducer() const
{
    const std::lock_guard lock(mutex);
    if (!producer) throw Failure(GC_ERR_NOT_INITIALIZED, "GCInitLib was not called");
    return producer;
}

std::shared_ptr<CallWatch> Runtime::Watch() const
{
    if (!isWatched) return nullptr;
    const std::lock_guard lock(mutex);
    return watch;
}

} // namespace koro::kit
