#include "adapters/chunk_ports.h"

#include "adapters/chunk_port_data.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const int64_t maxCopied = 256 << 20; // bytes, of all copies that one buffer asks for

void Add(int& number, size_t more)
{
    const size_t room = static_cast<size_t>(std::numeric_limits<int>::max() - number);
    number += static_cast<int>(std::min(more, room));
}

} // namespace

ChunkPorts::~ChunkPorts()
{
    try
    {
        DetachMap();
    }
    catch (...)
    {
        // A callback threw; the ports are detached from the map nevertheless.
    }
}

void ChunkPorts::AttachMap(INodeMap* pMap)
{
    NodeMap& map = OwnMap(pMap);
    DetachMap();
    const AutoLock held(map.GetLock());
    std::vector<std::unique_ptr<CChunkPort>> made;
    std::vector<Node*> met;
    for (NodeIndex index = 0; index < map.Source().nodes.size(); ++index)
    {
        if (map.Source().nodes[index].element != Element::Port) continue;
        PortNode* const node = dynamic_cast<PortNode*>(map.At(index));
        if (!node || !node->HasChunkID()) continue;
        made.push_back(std::make_unique<CChunkPort>(node));
        met.push_back(node);
    }
    map.AddDependents(met);
    std::vector<CChunkPort*> list;
    for (const std::unique_ptr<CChunkPort>& port : made)
    {
        list.push_back(port.get());
        if (port->data->node->ChunkIDNode()) withNodeID.push_back(port.get());
    }
    sorted = list;
    Sort();
    ports.swap(list);
    affected.swap(met);
    owned.swap(made);
    link = MapLink(map);
}

// After the first callback this object may have been destroyed.
void ChunkPorts::DetachMap()
{
    NodeMap* const map = link.Get();
    const bool fires = map && IsAttached();
    std::vector<std::unique_ptr<CChunkPort>> ended;
    std::vector<Node*> known;
    {
        std::optional<AutoLock> held;
        if (map) held.emplace(map->GetLock());
        ended.swap(owned);
        known.swap(affected);
        ports.clear();
        withNodeID.clear();
        sorted.clear();
        groups.clear();
        bufferAttached = false;
        link = {};
        for (const std::unique_ptr<CChunkPort>& port : ended)
            port->DetachPort();
    }
    if (fires) map->Operate(nullptr, "DetachNodeMap", [&] { map->AnnounceAlone(known); });
}

void ChunkPorts::Attach(ChunkWalk& walk, uint8_t* buffer, int64_t maxCopy, AttachStatistics_t* statistics)
{
    NodeMap* const map = link.Get();
    if (!map)
    {
        DetachMap();
        const AttachStatistics_t counted = Find(walk);
        if (statistics) *statistics = counted;
        return;
    }
    map->Operate(nullptr, "AttachBuffer", [&] {
        RefreshIDs();
        const AttachStatistics_t counted = Find(walk);
        MakeRoom(maxCopy);
        ShowFound(buffer, maxCopy);
        if (statistics) *statistics = counted;
        map->AnnounceAlone(affected);
    });
}

// A failing read may follow one that has changed an id.
void ChunkPorts::RefreshIDs()
{
    for (CChunkPort* const port : withNodeID)
        groupsFit = !port->data->RefreshID() && groupsFit;
    if (!groupsFit) Sort();
}

void ChunkPorts::Sort()
{
    groupsFit = false;
    const auto idOf = [](const CChunkPort* port) -> const HexId& { return port->data->id; };
    std::sort(sorted.begin(), sorted.end(), [&](const CChunkPort* a, const CChunkPort* b) {
        if (idOf(a).IsId() != idOf(b).IsId()) return idOf(b).IsId();
        return idOf(a).Canonical() < idOf(b).Canonical();
    });
    groups.clear();
    for (size_t i = 0; i < sorted.size(); ++i)
    {
        const HexId& id = idOf(sorted[i]);
        if (!id.IsId()) continue;
        if (groups.empty() || groups.back().id != id.Canonical()) groups.push_back({id.Canonical(), i, i, false, 0, 0});
        groups.back().last = i + 1;
    }
    groupsFit = true;
}

