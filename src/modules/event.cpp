#include "modules/event.h"

#include "base/expiring.h"
#include "modules/device.h"
#include "modules/event_controller.h"
#include "modules/remote_device.h"

namespace koro::internal
{

using namespace GenTL;

namespace
{

// Whether the event's data belong to nodes of the module that the event came from.
bool HasDataForNodes(std::int32_t eventType)
{
    return eventType == EVENT_FEATURE_INVALIDATE || eventType == EVENT_FEATURE_CHANGE || eventType == EVENT_MODULE ||
           eventType >= EVENT_CUSTOM_ID;
}

} // namespace

Event::Event(
    EVENT_HANDLE event, std::vector<std::uint8_t> block, std::int32_t eventType,
    const std::weak_ptr<EventController>& parentController, const std::shared_ptr<const GenTLProxy>& proxy)
    : TGenTLInfoAccessor(GenTLCaller(proxy)), rawData(std::move(block)), type(eventType), eventHandle(event),
      parent(parentController)
{}

std::uint64_t Event::ID() const
{
    return NumericInfo<std::uint64_t>(EVENT_DATA_NUMID, INFO_DATATYPE_UINT64);
}

const std::vector<std::uint8_t>& Event::Data()
{
    dataOnce.Run([this] { data = Info(EVENT_DATA_VALUE).bytes; });
    return data;
}

std::shared_ptr<EventController> Event::ParentController() const
{
    return LockOrThrow(parent);
}

std::shared_ptr<Port> Event::PortOfNodes() const
{
    const auto module = ParentController()->ParentModule();
    if (type != EVENT_REMOTE_DEVICE) return HasDataForNodes(type) ? module->Port() : nullptr;

    const auto device = std::dynamic_pointer_cast<Device>(module);
    if (!device) throw InternalErrorException("Violation of GenTL remote device event specification detected!");
    return device->GetRemoteDevice()->Port();
}

GC_ERROR Event::QueryInfo(std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    return gentl.Result<&GenTLProxy::EventGetDataInfo>(
        eventHandle, static_cast<const void*>(rawData.data()), rawData.size(), command, dataType, buffer, size);
}

} // namespace koro::internal
