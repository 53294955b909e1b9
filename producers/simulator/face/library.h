// Library: the producer between GCInitLib and GCCloseLib: settings, cameras, the one System. Any thread.
#pragma once

#include "producers/kit/producer.h"
#include "producers/simulator/face/faulty_calls.h"
#include "producers/simulator/face/interface.h"
#include "producers/simulator/face/system.h"
#include "producers/simulator/kit.h"
#include "producers/simulator/settings/connection_settings.h"
#include "producers/simulator/settings/settings.h"

#include <memory>
#include <vector>

namespace koro::simulator
{

class Library final : public Producer
{
public:
    explicit Library(const Settings& settings);

    const std::vector<std::shared_ptr<const InterfaceModel>>& Interfaces() const noexcept { return interfaces; }
    const ConnectionSettings& Connection() const noexcept { return connection; }

    bool InitIsStrict() const noexcept override { return strictInit; }
    std::shared_ptr<CallWatch> Watch() const override;
    GC_ERROR DeadHandleCode() const noexcept override { return deadHandleCode; }
    std::size_t PortWriteLimit() const noexcept override { return portWriteLimit; }

private:
    std::shared_ptr<kit::System> MakeSystem() override;
    void OnOpened(kit::System& system) override;

    const bool strictInit;
    const std::size_t portWriteLimit;
    const GC_ERROR deadHandleCode;
    const ConnectionSettings connection;
    std::vector<std::shared_ptr<const InterfaceModel>> interfaces;
    const std::shared_ptr<FaultyCalls> faults;
};

} // namespace koro::simulator
