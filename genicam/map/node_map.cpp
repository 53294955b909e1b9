#include "map/node_map.h"

#include "map/concatenator.h"
#include "nodes/knife_nodes.h"
#include "nodes/node_factory.h"
#include "nodes/node_inline.h"
#include "nodes/port_node.h"
#include "xml/links.h"

#include <Base/GCException.h>
#include <GenApi/GenApiVersion.h>
#include <GenApi/IPortStacked.h>
#include <algorithm>
#include <set>
#include <utility>

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

// The number of nodes that are read for one value; each counts as often as it is read, so the limit grows with the map
// and with the depth.
size_t MostDescents(size_t nodeCount)
{
    return (size_t(1) << 19) + 16 * nodeCount;
}

// The limit for the nodes in all stored callback orders.
size_t MostOrderedNodes(size_t nodeCount)
{
    return 1000 + 4 * nodeCount;
}

// Elements through which nothing is ever written.
bool IsReadOnlyKind(Element kind)
{
    return kind == Element::SwissKnife || kind == Element::IntSwissKnife || kind == Element::SmartFeature;
}

} // namespace

NodeMap::NodeMap(std::shared_ptr<const Description> source, const gcstring& device, CLock* userLock)
    : description(std::move(source)), deviceName(device), lock(userLock ? userLock : &ownLock),
      filled(description->dependents), registers(filled), maxDescents(MostDescents(description->nodes.size()))
{
    nodes.reserve(description->nodes.size());
    for (NodeIndex node = 0; node < description->nodes.size(); ++node)
        nodes.push_back(MakeNode(*this, node));
    for (const std::unique_ptr<Node>& node : nodes)
    {
        node->Resolve();
        if (node->GetPollingTime() >= 0) polled.push_back({node.get(), node->GetPollingTime(), 0, false});
    }
}

NodeMap::~NodeMap()
{
    registers.End();
    nodes.clear();
}

void NodeMap::GetNodes(NodeList_t& Nodes) const
{
    Nodes.reserve(Nodes.size() + nodes.size());
    for (const std::unique_ptr<Node>& node : nodes)
        Nodes.push_back(node.get());
}

INode* NodeMap::GetNode(const gcstring& Name) const
{
    std::string_view name(Name.c_str(), Name.size());
    const bool standard = name.substr(0, 5) == "Std::";
    const bool custom = name.substr(0, 6) == "Cust::";
    if (standard || custom) name.remove_prefix(standard ? 5 : 6);
    const NodeIndex node = description->FindNode(name);
    if (node == noNode) return nullptr;
    const bool fits = (!standard && !custom) || description->nodes[node].standard == standard;
    return fits ? At(node) : nullptr;
}

bool NodeMap::Connect(IPort* pPort, const gcstring& PortName) const
{
    PortNode* const port = dynamic_cast<PortNode*>(GetNode(PortName));
    if (!port) return false;
    port->SetPortImpl(pPort);
    return true;
}

bool NodeMap::Connect(IPort* pPort) const
{
    return Connect(pPort, "Device");
}

bool NodeMap::Connect(IPortStacked* pPort, const gcstring& PortName)
{
    return Connect(static_cast<IPort*>(pPort), PortName);
}

bool NodeMap::Connect(IPortStacked* pPort)
{
    return Connect(static_cast<IPort*>(pPort), "Device");
}

bool NodeMap::ParseSwissKnifes(GENICAM_NAMESPACE::gcstring_vector* pErrorList) const
{
    const AutoLock held(*lock);
    bool good = true;
    for (const std::unique_ptr<Node>& node : nodes)
    {
        Knife* const knife = dynamic_cast<Knife*>(node.get());
        if (!knife) continue;
        try
        {
            knife->Compile();
        }
        catch (const GENICAM_NAMESPACE::GenericException& exception)
        {
            good = false;
            if (pErrorList) pErrorList->push_back(exception.GetDescription());
        }
    }
    return good;
}

CNodeWriteConcatenator* NodeMap::NewNodeWriteConcatenator() const
{
    return new Concatenator;
}

bool NodeMap::ConcatenatedWrite(
    CNodeWriteConcatenator* pConcatenator, bool, GENICAM_NAMESPACE::gcstring_vector* pErrorList)
{
    const Concatenator* const list = dynamic_cast<const Concatenator*>(pConcatenator);
    if (!list) throw INVALID_ARGUMENT_EXCEPTION("The list of writes must not be NULL");
    return list->WriteTo(*this, pErrorList);
}

void NodeMap::SetSuppressCallbackMode(ECallbackSuppressMode Mode)
{
    const AutoLock held(*lock);
    suppressMode = Mode;
}

gcstring NodeMap::GetModelName()
{
    return description->device.modelName.c_str();
}

gcstring NodeMap::GetVendorName()
{
    return description->device.vendorName.c_str();
}

