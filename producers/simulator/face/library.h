// Library: the producer between GCInitLib and GCCloseLib: settings, cameras, the one System. Any thread.
#pragma once

#include "producers/kit/child_list.h"
#include "producers/simulator/face/interface.h"
#include "producers/simulator/face/system.h"
#include "producers/simulator/settings/connection_settings.h"
#include "producers/simulator/settings/fault_plan.h"
#include "producers/simulator/settings/settings.h"

#include <memory>
#include <string>
#include <vector>

namespace koro::simulator
{

class Library : public std::enable_shared_from_this<Library>
{
public:
    explicit Library(const Settings& settings);

    const std::string& Id() const noexcept { return id; }
    const std::string& TLType() const noexcept { return tlType; }
    bool InitIsStrict() const noexcept { return strictInit; }
    const std::vector<std::shared_ptr<const InterfaceModel>>& Interfaces() const noexcept { return interfaces; }
    const std::shared_ptr<FaultPlan>& Faults() const noexcept { return faults; }
    std::uint32_t VersionMajor() const noexcept { return versionMajor; }
    std::uint32_t VersionMinor() const noexcept { return versionMinor; }
    std::size_t PortWriteLimit() const noexcept { return portWriteLimit; }
    const ConnectionSettings& Connection() const noexcept { return connection; }

    // The loaded file.
    static std::string PathName();

    // GCGetInfo and TLGetInfo.
    InfoValue Info(TL_INFO_CMD command) const;

    std::shared_ptr<System> OpenSystem();
    void Forget(const System& system) { systems.Forget(system); }
    void Close() { systems.CloseAll(); }

private:
    const std::string id = "zvr_koro_simulator";
    std::string tlType;
    const std::uint32_t versionMajor;
    const std::uint32_t versionMinor;
    const bool strictInit;
    const std::size_t portWriteLimit;
    const ConnectionSettings connection;
    std::vector<std::shared_ptr<const InterfaceModel>> interfaces;
    std::shared_ptr<FaultPlan> faults;
    ChildList<System> systems; // at most one
};

} // namespace koro::simulator
