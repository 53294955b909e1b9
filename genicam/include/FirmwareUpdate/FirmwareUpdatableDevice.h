// IFirmwareUpdatableDevice: the device to which an update is applied. Implemented by the application, which owns the
// device and its node maps.
#pragma once

#include <Base/GCString.h>
#include <FirmwareUpdate/Destructible.h>
#include <GenICamFwd.h>

namespace GENAPI_NAMESPACE
{

class GENFW_DECL_ABSTRACT IFirmwareUpdatableDevice : public IDestructible
{
public:
    virtual void PrepareForFirmwareUpdate() = 0;
    virtual INodeMap* GetNodeMapOfDeviceToUpdate() = 0;
    // Resets the device, waits, finds it again and opens it; returns its new node map. Nodes of the old map are not
    // used any more.
    virtual INodeMap* DeviceResetWhileUpdatingFirmware(
        unsigned int EstimatedDurationMs, unsigned int DelayEnumerationMs) = 0;
    // Not called after a failure.
    virtual void CleanupAfterFirmwareUpdate() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetDisplayName() = 0;
};

} // namespace GENAPI_NAMESPACE