gcstring NodeMap::GetToolTip()
{
    return description->device.toolTip.c_str();
}

gcstring NodeMap::GetStandardNameSpace()
{
    return description->device.standardNameSpace.c_str();
}

void NodeMap::GetGenApiVersion(Version_t& Version, uint16_t& Build)
{
    Version.Major = GENAPI_VERSION_MAJOR;
    Version.Minor = GENAPI_VERSION_MINOR;
    Version.SubMinor = GENAPI_VERSION_SUBMINOR;
    Build = GENAPI_VERSION_BUILD;
}

void NodeMap::GetSchemaVersion(Version_t& Version)
{
    Version = description->device.schemaVersion;
}

void NodeMap::GetDeviceVersion(Version_t& Version)
{
    Version = description->device.deviceVersion;
}

gcstring NodeMap::GetProductGuid()
{
    return description->device.productGuid.c_str();
}

gcstring NodeMap::GetVersionGuid()
{
    return description->device.versionGuid.c_str();
}

UserData_t NodeMap::SetUserData(UserData_t data)
{
    return std::exchange(userData, data);
}

std::string NodeMap::EntryPoint() const
{
    return entryNode ? entryNode->Name() + "." + entryOperation + "()" : std::string();
}

uint32_t NodeMap::NewMark()
{
    if (++lastMark == 0)
    { // the counter has wrapped around: the old marks are invalid
        for (const std::unique_ptr<Node>& node : nodes)
            node->mark = 0;
        lastMark = 1;
    }
    return lastMark;
}

void NodeMap::Meet(Node& node, std::vector<Node*>& list)
{
    if (node.mark == lastMark) return;
    node.mark = lastMark;
    list.push_back(&node);
}

// Adds the dependents of the nodes from `first` on; the marks record which nodes are listed.
void NodeMap::Walk(std::vector<Node*>& list, size_t first)
{
    for (size_t i = first; i < list.size(); ++i)
    {
        for (const NodeIndex dependent : description->dependents.Of(list[i]->Index()))
            Meet(*At(dependent), list);
    }
    walked += list.size() - first;
}

void NodeMap::Dependents(Node& node, std::vector<Node*>& list)
{
    NewMark();
    Meet(node, list);
    Walk(list, 0);
    list.erase(list.begin());
}

void NodeMap::AddDependents(std::vector<Node*>& list)
{
    NewMark();
    for (Node* const node : list)
        node->mark = lastMark;
    Walk(list, 0);
}

void NodeMap::Terminals(Node& node, std::vector<Node*>& list)
{
    const Element kind = node.Kind();
    if (IsReadOnlyKind(kind) || kind == Element::Category || kind == Element::Port) return;
    passed.clear();
    NewMark();
    Meet(node, passed);
    for (size_t i = 0; i < passed.size(); ++i)
    {
        bool writes = false;
        for (const PropertyRecord& record : description->EssentialsOf(passed[i]->Index()))
        {
            if (!IsWriteLink(record.property)) continue;
            writes = true;
            Meet(*At(record.node), passed);
        }
        if (!writes && !IsReadOnlyKind(passed[i]->Kind())) list.push_back(passed[i]);
    }
}

Span<NodeIndex> NodeMap::StartsOf(size_t change) const
{
    const size_t end = change + 1 < changes.size() ? changes[change + 1].first : changed.size();
    return {changed.data() + changes[change].first, changed.data() + end};
}

// Without `withThem` the starting nodes keep their caches, even if one of them depends on another.
void NodeMap::Drop(Span<NodeIndex> starts, bool withThem)
{
    NewMark();
    if (!withThem)
    {
        for (const NodeIndex start : starts)
            At(start)->mark = lastMark;
    }
    for (const NodeIndex node : filled.Take(starts))
    {
        if (At(node)->mark != lastMark) At(node)->DropCaches();
    }
    if (withThem) return;
    for (const NodeIndex start : starts)
        filled.Add(start);
}

void NodeMap::Announce(Node& node)
{
    BeginChange(true);
    changed.push_back(node.Index());
    Drop(StartsOf(changes.size() - 1), true);
}

void NodeMap::Announce(const std::vector<Node*>& several)
{
    BeginChange(true);
    for (Node* const node : several)
        changed.push_back(node->Index());
    Drop(StartsOf(changes.size() - 1), true);
}

void NodeMap::AnnounceAlone(const std::vector<Node*>& several)
{
    BeginChange(false);
    for (Node* const node : several)
    {
        node->DropCaches();
        changed.push_back(node->Index());
    }
}

void NodeMap::AnnounceWrite(Node& node)
{
    terminals.clear();
    Terminals(node, terminals);
    BeginChange(true);
    changed.push_back(node.Index());
    for (Node* const terminal : terminals)
    {
        if (terminal != &node) changed.push_back(terminal->Index());
    }
    const Span<NodeIndex> starts = StartsOf(changes.size() - 1);
    Drop(starts, false);
    // A node that is written keeps its own caches, unless it also depends on another one that is written.
    for (const NodeIndex written : starts)
    {
        const Span<NodeIndex> dependents = description->dependents.Of(written);
        if (std::binary_search(dependents.begin(), dependents.end(), node.Index())) node.DropCaches();
    }
}

