// CFirmwareUpdateDefaultInfoCollector: stores every update of a file.
#pragma once

#include <FirmwareUpdate/FirmwareUpdateInfoCollector.h>
#include <vector>

namespace GENAPI_NAMESPACE
{

class CFirmwareUpdateDefaultInfoCollector : public IFirmwareUpdateInfoCollector
{
public:
    bool OnUpdateRead(const CFirmwareUpdateInfo& FirmwareUpdateInfo) override
    {
        firmwareUpdateInfoList.push_back(FirmwareUpdateInfo);
        return true;
    }

    std::vector<CFirmwareUpdateInfo> firmwareUpdateInfoList;
};

} // namespace GENAPI_NAMESPACE
