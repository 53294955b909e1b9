// InterfaceDescriptor: an interface in the list of a system, opened or not.
//
// Held by the child list of its System, which it holds weakly. Every operation except Key() throws
// InternalErrorException after the system has ended. Has no link to the interfaces that were opened from it.
// Thread-safe.
#pragma once

#include "modules/interface_information.h"
#include "modules/module.h"

#include <cstdint>
#include <memory>
#include <string>

namespace koro::internal
{

class Interface;
class System;

class InterfaceDescriptor final : public InterfaceInformation, public ModuleDescriptor
{
public:
    InterfaceDescriptor(
        std::string interfaceID, const std::shared_ptr<System>& system, const std::shared_ptr<const GenTLProxy>& proxy);

    const std::string& Key() const { return key; }
    std::string ID() const override;

    std::shared_ptr<System> ParentSystem() const;

    std::shared_ptr<Interface> OpenInterface() const;

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->TLGetInterfaceInfo.Name(); }

    const std::weak_ptr<System> parent;
    const std::string key;
    const std::string id;
};

} // namespace koro::internal
