// CameraConnection: the modules above one camera, open, and the camera's descriptor.
//
// Owned by one command; its destructor closes from the interface up. One thread at a time.
#pragma once

#include "tools/koro/camera_selection.h"
#include "tools/koro/module_settings.h"
#include <koro/koro.hpp>

namespace koro::tool
{

class CameraConnection
{
public:
    // Loads the choice's producer and no other. System and interface get their settings as soon as they are open.
    // Throws koro::Error, or ToolError when the camera has gone meanwhile.
    explicit CameraConnection(const CameraChoice& choice, const ModuleSettings& settings = {});

    const koro::System& System() const { return system; }
    const koro::Interface& Interface() const { return cameraInterface; }
    const DeviceDescriptor& Descriptor() const { return descriptor; }

private:
    Library library;
    ProducerLibrary producer;
    koro::System system;
    koro::Interface cameraInterface;
    DeviceDescriptor descriptor;
};

} // namespace koro::tool
