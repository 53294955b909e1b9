// Node: what all runtime nodes have in common: attributes, access mode, caches, callbacks, and the functions by which
// other nodes read and write them.
//
// Owned by its NodeMap. Public operations of the interfaces take the lock of the map; those of the runtime itself
// (below "As other nodes see it") are called while the lock is held.
#pragma once

#include "map/callback_list.h"
#include "xml/description.h"

#include <GenApi/INode.h>
#include <GenApi/ISelector.h>
#include <GenApi/IUserData.h>
#include <memory>
#include <set>
#include <vector>

namespace GENAPI_NAMESPACE::runtime
{

class NodeMap;

// How a value is read.
struct ReadOptions
{
    bool verify = false;      // check limits and error nodes
    bool ignoreCache = false; // read from the port
};

class Node : public INode, public ISelector, public IUserData
{
public:
    Node(NodeMap& owner, NodeIndex number);
    ~Node() override;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    // Finds the linked nodes; called once, when all nodes of the map exist.
    virtual void Resolve();

    // IBase
    EAccessMode GetAccessMode() const override;
    // INode
    GENICAM_NAMESPACE::gcstring GetName(bool FullQualified = false) const override;
    ENameSpace GetNameSpace() const override;
    EVisibility GetVisibility() const override;
    void InvalidateNode() override;
    bool IsCachable() const override;
    EYesNo IsAccessModeCacheable() const override;
    ECachingMode GetCachingMode() const override;
    int64_t GetPollingTime() const override;
    GENICAM_NAMESPACE::gcstring GetToolTip() const override;
    GENICAM_NAMESPACE::gcstring GetDescription() const override;
    GENICAM_NAMESPACE::gcstring GetDisplayName() const override;
    GENICAM_NAMESPACE::gcstring GetDeviceName() const override;
    void GetChildren(NodeList_t& Children, ELinkType LinkType = ctReadingChildren) const override;
    void GetParents(NodeList_t& Parents) const override;
    CallbackHandleType RegisterCallback(CNodeCallback* pCallback) override;
    bool DeregisterCallback(CallbackHandleType hCallback) override;
    INodeMap* GetNodeMap() const override;
    GENICAM_NAMESPACE::gcstring GetEventID() const override;
    bool IsStreamable() const override;
    void GetPropertyNames(GENICAM_NAMESPACE::gcstring_vector& PropertyNames) const override;
    bool GetProperty(
        const GENICAM_NAMESPACE::gcstring& PropertyName, GENICAM_NAMESPACE::gcstring& ValueStr,
        GENICAM_NAMESPACE::gcstring& AttributeStr) override;
    void ImposeAccessMode(EAccessMode ImposedAccessMode) override;
    void ImposeVisibility(EVisibility ImposedVisibility) override;
    INode* GetAlias() const override;
    INode* GetCastAlias() const override;
    GENICAM_NAMESPACE::gcstring GetDocuURL() const override;
    bool IsDeprecated() const override;
    EInterfaceType GetPrincipalInterfaceType() const override;
    bool IsFeature() const override;
    // ISelector
    bool IsSelector() const override;
    void GetSelectedFeatures(FeatureList_t& Features) const override;
    void GetSelectingFeatures(FeatureList_t& Features) const override;
    // IUserData
    UserData_t GetUserData() const override { return userData; }
    UserData_t SetUserData(UserData_t data) override;

    // As other nodes see it: a number, for any kind of node. The defaults refuse.
    virtual int64_t ReadInteger(ReadOptions options);
    virtual double ReadReal(ReadOptions options);
    virtual void WriteInteger(int64_t value, bool verify);
    virtual void WriteReal(double value, bool verify);
    virtual int64_t IntegerMin();
    virtual int64_t IntegerMax();
    virtual int64_t IntegerInc();
    virtual double RealMin();
    virtual double RealMax();
    virtual bool HasRealInc();
    virtual double RealInc();
    // Predicates take the number of an enumeration's entry, not its numeric value.
    virtual int64_t PlainNumber() { return ReadInteger({}); }
    virtual ERepresentation Representation() const { return PureNumber; }
    virtual GENICAM_NAMESPACE::gcstring UnitText() const;
    virtual EDisplayNotation Notation() const { return fnAutomatic; }
    virtual int64_t Precision() const { return 6; }
    // The valid values, from the node itself or inherited.
    virtual std::vector<int64_t> ValidValues() const;

    // Whether that selector names this node itself, and not only a node that this node reads.
    bool IsNamedBy(const Node& selector) const;

