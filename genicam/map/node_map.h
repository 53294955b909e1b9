// NodeMap: all runtime nodes of one description over its ports.
//
// Created by CNodeMapFactory; destroyed by Destroy. One recursive lock, its own or the application's, guards the map
// and its nodes.
#pragma once

#include "map/callback_list.h"
#include "map/filled_caches.h"
#include "nodes/node.h"
#include "nodes/register_cache.h"

#include <GenApi/IDestroy.h>
#include <GenApi/IDeviceInfo.h>
#include <GenApi/INodeMap.h>
#include <GenApi/IUserData.h>
#include <map>

namespace GENAPI_NAMESPACE::runtime
{

class NodeMap final : public INodeMap, public IDeviceInfo, public IDestroy, public IUserData
{
public:
    // `userLock` may be null.
    NodeMap(std::shared_ptr<const Description> source, const GENICAM_NAMESPACE::gcstring& device, CLock* userLock);
    ~NodeMap();
    NodeMap(const NodeMap&) = delete;
    NodeMap& operator=(const NodeMap&) = delete;

    // INodeMap
    void GetNodes(NodeList_t& Nodes) const override;
    INode* GetNode(const GENICAM_NAMESPACE::gcstring& Name) const override;
    void InvalidateNodes() const override;
    bool Connect(IPort* pPort, const GENICAM_NAMESPACE::gcstring& PortName) const override;
    bool Connect(IPort* pPort) const override;
    bool Connect(IPortStacked* pPort, const GENICAM_NAMESPACE::gcstring& PortName) override;
    bool Connect(IPortStacked* pPort) override;
    GENICAM_NAMESPACE::gcstring GetDeviceName() override { return deviceName; }
    void Poll(int64_t ElapsedTime) override;
    CLock& GetLock() const override { return *lock; }
    uint64_t GetNumNodes() const override { return nodes.size(); }
    bool ParseSwissKnifes(GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr) const override;
    CNodeWriteConcatenator* NewNodeWriteConcatenator() const override;
    bool ConcatenatedWrite(
        CNodeWriteConcatenator* pConcatenator, bool featureStreaming = true,
        GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr) override;
    void SetSuppressCallbackMode(ECallbackSuppressMode Mode) override;
    // IDeviceInfo
    GENICAM_NAMESPACE::gcstring GetModelName() override;
    GENICAM_NAMESPACE::gcstring GetVendorName() override;
    GENICAM_NAMESPACE::gcstring GetToolTip() override;
    GENICAM_NAMESPACE::gcstring GetStandardNameSpace() override;
    void GetGenApiVersion(Version_t& Version, uint16_t& Build) override;
    void GetSchemaVersion(Version_t& Version) override;
    void GetDeviceVersion(Version_t& Version) override;
    GENICAM_NAMESPACE::gcstring GetProductGuid() override;
    GENICAM_NAMESPACE::gcstring GetVersionGuid() override;
    // IDestroy
    void Destroy() override { delete this; }
    // IUserData
    UserData_t GetUserData() const override { return userData; }
    UserData_t SetUserData(UserData_t data) override;

