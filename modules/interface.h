// Interface: an opened GenTL interface, with the list of its devices.
//
// Owned by the handle table; holds its System weakly. Everything but Key() throws InternalErrorException once that
// has gone. Any thread; found and lost callbacks run on the thread of the update. The destructor closes the
// producer's interface.
#pragma once

#include "gentl/child_manager.h"
#include "modules/device_descriptor.h"
#include "modules/event_supporting_module.h"
#include "modules/interface_information.h"

#include <cstdint>
#include <memory>
#include <string>

namespace koro::internal
{

class System;

class Interface final : public InterfaceInformation,
                        public TGenTLChildManager<DeviceDescriptor, std::string, std::uint32_t, Interface>,
                        public EventSupportingModule
{
public:
    Interface(
        GenTL::IF_HANDLE handle, std::string interfaceID, const std::weak_ptr<System>& system,
        const std::shared_ptr<const GenTLProxy>& proxy);
    ~Interface() override;

    const std::string& Key() const { return key; }
    std::string ID() const;

    std::shared_ptr<System> ParentSystem() const;
    std::shared_ptr<Module> ParentModule() const override;

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->IFGetInfo.Name(); }

    GenTL::GC_ERROR ProducerUpdateChildren(GenTL::bool8_t* changed, std::uint64_t timeout_ms) override;
    GenTL::GC_ERROR ProducerNumChildren(std::uint32_t* count) override;
    GenTL::GC_ERROR ProducerChildID(std::uint32_t index, std::string* childID) override;
    const char* UpdateFunctionName() const override { return gentl.Proxy()->IFUpdateDeviceList.Name(); }
    const char* NumChildrenFunctionName() const override { return gentl.Proxy()->IFGetNumDevices.Name(); }
    const char* ChildIDFunctionName() const override { return gentl.Proxy()->IFGetDeviceID.Name(); }
    std::shared_ptr<const void> HoldParent() const override;
    std::shared_ptr<Interface> SharedOwner() override;

    const std::weak_ptr<System> parent;
    const std::string key;
    const std::string id;
};

} // namespace koro::internal