    EAccessMode AccessMode() const;
    // Returns the node itself, to query its limits; throws AccessException if it is not available.
    Node& Available();
    // The node that provides the attributes that this node does not have; null when there is none.
    virtual Node* ValueTarget() const { return Linked(Property::pValue); }
    ECachingMode CachingMode() const;
    bool AccessCacheable() const;
    NodeIndex Index() const { return index; }
    NodeMap& Map() const { return map; }
    std::string Name() const;
    Element Kind() const;
    const Description& Source() const;
    // An error enumeration throws RuntimeException unless it reports that there is no error; other nodes report no
    // errors.
    virtual void ThrowIfError();
    // Whether the node takes part in polling now.
    virtual bool IsPolled() { return true; }
    // A node that cannot be read does not block; it is added to `unreadable` and not queried again.
    bool IsPollingBlocked(std::set<const Node*>& unreadable) const;
    // Must be called after a value was stored in a cache of this node; see FilledCaches.
    void NoteFilled() const;
    // Discards the caches of value, range and access.
    virtual void DropCaches();
    // Discards the value that was computed from other nodes or from bytes; the bytes of a register stay.
    virtual void DropValue() {}

protected:
    // The access mode as restricted by the nodes that this one reads and writes.
    virtual EAccessMode LinkedMode() const { return RW; }
    // The access mode as restricted by the node class, or by the AccessMode of a register.
    virtual EAccessMode KindMode() const { return RW; }
    virtual ECachingMode NaturalCaching() const { return WriteThrough; }
    // The access mode as restricted by linked nodes, error nodes and the conditions (implemented, available, locked).
    virtual EAccessMode ModeOfLinksAndConditions() const;
    EAccessMode ModeOfErrorNodes() const;

    // The access mode as restricted by pMin, pMax and pInc.
    EAccessMode LimitMode() const;

    // Throw AccessException.
    void CheckReadable() const;
    void CheckWritable() const;
    void CheckAvailable() const;
    // Throws RuntimeException when an error node reports an error.
    void CheckErrors() const;

    // Runs `act`, which writes, as an operation of the application: handles caches, callbacks, and what must be undone
    // after a failure.
    template <class Act>
    void Change(const char* operation, const Act& act);

    // Discards the caches of the dependents of this node and of the nodes that it writes, then writes; after a failure
    // also the caches of these nodes.
    template <class Act>
    void WriteAnnounced(const Act& act);

    const PropertyRecord* Find(Property property) const;
    int64_t NumberOf(Property property, int64_t absent) const;
    bool Says(Property property) const { return NumberOf(property, 0) != 0; }
    Node* Linked(Property property) const; // null when absent
    GENICAM_NAMESPACE::gcstring TextOf(Property property) const;
    template <class Act>
    void ForEachLinked(Property property, const Act& act) const;

    NodeMap& map;
    const NodeIndex index;

private:
    friend class NodeMap;

    EAccessMode ComputedMode() const;
    // A condition that can no longer change the result is not read.
    EAccessMode Conditioned(EAccessMode mode) const;
    EAccessMode ImposedMode() const { return static_cast<EAccessMode>(imposedMode); }
    bool ReadsForAccess(Property link) const;
    void AddChildren(std::vector<Node*>& children, ELinkType type) const;
    Registrations::const_iterator FindCallback(const CNodeCallback* callback) const;
    EVisibility OwnVisibility() const;

    Node* implemented = nullptr;
    Node* available = nullptr;
    Node* locked = nullptr;
    Node* blocker = nullptr; // of the polling
    Registrations callbacks;
    UserData_t userData = nullptr;
    uint32_t mark = 0; // of the last walk of the map that met this node
    mutable uint8_t cachedMode = _UndefinedAccesMode;
    mutable bool modeInWork = false;
    mutable uint8_t cachedCaching = _UndefinedCachingMode;
    mutable uint8_t cachedAccessCacheable = _UndefinedYesNo;
    mutable bool conditionFailed = false; // only the cached mode is known
    uint8_t imposedMode = RW;             // from the description
    uint8_t imposedVisibility = Beginner;
    bool hasErrorNodes = false;
};

// The beginning of an operation of the application: exceptions contain its node and operation. Holds the lock of the
// map.
class Entry
{
public:
    Entry(const Node& node, const char* operation);
    // An operation of the map itself when `node` is null.
    Entry(NodeMap& owner, const Node* node, const char* operation);
    ~Entry();
    Entry(const Entry&) = delete;
    Entry& operator=(const Entry&) = delete;

private:
    NodeMap& map;
};

// While an object with `wanted` exists, neither locks nor availability restrict the nodes of the map; nodes that are
// not implemented or read-only stay so. Texts that are written without checks come from a device that accepted them
// before.
class Unrestricted
{
public:
    Unrestricted(NodeMap& nodes, bool wanted);
    ~Unrestricted();
    Unrestricted(const Unrestricted&) = delete;
    Unrestricted& operator=(const Unrestricted&) = delete;

private:
    NodeMap& map;
    const bool former;
};

// Counts the depth in which nodes read each other, and their number for the outermost one. Throws RuntimeException
// beyond the bounds: before the stack overflows, and before a few nodes that read each other twice take forever.
class Descent
{
public:
    explicit Descent(const Node& node);
    ~Descent();
    Descent(const Descent&) = delete;
    Descent& operator=(const Descent&) = delete;

private:
    NodeMap& map;
};

} // namespace GENAPI_NAMESPACE::runtime
