// Event: one event from an EventController: the block as delivered, and access to the data that the producer decodes.
//
// Created by the controller, which it holds weakly; type and block stay readable after the controller has ended.
// Thread-safe.
#pragma once

#include "base/instance.h"
#include "base/once.h"
#include "gentl/info_accessor.h"
#include "nodes/event_source.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace koro::internal
{

class EventController;

class Event final : public TGenTLInfoAccessor<GenTL::EVENT_DATA_INFO_CMD_LIST>, public Instance, public EventSource
{
public:
    Event(
        GenTL::EVENT_HANDLE event, std::vector<std::uint8_t> block, std::int32_t eventType,
        const std::weak_ptr<EventController>& parentController, const std::shared_ptr<const GenTLProxy>& proxy);

    std::uint64_t ID() const; // queried at each call
    // Queries the producer once and accepts any data type; after a failure the next call tries again.
    const std::vector<std::uint8_t>& Data();
    const std::vector<std::uint8_t>& RawData() const override { return rawData; }
    std::int32_t Type() const { return type; }

    std::shared_ptr<EventController> ParentController() const;
    // A camera's events are received from the local device and belong to the maps of the remote device.
    std::shared_ptr<Port> PortOfNodes() const override;

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->EventGetDataInfo.Name(); }
    // The data are a part of the block and may be as large as the block.
    const ClaimBound& BoundOf(std::int32_t command) const override
    {
        return command == GenTL::EVENT_DATA_VALUE ? eventBlockBound : informationBound;
    }

    std::vector<std::uint8_t> data;
    const std::vector<std::uint8_t> rawData;
    const std::int32_t type;
    const GenTL::EVENT_HANDLE eventHandle; // of the controller at the time of the wait
    Once dataOnce;
    const std::weak_ptr<EventController> parent;
};

} // namespace koro::internal
