// System: the opened producer with its interfaces.
#pragma once

#include "producers/kit/system.h"
#include "producers/simulator/face/interface.h"
#include "producers/simulator/face/plug_control.h"
#include "producers/simulator/kit.h"

#include <memory>
#include <string>

namespace koro::simulator
{

class Library;

class System final : public kit::System
{
public:
    explicit System(std::shared_ptr<Library> owningLibrary);

    Library& TheLibrary() const noexcept { return *library; }
    Port& ModulePort() override { return port; }
    // Null when it is not open.
    std::shared_ptr<Interface> FindOpenInterface(const std::string& id) const;

    PlugControl& Plugs() noexcept { return plugs; }

private:
    Interfaces PresentInterfaces(std::uint64_t timeout_ms) const override;
    std::shared_ptr<kit::Interface> MakeInterface(const std::shared_ptr<const InterfaceFacts>& found) override;
    bool SupportsEvent(EVENT_TYPE type) const noexcept override;
    std::size_t MaxBlockBytes(EVENT_TYPE type) const noexcept override;
    void OnClose() override;

    PortRegisters MakeRegisters();
    void AddInterfaceRegisters(RegisterMap& map);
    // The interface that the selector of the description shows; GC_ERR_NOT_AVAILABLE before the first update.
    const InterfaceModel& SelectedInterface() const;

    const std::shared_ptr<Library> library;
    PlugControl plugs;
    Port port;

    // Of the description; guarded by the lock of the registers.
    std::uint64_t interfaceSelector = 0;
    std::uint64_t updateTimeout_ms = 1000;
};

} // namespace koro::simulator
