#include "producers/simulator/face/runtime.h"

#include "producers/simulator/face/call.h"
#include "producers/simulator/face/data_stream.h"

#include <unistd.h>
#include <utility>

namespace koro::simulator
{
namespace
{

Runtime runtime;

} // namespace

Runtime& Runtime::Instance() noexcept
{
    return runtime;
}

HandleRegistry& Handles() noexcept
{
    return runtime.Registry();
}

// Statics that running threads use must go after the runtime, so they have to come before it.
Runtime::Runtime()
{
    FindPixelFormat("");
    DataStream::TheId();
}

Runtime::~Runtime()
{
    initialised = false;
    if (!library) return;
    if (owner == getpid())
        library->Close();
    else
        new std::shared_ptr<Library>(std::move(library)); // its threads cannot be joined here: never destroyed
}

void Runtime::Init()
{
    const std::lock_guard lock(mutex);
    if (initCount > 0)
    {
        if (library->InitIsStrict()) throw Failure(GC_ERR_RESOURCE_IN_USE, "the library is initialised already");
        if (const CallFault* fault = library->Faults()->OnCall("GCInitLib")) throw InjectedFailure(*fault);
        ++initCount;
        return;
    }
    const Settings settings = LoadSettings();
    auto started = std::make_shared<Library>(settings);
    if (const CallFault* fault = started->Faults()->OnCall("GCInitLib")) throw InjectedFailure(*fault);
    library = std::move(started);
    registry.SetDeadHandleCode(settings.misbehaviour.deadHandleError);
    misbehaves = library->Faults()->ConcernsCalls();
    owner = getpid();
    initCount = 1;
    initialised = true;
}

void Runtime::Close()
{
    std::shared_ptr<Library> closing;
    {
        const std::lock_guard lock(mutex);
        if (initCount == 0) throw Failure(GC_ERR_NOT_INITIALIZED, "the library is not initialised");
        if (--initCount > 0) return;
        initialised = false;
        misbehaves = false;
        closing = std::move(library);
    }
    closing->Close();
}

std::shared_ptr<Library> Runtime::TheLibrary() const
{
    const std::lock_guard lock(mutex);
    if (!library) throw Failure(GC_ERR_NOT_INITIALIZED, "GCInitLib was not called");
    return library;
}

std::shared_ptr<FaultPlan> Runtime::CallFaults() const
{
    if (!misbehaves) return nullptr;
    const std::lock_guard lock(mutex);
    return library ? library->Faults() : nullptr;
}

} // namespace koro::simulator