// If ids repeat, the ports show the chunk with the lowest offset.
AttachStatistics_t ChunkPorts::Find(ChunkWalk& walk)
{
    AttachStatistics_t counted = {0, 0, 0};
    Add(counted.NumChunkPorts, ports.size());
    for (Group& group : groups)
        group.found = false;
    const auto before = [](const Group& group, std::string_view id) { return group.id < id; };
    Chunk chunk;
    ChunkWalk::Step step;
    while ((step = walk.Next(chunk)) == ChunkWalk::Step::Chunk)
    {
        Add(counted.NumChunks, 1);
        const auto group = std::lower_bound(groups.begin(), groups.end(), chunk.id, before);
        if (group == groups.end() || group->id != chunk.id) continue;
        Add(counted.NumAttachedChunks, group->last - group->first);
        if (group->found && group->offset <= chunk.offset) continue;
        group->found = true;
        group->offset = chunk.offset;
        group->length = chunk.length;
    }
    if (step == ChunkWalk::Step::Broken)
    {
        throw RUNTIME_EXCEPTION(
            "The chunk layout of the buffer is broken at %lld: %s", static_cast<long long>(walk.FaultPosition()),
            walk.Fault());
    }
    return counted;
}

// Allocates memory for all copies, so that nothing fails while the ports change.
void ChunkPorts::MakeRoom(int64_t maxCopy)
{
    int64_t room = maxCopied;
    for (const Group& group : groups)
    {
        for (size_t i = group.first; i < group.last && group.found; ++i)
        {
            CChunkPort::Data& port = *sorted[i]->data;
            if (!port.WantsCopy(group.length, maxCopy)) continue;
            if (group.length > room) throw RUNTIME_EXCEPTION("The copies of the chunks would take too much memory");
            room -= group.length;
            port.Reserve(group.length);
        }
    }
}

void ChunkPorts::ShowFound(uint8_t* buffer, int64_t maxCopy)
{
    for (CChunkPort* const port : ports)
        port->DetachChunk();
    for (const Group& group : groups)
    {
        for (size_t i = group.first; i < group.last && group.found; ++i)
        {
            CChunkPort::Data& port = *sorted[i]->data;
            port.Show(buffer, group.offset, group.length, port.WantsCopy(group.length, maxCopy));
        }
    }
    bufferAttached = true;
}

bool ChunkPorts::IsAttached() const
{
    return bufferAttached ||
           std::any_of(ports.begin(), ports.end(), [](const CChunkPort* port) { return port->data->attached; });
}

void ChunkPorts::Update(uint8_t* base)
{
    NodeMap* const map = link.Get();
    if (!map) return;
    map->Operate(nullptr, "UpdateBuffer", [&] {
        if (!IsAttached()) return;
        if (!base) throw INVALID_ARGUMENT_EXCEPTION("The base address must not be NULL");
        for (CChunkPort* const port : ports)
            port->UpdateBuffer(base);
        map->AnnounceAlone(affected);
    });
}

void ChunkPorts::Detach()
{
    NodeMap* const map = link.Get();
    if (!map) return;
    map->Operate(nullptr, "DetachBuffer", [&] {
        if (!IsAttached()) return;
        bufferAttached = false;
        for (CChunkPort* const port : ports)
            port->DetachChunk();
        map->AnnounceAlone(affected);
    });
}

// The attached buffer does not change, so no callback is called; but the buffer may differ from its copy.
void ChunkPorts::ClearCaches()
{
    NodeMap* const map = link.Get();
    if (!map) return;
    const AutoLock held(map->GetLock());
    for (CChunkPort* const port : ports)
        port->ClearCache();
    for (Node* const node : affected)
        node->DropCaches();
}

} // namespace GENAPI_NAMESPACE::runtime
