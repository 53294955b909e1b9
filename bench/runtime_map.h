// RuntimeMap: a node map of the GenICam runtime over the registers of the zero-cost producer, without the library. It
// makes the same calls of the producer that the library makes.
#pragma once

#include "bench/producer_access.h"

#include <GenApi/NodeMapFactory.h>
#include <GenICam.h>
#include <memory>
#include <string>

namespace koro::bench
{

struct NodeMapDestroyer
{
    void operator()(GENAPI_NAMESPACE::INodeMap* map) const { GENAPI_NAMESPACE::CastToIDestroy(map)->Destroy(); }
};

using OwnedNodeMap = std::unique_ptr<GENAPI_NAMESPACE::INodeMap, NodeMapDestroyer>;

class RuntimeMap : private GENAPI_NAMESPACE::IPort
{
public:
    // The port outlives the map.
    RuntimeMap(const std::string& xml, const DirectPort& called)
        : port(called), factory(GENAPI_NAMESPACE::ContentType_Xml, xml.data(), xml.size()), map(factory.CreateNodeMap())
    {
        map->Connect(this);
    }

    GENAPI_NAMESPACE::INodeMap* Get() const { return map.get(); }
    GENAPI_NAMESPACE::INode* Node(const char* name) const { return map->GetNode(name); }

private:
    void Read(void* buffer, std::int64_t address, std::int64_t length) override
    {
        port.Read(static_cast<std::uint64_t>(address), buffer, static_cast<std::size_t>(length));
    }
    void Write(const void* buffer, std::int64_t address, std::int64_t length) override
    {
        port.Write(static_cast<std::uint64_t>(address), buffer, static_cast<std::size_t>(length));
    }
    GENAPI_NAMESPACE::EAccessMode GetAccessMode() const override { return GENAPI_NAMESPACE::RW; }

    const DirectPort& port;
    GENAPI_NAMESPACE::CNodeMapFactory factory;
    const OwnedNodeMap map;
};

} // namespace koro::bench
