#include "nodes/node_map.h"

#include "base/exceptions.h"
#include "base/filesystem.h"
#include "gentl/bounds.h"
#include "gentl/port.h"
#include "nodes/make_node.h"
#include "nodes/node.h"
#include "nodes/translate_genapi_exceptions.h"

#include <GenApi/INode.h>
#include <GenApi/NodeMapFactory.h>
#include <utility>

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

namespace
{

// GenApi opens the file itself: it must neither wait for a pipe nor read a whole disk. A missing file is left to GenApi
// to report.
void CheckDescriptionFile(const std::string& path)
{
    std::error_code error;
    const auto type = fs::status(path, error).type();
    if (type == fs::file_type::none || type == fs::file_type::not_found) return;
    if (type != fs::file_type::regular)
    {
        throw InternalErrorException("The description file (" + path + ") is no regular file!");
    }
    const auto size = fs::file_size(path, error);
    if (!error && size > descriptionBound.limit)
    {
        throw InternalErrorException(
            "The description file (" + path + ") holds " + std::to_string(size) + " bytes, the bound is " +
            std::to_string(descriptionBound.limit) + "!");
    }
}

CNodeMapFactory FactoryOverFile(const std::string& path)
{
    CheckDescriptionFile(path);
    return CNodeMapFactory(ContentType_Xml, path.c_str(), CacheUsage_Automatic, false);
}

} // namespace

NodeMap::NodeMap(const std::shared_ptr<internal::Port>& connectedPort, NodeMapDescription source)
    : port(connectedPort ? connectedPort : throw InternalErrorException("port must not be a null pointer!")),
      genApiPort(port), description(std::move(source))
{}

// GenApi's nodes destroy their callbacks. Only then are the delegates released to which the callbacks refer, and which
// also hold the nodes. Nothing is deregistered one by one: that would take the lock, and a thread that holds it now
// cannot release it.
NodeMap::~NodeMap()
{
    EndAdapters();
    nodeMapRef._Destroy();
    if (const NodeTable* const table = nodeTable.IfBuilt())
    {
        for (const auto& node : table->nodes)
            node->ForgetChangedCallbacks();
    }
}

// Adapters end before the nodes that they serve. Their end takes the lock and notifies the nodes, while callbacks must
// not run any more. If another thread holds the lock and cannot release it, they end after the nodes, as GenApi allows.
void NodeMap::EndAdapters()
{
    if (!chunkAdapter && !eventAdapter) return;
    CLock& lock = nodeMapRef._Ptr->GetLock();
    if (!lock.TryLock()) return;
    if (const NodeTable* const table = nodeTable.IfBuilt())
    {
        for (const auto& node : table->nodes)
            node->EndChangedCallbacks();
    }
    eventAdapter.reset();
    chunkAdapter.reset();
    lock.Unlock();
}

const std::vector<std::shared_ptr<Node>>& NodeMap::Nodes()
{
    return InBothLayers([&]() -> const auto& { return EnsureNodes().nodes; });
}

std::shared_ptr<Node> NodeMap::FindNode(const std::string& name)
{
    return InBothLayers([&] {
        auto node = TryFindNode(name);
        if (!node) throw NotFoundException("There is no node with the given name (" + name + ")!");
        return node;
    });
}

std::shared_ptr<Node> NodeMap::TryFindNode(const std::string& name)
{
    return InBothLayers([&] {
        const auto& byName = EnsureNodes().byName;
        const auto found = byName.find(name);
        return found == byName.end() ? nullptr : found->second;
    });
}

bool NodeMap::HasNode(const std::string& name)
{
    return InBothLayers([&] { return EnsureNodes().byName.count(name) > 0; });
}

void NodeMap::InvalidateNodes()
{
    InBothLayers([&] {
        const INodeMap& map = EnsureGenApiMap();
        const AutoLock lock(map.GetLock());
        map.InvalidateNodes();
    });
}

void NodeMap::PollNodes(std::int64_t elapsedTime_ms)
{
    InBothLayers([&] {
        INodeMap& map = EnsureGenApiMap();
        const AutoLock lock(map.GetLock());
        map.Poll(elapsedTime_ms);
    });
}

CLock& NodeMap::GenApiLock()
{
    return EnsureGenApiMap().GetLock();
}

INodeMap* NodeMap::GenApiNodeMap()
{
    return InBothLayers([&] { return &EnsureGenApiMap(); });
}

INodeMap& NodeMap::EnsureGenApiMap()
{
    nodeMapOnce.Run([this] { CreateGenApiMap(); });
    return *nodeMapRef._Ptr;
}

// A map that cannot be connected is discarded, so the next attempt starts from the beginning.
void NodeMap::CreateGenApiMap()
{
    const CNodeMapRefT<CGeneric_XMLLoaderParams> created(LoadDescription());
    const std::string portName = genApiPort.Name();
    if (!created._Connect(&genApiPort, portName.c_str()))
    {
        throw InternalErrorException("Could not connect node map with port (Port-Name: " + portName + ")!");
    }
    nodeMapRef = created;
    description.data = {};
}

INodeMap* NodeMap::LoadDescription() const
{
    const auto& data = description.data;
    auto factory = !description.filePath.empty() ? FactoryOverFile(description.filePath)
                                                 : CNodeMapFactory(
                                                       description.isZipped ? ContentType_ZippedXml : ContentType_Xml,
                                                       data.data(), data.size(), CacheUsage_Automatic, false);
    return factory.CreateNodeMap("Device", true);
}

const NodeMap::NodeTable& NodeMap::EnsureNodes()
{
    return nodeTable.Get([this] { return BuildNodes(); });
}

NodeMap::NodeTable NodeMap::BuildNodes()
{
    node_vector genApiNodes;
    EnsureGenApiMap().GetNodes(genApiNodes);

    NodeTable table;
    table.nodes.reserve(genApiNodes.size());
    table.byName.reserve(genApiNodes.size());
    for (INode* const genApiNode : genApiNodes)
    {
        const auto node = MakeNode(genApiNode, shared_from_this());
        table.nodes.push_back(node);
        table.byName.emplace(node->Name(), node);
    }
    return table;
}

} // namespace koro::internal
