// EventSource: the information about an event that a node map needs to present its data as nodes. Events implement it,
// so node maps do not depend on modules and event controllers.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

namespace koro::internal
{

class Port;

class EventSource
{
public:
    // The port whose node maps show the event's data; null for an event without such data. Throws
    // InternalErrorException after the event's module has ended.
    virtual std::shared_ptr<Port> PortOfNodes() const = 0;
    // The block as the producer delivered it.
    virtual const std::vector<std::uint8_t>& RawData() const = 0;

protected:
    ~EventSource() = default;
};

} // namespace koro::internal
