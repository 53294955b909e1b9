// FirmwareUpdateProgressObserver: the callbacks of an application that observes updates. There are six kinds of
// reports, each with any number of callbacks.
//
// Owned by the handle table, and by an update while it runs. Thread-safe. Reports are made on the thread that updates,
// one at a time, while the mutex of their callback list is held.
#pragma once

#include "base/callback_registry.h"
#include "base/instance.h"

#include <cstdint>
#include <memory>
#include <string>

namespace koro::internal
{

class FirmwareUpdateInformation;

// The runtime's numbers (EFirmwareUpdateProgressStepType), including those that this header does not name.
enum class FirmwareUpdateStep : std::int32_t
{
};

template <class... Arguments>
using Trigger = TCallbackManager<Arguments...>;

class FirmwareUpdateProgressObserver final : public Instance
{
public:
    // The numbers are durations that the update file expects, in ms.
    Trigger<std::shared_ptr<FirmwareUpdateInformation>, std::uint32_t> updateStarted;
    Trigger<FirmwareUpdateStep, std::uint32_t, std::string> updateStepStarted; // description
    Trigger<FirmwareUpdateStep, double> updateStepProgressChanged;             // percent
    Trigger<FirmwareUpdateStep> updateStepFinished;
    Trigger<> updateFinished;
    Trigger<std::string> updateFailed; // the reason
};

} // namespace koro::internal