void NodeMap::DropDependents(const Node& node)
{
    const NodeIndex start = node.Index();
    Drop({&start, &start + 1}, false);
}

void NodeMap::DropInvalidatedBy(const Node& node)
{
    Drop(description->invalidated.Of(node.Index()), true);
}

void NodeMap::DropChanged(bool written)
{
    for (size_t change = 0; change < changes.size(); ++change)
    {
        const Span<NodeIndex> starts = StartsOf(change);
        if (changes[change].withDependents)
        {
            DropChange(starts, written);
            continue;
        }
        for (const NodeIndex node : starts)
            written ? At(node)->DropCaches() : At(node)->DropValue();
    }
}

void NodeMap::DropChange(Span<NodeIndex> starts, bool written)
{
    if (written) return Drop(starts, true);
    dropped = filled.Take(starts);
    for (const NodeIndex node : dropped)
        At(node)->DropValue();
    for (const NodeIndex node : dropped) // they keep their other caches
        filled.Add(node);
}

CallbackList NodeMap::CollectCallbacks()
{
    CallbackList list;
    if (entryDepth > 1) return list;
    if (suppressMode == csmOff && nodesWithCallbacks > 0) AddCallbacks(list);
    if (suppressMode == csmOnce) suppressMode = csmOff;
    changed.clear();
    changes.clear();
    return list;
}

void NodeMap::AddCallbacks(CallbackList& list)
{
    Order called;
    for (size_t change = 0; change < changes.size(); ++change)
    {
        const Span<NodeIndex> starts = StartsOf(change);
        if (!changes[change].withDependents)
        {
            called.insert(called.end(), starts.begin(), starts.end());
            continue;
        }
        const Order& order = CallbackOrder(starts);
        called.insert(called.end(), order.begin(), order.end());
    }
    NewMark();
    for (const NodeIndex node : called)
    {
        if (At(node)->mark == lastMark) continue; // already listed by another write of the operation
        At(node)->mark = lastMark;
        list.Add(At(node)->callbacks);
    }
}

// The nodes with callbacks among the starting nodes and their dependents, in the order of the walk. The first change
// with these starting nodes walks; later ones use the stored order, while the same nodes have callbacks and there is
// room.
const NodeMap::Order& NodeMap::CallbackOrder(Span<NodeIndex> starts)
{
    Order key(starts.begin(), starts.end());
    const auto known = callbackOrders.find(key);
    if (known != callbackOrders.end()) return known->second;
    std::vector<Node*> list;
    NewMark();
    for (const NodeIndex start : starts)
        Meet(*At(start), list);
    Walk(list, 0);
    Order order;
    for (const Node* const node : list)
    {
        if (!node->callbacks.empty()) order.push_back(node->Index());
    }
    const size_t size = key.size() + order.size();
    if (orderedNodes + size > MostOrderedNodes(nodes.size())) ForgetOrders();
    orderedNodes += size;
    return callbackOrders.emplace(std::move(key), std::move(order)).first->second;
}

void NodeMap::ForgetOrders()
{
    callbackOrders.clear();
    orderedNodes = 0;
}

void NodeMap::CountNodeWithCallbacks(bool more)
{
    more ? ++nodesWithCallbacks : --nodesWithCallbacks;
    ForgetOrders();
}

void NodeMap::DropAll()
{
    BeginChange(false);
    for (const std::unique_ptr<Node>& node : nodes)
    {
        node->DropCaches();
        changed.push_back(node->Index());
    }
}

void NodeMap::InvalidateNodes() const
{
    NodeMap& self = *const_cast<NodeMap*>(this);
    self.Operate(nullptr, "InvalidateNodes", [&self] { self.DropAll(); });
}

void NodeMap::Poll(int64_t ElapsedTime)
{
    Operate(nullptr, "Poll", [&] {
        // All blocking nodes first: reading one may poll through its port.
        std::set<const Node*> unreadable;
        for (PollState& state : polled)
            state.running = state.node->IsPolled() && !state.node->IsPollingBlocked(unreadable);
        std::vector<Node*> due;
        for (PollState& state : polled)
        {
            if (!state.running) continue;
            if (__builtin_add_overflow(state.elapsed, ElapsedTime, &state.elapsed)) // the caller may pass any time
                state.elapsed = ElapsedTime < 0 ? INT64_MIN : INT64_MAX;
            if (state.elapsed < state.time) continue;
            state.elapsed = 0;
            due.push_back(state.node);
        }
        Announce(due);
    });
}

} // namespace GENAPI_NAMESPACE::runtime
