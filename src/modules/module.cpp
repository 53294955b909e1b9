#include "modules/module.h"

#include "gentl/port.h"
#include "modules/description_retrieval.h"
#include "nodes/node_map.h"

namespace koro::internal
{

Module::Module(GenTL::PORT_HANDLE handle, const std::shared_ptr<const GenTLProxy>& proxy)
    : port(std::make_shared<internal::Port>(handle, proxy))
{}

Module::~Module() = default;

GenTL::PORT_HANDLE Module::Handle() const
{
    return port->Handle();
}

std::vector<std::shared_ptr<NodeMap>> Module::NodeMaps()
{
    nodeMapsOnce.Run([this] { nodeMaps = RetrieveNodeMaps(*this); });
    return nodeMaps;
}

} // namespace koro::internal
