// IFirmwareUpdateInfoCollector: receives the updates of a file while it is read. Implemented by the application.
#pragma once

#include <FirmwareUpdate/Destructible.h>
#include <FirmwareUpdate/FirmwareUpdateInfo.h>

namespace GENAPI_NAMESPACE
{

class GENFW_DECL_ABSTRACT IFirmwareUpdateInfoCollector : public IDestructible
{
public:
    // Returning false ends the reading.
    virtual bool OnUpdateRead(const CFirmwareUpdateInfo& FirmwareUpdateInfo) = 0;
};

} // namespace GENAPI_NAMESPACE
