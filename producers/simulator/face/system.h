// System: the opened producer with its interfaces.
#pragma once

#include "producers/kit/child_list.h"
#include "producers/simulator/face/interface.h"
#include "producers/simulator/face/module.h"
#include "producers/simulator/face/plug_control.h"

#include <memory>
#include <string>
#include <vector>

namespace koro::simulator
{

class Library;

class System final : public Module
{
public:
    explicit System(std::shared_ptr<Library> owningLibrary);

    const std::string& Id() const noexcept;
    Library& TheLibrary() const noexcept { return *library; }
    Port& ModulePort() override { return port; }

    // Whether the list differs from the one before: it is empty until the first update and never changes after it.
    bool UpdateInterfaces();
    std::size_t NumInterfaces() const;
    std::string InterfaceIdAt(std::uint32_t index) const;
    // By id or display name, listed or not.
    std::shared_ptr<const InterfaceModel> FindInterface(const std::string& name) const;
    std::shared_ptr<Interface> OpenInterface(const std::string& name);
    void Forget(const Interface& interface) { interfaces.Forget(interface); }
    // Null when it is not open.
    std::shared_ptr<Interface> FindOpenInterface(const std::string& id) const { return interfaces.Find(id); }

    PlugControl& Plugs() noexcept { return plugs; }

private:
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
    ChildList<Interface> interfaces;
    bool isListed = false; // guarded by mutex

    // Of the description; guarded by the lock of the registers.
    std::uint64_t interfaceSelector = 0;
    std::uint64_t updateTimeout_ms = 1000;
};

} // namespace koro::simulator