    // For the nodes; called while the lock is held.
    Node* At(NodeIndex node) const { return nodes[node].get(); }
    const Description& Source() const { return *description; }
    RegisterCache& Registers() { return registers; }
    bool IsUnrestricted() const { return unrestricted; }
    // The number of operations that began inside others: a port may use the nodes of its own map.
    uint64_t NestedEntries() const { return nestedEntries; }
    // The number of reads that a port has ended by a TimeoutException, and the number of writes to a port or into a
    // node.
    uint64_t TimedOutReads() const { return timedOutReads; }
    void CountTimedOutRead() { ++timedOutReads; }
    uint64_t Writes() const { return writes; }
    void CountWrite() { ++writes; }
    // "Gain.SetValue()"; empty outside of an operation.
    std::string EntryPoint() const;
    // Starts a list that contains each node once: Meet adds a node unless it has been added since.
    uint32_t NewMark();
    void Meet(Node& node, std::vector<Node*>& list);
    // Discards the caches of all dependents of the node and of the nodes that are written through it, and records all
    // of them for their callbacks.
    void AnnounceWrite(Node& node);
    // Discards the caches of the node and its dependents, and records them for their callbacks.
    void Announce(Node& node);
    // Does the same for several nodes at once.
    void Announce(const std::vector<Node*>& several);
    // Does the same for these nodes without their dependents.
    void AnnounceAlone(const std::vector<Node*>& several);
    // The terminal nodes: those at the end of the writing links.
    void Terminals(Node& node, std::vector<Node*>& list);
    void Dependents(Node& node, std::vector<Node*>& list);
    // Adds the dependents of the nodes in the list; each node is added once.
    void AddDependents(std::vector<Node*>& list);
    // Reports that the node has a cached value. Discarding caches skips nodes for which this was not reported.
    void NoteFilled(const Node& node) { filled.Add(node.Index()); }
    // Discards the caches of all dependents of the node.
    void DropDependents(const Node& node);
    // Discards the caches of these nodes and of all their dependents.
    void DropWithDependents(Span<NodeIndex> starts) { Drop(starts, true); }
    // Discards the caches of the nodes that name this one as pInvalidator, and of their dependents.
    void DropInvalidatedBy(const Node& node);
    // Discards the values of all recorded nodes, since a write among them failed; and all their caches if something had
    // been written.
    void DropChanged(bool written);
    // Runs `act`, which changes nodes and records them, as an operation of the application; then calls the callbacks of
    // the changed nodes. An operation that a port starts inside another one leaves the callbacks to the outer one.
    // `node` may be null.
    template <class Act>
    void Operate(const Node* node, const char* operation, const Act& act);
    // Reports that a node has its first callback, or has none left.
    void CountNodeWithCallbacks(bool more);
    // Expires with the map: an adapter may outlive the map.
    std::weak_ptr<const void> Life() const { return life; }
    // The number of nodes that were visited to discard caches and to call callbacks; for tests.
    uint64_t Visits() const { return filled.Visits() + walked; }

private:
    friend class Entry;
    friend class Descent;
    friend class Unrestricted;

    struct PollState
    {
        Node* node;
        int64_t time;
        int64_t elapsed;
        bool running; // in the current poll
    };

    // The nodes of `changed` from `first` to the next change, with or without their dependents.
    struct Change
    {
        size_t first;
        bool withDependents;
    };
    using Order = std::vector<NodeIndex>;

    void Walk(std::vector<Node*>& list, size_t first);
    void BeginChange(bool withDependents) { changes.push_back({changed.size(), withDependents}); }
    Span<NodeIndex> StartsOf(size_t change) const;
    void Drop(Span<NodeIndex> starts, bool withThem);
    void DropChange(Span<NodeIndex> starts, bool written);
    void DropAll();
    CallbackList CollectCallbacks();
    void AddCallbacks(CallbackList& list);
    const Order& CallbackOrder(Span<NodeIndex> starts);
    void ForgetOrders();

    const std::shared_ptr<const void> life = std::make_shared<char>();
    std::shared_ptr<const Description> description;
    GENICAM_NAMESPACE::gcstring deviceName;
    mutable CLock ownLock;
    CLock* lock;
    FilledCaches filled;
    RegisterCache registers;
    std::vector<std::unique_ptr<Node>> nodes;
    std::vector<PollState> polled;
    UserData_t userData = nullptr;

    const Node* entryNode = nullptr;
    const char* entryOperation = "";
    unsigned entryDepth = 0;
    uint64_t nestedEntries = 0;
    uint64_t timedOutReads = 0;
    uint64_t writes = 0;
    unsigned descent = 0;
    size_t descents = 0;      // since it was 0
    const size_t maxDescents; // before "Too many nodes are read for one value"
    bool unrestricted = false;
    uint32_t lastMark = 0;
    uint64_t walked = 0;
    std::vector<NodeIndex> changed; // by the current operation
    std::vector<Change> changes;    // of the same operation
    std::vector<Node*> terminals;   // temporary list
    std::vector<Node*> passed;      // temporary list
    Order dropped;                  // temporary list
    size_t nodesWithCallbacks = 0;
    // By starting nodes; valid until a node gets its first callback or loses its last one.
    std::map<Order, Order> callbackOrders;
    size_t orderedNodes = 0; // in them
    ECallbackSuppressMode suppressMode = csmOff;
};

} // namespace GENAPI_NAMESPACE::runtime
