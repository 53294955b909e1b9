#include "firmware/firmware_updatable_device.h"

#include "base/exceptions.h"
#include "base/failures.h"
#include "firmware/first_node_map.h"
#include "modules/device_descriptor.h"
#include "modules/interface.h"
#include "nodes/command_node.h"
#include "nodes/integer_node.h"
#include "nodes/text.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

namespace
{

constexpr const char* retriesNodeName = "ControlChannelNumRetriesOnTimeout";
constexpr std::int64_t mostRetries = 3;
constexpr const char* resetNodeName = "DeviceReset";

constexpr std::uint64_t searchInterval_ms = 200;
constexpr std::uint64_t listUpdateTimeout_ms = 200;
// An update file can request a first wait of weeks, which nobody could end.
constexpr std::uint64_t longestFirstWait_ms = 3'600'000;

template <class TypedNode>
std::shared_ptr<TypedNode> FindTyped(NodeMap& map, const char* name, const char* kind)
{
    auto node = std::dynamic_pointer_cast<TypedNode>(map.FindNode(name));
    if (!node) throw InternalErrorException(std::string("Node cannot be cast to ") + kind + " node!");
    return node;
}

// A timeout that is too large becomes the largest number, which no clock reaches.
std::uint64_t ToNanoseconds(std::uint64_t time_ms)
{
    constexpr std::uint64_t factor = 1'000'000;
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    return time_ms > most / factor ? most : time_ms * factor;
}

} // namespace

FirmwareUpdatableDevice::FirmwareUpdatableDevice(
    std::shared_ptr<DeviceDescriptor> descriptor, std::uint64_t timeout_ms, SearchClock& searchClock)
    : deviceDescriptor(std::move(descriptor)), serialNumber(deviceDescriptor->SerialNumber()),
      displayName(deviceDescriptor->DisplayName()), key(deviceDescriptor->Key()), resetTimeout_ms(timeout_ms),
      clock(searchClock)
{}

void FirmwareUpdatableDevice::PrepareForFirmwareUpdate()
{
    device = deviceDescriptor->OpenDevice(GenTL::DEVICE_ACCESS_CONTROL);
    parentInterface = device->ParentInterface();
    LimitControlChannelRetries();
}

INodeMap* FirmwareUpdatableDevice::GetNodeMapOfDeviceToUpdate()
{
    return FirstRemoteNodeMap(*device)->GenApiNodeMap();
}

INodeMap* FirmwareUpdatableDevice::DeviceResetWhileUpdatingFirmware(unsigned int, unsigned int firstWait_ms)
{
    ExecuteReset();
    device.reset();
    device = Reopen(
        std::min<std::uint64_t>(firstWait_ms, std::max(resetTimeout_ms, longestFirstWait_ms)), resetTimeout_ms,
        searchInterval_ms, listUpdateTimeout_ms);
    LimitControlChannelRetries();
    return GetNodeMapOfDeviceToUpdate();
}

GENICAM_NAMESPACE::gcstring FirmwareUpdatableDevice::GetDisplayName()
{
    return ToGenApiText(displayName);
}

// A camera that writes its flash memory answers late: many retries would multiply each timeout.
void FirmwareUpdatableDevice::LimitControlChannelRetries()
{
    const auto map = FirstNodeMap(*device);
    if (!map->HasNode(retriesNodeName)) return;
    const auto retries = FindTyped<IntegerNode>(*map, retriesNodeName, "an integer");
    if (retries->AccessStatus() == RW) retries->SetValue(std::min(mostRetries, retries->Maximum()));
}

// Keeps no reference to the device, so that it closes when it is released.
void FirmwareUpdatableDevice::ExecuteReset()
{
    FindTyped<CommandNode>(*FirstRemoteNodeMap(*device), resetNodeName, "a command")->Execute();
}

// At least one pass is made, and only the timeout ends the search.
std::shared_ptr<Device> FirmwareUpdatableDevice::Reopen(
    std::uint64_t firstWait_ms, std::uint64_t timeout_ms, std::uint64_t interval_ms, std::uint64_t updateTimeout_ms)
{
    const std::uint64_t start_ns = clock.Now_ns();
    const std::uint64_t timeout_ns = ToNanoseconds(timeout_ms);
    for (std::uint64_t wait_ms = firstWait_ms;; wait_ms = interval_ms)
    {
        if (wait_ms > 0) clock.Sleep(wait_ms);
        if (auto found = Search(updateTimeout_ms)) return found;
        if (clock.Now_ns() - start_ns > timeout_ns)
        {
            throw TimeoutException(
                "Device could not be reopened within " + std::to_string(resetTimeout_ms) +
                " ms after reset (Device Key: " + key + ")!");
        }
    }
}

// One pass: the first device of the interface that has the serial number and opens. Without a new list nothing is
// opened, since the old one may still hold the device as it was.
std::shared_ptr<Device> FirmwareUpdatableDevice::Search(std::uint64_t updateTimeout_ms) const
{
    std::vector<std::shared_ptr<DeviceDescriptor>> candidates;
    Succeeds([&] {
        parentInterface->UpdateChildren(updateTimeout_ms);
        candidates = *parentInterface->Children();
    });
    std::shared_ptr<Device> found;
    for (auto candidate = candidates.begin(); candidate != candidates.end() && !found; ++candidate)
        Succeeds([&] { found = TryOpen(**candidate); });
    return found;
}

// Empty for another device, and for a device that cannot be used.
std::shared_ptr<Device> FirmwareUpdatableDevice::TryOpen(DeviceDescriptor& candidate) const
{
    if (candidate.SerialNumber() != serialNumber || !candidate.IsOpenable()) return nullptr;
    auto opened = candidate.OpenDevice(GenTL::DEVICE_ACCESS_CONTROL);
    if (opened->GetRemoteDevice()->NodeMaps().empty()) return nullptr;
    return opened;
}

} // namespace koro::internal
