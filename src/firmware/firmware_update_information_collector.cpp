#include "firmware/firmware_update_information_collector.h"

#include "firmware/firmware_update_information.h"
#include "firmware/first_node_map.h"
#include "modules/device.h"

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

FirmwareUpdateInformationCollector::FirmwareUpdateInformationCollector(std::shared_ptr<Device> matchedDevice)
    : device(std::move(matchedDevice)), remoteNodeMap(FirstRemoteNodeMap(*device)->GenApiNodeMap())
{}

bool FirmwareUpdateInformationCollector::OnUpdateRead(const CFirmwareUpdateInfo& info)
{
    if (remoteNodeMap && !updater.FirmwareUpdateMatchesDevice(remoteNodeMap, info)) return true;
    updates.push_back(std::make_shared<FirmwareUpdateInformation>(info));
    return true;
}

} // namespace koro::internal
