// CameraConnection: the modules above one camera, open, and the camera's descriptor.
//
// Owned by one command, one at a time; its destructor closes from the interface up. One thread at a time.
#pragma once

#include "tools/koro/discovery.h"
#include "tools/koro/module_settings.h"
#include "tools/koro/opened_producer.h"
#include <koro/koro.hpp>

#include <memory>
#include <string>

namespace koro::tool
{

class CameraConnection
{
public:
    // Loads the choice's producer and no other, unless the discovery has it open. System and interface get their settings
    // as soon as they are open. Throws koro::Error, or ToolError when the camera has gone meanwhile.
    CameraConnection(const Discovery& discovery, const CameraChoice& choice, const ModuleSettings& settings = {});

    const koro::System& System() const { return producer->System(); }
    const koro::Interface& Interface() const { return producer->Interface(interfaceID); }
    const DeviceDescriptor& Descriptor() const { return descriptor; }

private:
    std::shared_ptr<OpenedProducer> producer;
    std::string interfaceID;
    DeviceDescriptor descriptor;
};

} // namespace koro::tool
