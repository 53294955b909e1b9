#include "nodes/node.h"

#include "base/failures.h"
#include "nodes/errors.h"
#include "nodes/node_inline.h"
#include "xml/links.h"

#include <GenApi/NodeCallback.h>
#include <algorithm>
#include <limits>
#include <utility>

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

gcstring ToText(std::string_view text)
{
    return gcstring(text.data(), text.size());
}

const unsigned maxDescent = 500; // the depth of nodes that read each other

} // namespace

Unrestricted::Unrestricted(NodeMap& nodes, bool wanted) : map(nodes), former(nodes.unrestricted)
{
    map.unrestricted = former || wanted;
}

Unrestricted::~Unrestricted()
{
    map.unrestricted = former;
}

Descent::Descent(const Node& node) : map(node.Map())
{
    if (map.descent >= maxDescent) throw RuntimeError(node, "Too many nodes are read one through the other");
    if (map.descent == 0) map.descents = 0;
    if (++map.descents > map.maxDescents) throw RuntimeError(node, "Too many nodes are read for one value");
    ++map.descent;
}

Descent::~Descent()
{
    --map.descent;
}

Node::Node(NodeMap& owner, NodeIndex number) : map(owner), index(number) {}

Node::~Node()
{
    for (const std::shared_ptr<Registration>& callback : callbacks)
        callback->End();
}

void Node::Resolve()
{
    implemented = Linked(Property::pIsImplemented);
    available = Linked(Property::pIsAvailable);
    locked = Linked(Property::pIsLocked);
    blocker = Linked(Property::pBlockPolling);
    imposedMode = static_cast<uint8_t>(NumberOf(Property::ImposedAccessMode, RW));
    hasErrorNodes = Find(Property::pError) != nullptr;
}

const Description& Node::Source() const
{
    return map.Source();
}

std::string Node::Name() const
{
    return std::string(Source().NameOf(index));
}

Element Node::Kind() const
{
    return Source().nodes[index].element;
}

const PropertyRecord* Node::Find(Property property) const
{
    return Source().Find(index, property);
}

int64_t Node::NumberOf(Property property, int64_t absent) const
{
    const PropertyRecord* const record = Find(property);
    return record ? record->number : absent;
}

Node* Node::Linked(Property property) const
{
    const PropertyRecord* const record = Find(property);
    return record ? map.At(record->node) : nullptr;
}

gcstring Node::TextOf(Property property) const
{
    return ToText(Source().Text(index, property));
}

EAccessMode Node::GetAccessMode() const
{
    const Entry entry(*this, "GetAccessMode");
    return AccessMode();
}

EAccessMode Node::AccessMode() const
{
    const bool cached = !map.IsUnrestricted() && cachedMode != _UndefinedAccesMode;
    return cached ? static_cast<EAccessMode>(cachedMode) : ComputedMode();
}

EAccessMode Node::ComputedMode() const
{
    const bool cached = !map.IsUnrestricted();
    // Entries may depend on their own enumeration: a node that is queried again meanwhile does not restrict.
    if (modeInWork) return RW;
    const Descent descent(*this);
    const uint64_t timeouts = map.TimedOutReads();
    modeInWork = true;
    EAccessMode mode = RW;
    try
    {
        mode = Combine(Combine(ModeOfLinksAndConditions(), KindMode()), ImposedMode());
    }
    catch (...)
    {
        modeInWork = false;
        // A condition that cannot be read is reported once. After that only the imposed mode restricts the node until
        // its caches are discarded. A condition that is not cached is queried again, unless the port timed out: a
        // device that does not respond would otherwise cost a timeout at each query.
        if (cached && (map.TimedOutReads() != timeouts || AccessCacheable()))
        {
            const EAccessMode most = Kind() == Element::Category ? RO : RW;
            cachedMode = static_cast<uint8_t>(Combine(most, ImposedMode()));
            conditionFailed = true;
            NoteFilled();
        }
        throw;
    }
    modeInWork = false;
    if (!cached || !AccessCacheable()) return mode;
    cachedMode = static_cast<uint8_t>(mode);
    NoteFilled();
    return mode;
}

EAccessMode Node::ModeOfLinksAndConditions() const
{
    EAccessMode mode = Combine(LinkedMode(), ModeOfErrorNodes());
    for (const Node* const condition : {implemented, available, locked})
    {
        const EAccessMode own = condition ? condition->AccessMode() : RW;
        if (!IsReadable(own)) mode = Combine(mode, own == NI ? NI : NA);
    }
    if (blocker && !IsAvailable(blocker->AccessMode())) mode = Combine(mode, blocker->AccessMode());
    return Conditioned(mode);
}

EAccessMode Node::ModeOfErrorNodes() const
{
    EAccessMode mode = RW;
    if (!hasErrorNodes) return mode;
    ForEachLinked(Property::pError, [&](const Node& node) {
        const EAccessMode error = node.AccessMode();
        if (!IsAvailable(error)) mode = Combine(mode, error);
    });
    return mode;
}

EAccessMode Node::Conditioned(EAccessMode mode) const
{
    const auto isRead = [](const Node* condition) { return condition && IsReadable(condition->AccessMode()); };
    if (mode != NI && isRead(implemented) && implemented->PlainNumber() == 0) mode = NI;
    if (map.IsUnrestricted()) return mode;
    if (IsAvailable(mode) && isRead(available) && available->PlainNumber() == 0) mode = NA;
    if (IsWritable(mode) && isRead(locked) && locked->PlainNumber() != 0) mode = Combine(mode, RO);
    return mode;
}

bool Node::IsPollingBlocked(std::set<const Node*>& unreadable) const
{
    if (!blocker || unreadable.count(blocker) != 0) return false;
    bool isBlocked = false;
    const bool isKnown =
        Succeeds([&] { isBlocked = IsReadable(blocker->AccessMode()) && blocker->PlainNumber() != 0; });
    if (!isKnown) unreadable.insert(blocker);
    return isBlocked;
}

// Limits must exist; whether they can be read shows when they are queried.
EAccessMode Node::LimitMode() const
{
    EAccessMode mode = RW;
    for (const Property limit : {Property::pMin, Property::pMax, Property::pInc})
    {
        const Node* const node = Linked(limit);
        if (!node) continue;
        const EAccessMode own = node->AccessMode();
        if (!IsAvailable(own)) mode = Combine(mode, own);
    }
    return mode;
}

void Node::CheckReadable() const
{
    const bool readable = IsReadable(AccessMode()) && (!conditionFailed || IsReadable(KindMode()));
    if (!readable) throw AccessError(*this, "Node is not readable.");
}

void Node::CheckWritable() const
{
    const bool writable =
        IsWritable(AccessMode()) && (!conditionFailed || IsWritable(Combine(KindMode(), LinkedMode())));
    if (!writable) throw AccessError(*this, "Node is not writable.");
}

Node& Node::Available()
{
    CheckAvailable();
    return *this;
}

void Node::CheckAvailable() const
{
    if (!IsAvailable(AccessMode())) throw AccessError(*this, "Node is not available.");
}

gcstring Node::GetName(bool FullQualified) const
{
    const gcstring name = ToText(Source().NameOf(index));
    if (!FullQualified) return name;
    return (GetNameSpace() == Standard ? "Std::" : "Cust::") + name;
}

ENameSpace Node::GetNameSpace() const
{
    return Source().nodes[index].standard ? Standard : Custom;
}

EVisibility Node::GetVisibility() const
{
    const Entry entry(*this, "GetVisibility");
    return OwnVisibility();
}

EVisibility Node::OwnVisibility() const
{
    const Descent descent(*this);
    int64_t visibility = NumberOf(Property::Visibility, Kind() == Element::Category ? Invisible : Beginner);
    if (Kind() == Element::Category && Find(Property::pFeature))
    {
        visibility = Invisible;
        ForEachLinked(Property::pFeature, [&](const Node& feature) {
            visibility = std::min<int64_t>(visibility, feature.OwnVisibility());
        });
    }
    return static_cast<EVisibility>(std::max<int64_t>(visibility, imposedVisibility));
}

void Node::InvalidateNode()
{
    Change("InvalidateNode", [this] { map.Announce(*this); });
}

bool Node::IsCachable() const
{
    return GetCachingMode() != NoCache;
}

EYesNo Node::IsAccessModeCacheable() const
{
    const Entry entry(*this, "IsAccessModeCacheable");
    return AccessCacheable() ? Yes : No;
}

// A condition that is not cached makes the access mode uncached, here and in all nodes that read this one.
bool Node::AccessCacheable() const
{
    if (cachedAccessCacheable != _UndefinedYesNo) return cachedAccessCacheable == Yes;
    const Descent descent(*this);
    cachedAccessCacheable = Yes; // for entries that query their own enumeration
    try
    {
        bool cacheable = true;
        for (const Node* const condition : {implemented, available, locked})
        {
            if (condition && condition->CachingMode() == NoCache) cacheable = false;
        }
        ForEachLink(Source(), index, [&](NodeIndex target, Property link) {
            if (cacheable && ReadsForAccess(link)) cacheable = map.At(target)->AccessCacheable();
        });
        cachedAccessCacheable = cacheable ? Yes : No;
        return cacheable;
    }
    catch (...)
    {
        cachedAccessCacheable = No; // too deep to be determined
        throw;
    }
}

bool Node::ReadsForAccess(Property link) const
{
    return IsReadLink(link) || link == Property::pEntry;
}

ECachingMode Node::GetCachingMode() const
{
    const Entry entry(*this, "GetCachingMode");
    return CachingMode();
}

ECachingMode Node::CachingMode() const
{
    if (cachedCaching == _UndefinedCachingMode)
    {
        const Descent descent(*this);
        cachedCaching = static_cast<uint8_t>(NaturalCaching());
    }
    return static_cast<ECachingMode>(cachedCaching);
}

void Node::NoteFilled() const
{
    map.NoteFilled(*this);
}

void Node::DropCaches()
{
    cachedMode = _UndefinedAccesMode;
    conditionFailed = false;
}

int64_t Node::GetPollingTime() const
{
    return NumberOf(Property::PollingTime, -1);
}

gcstring Node::GetToolTip() const
{
    return TextOf(Property::ToolTip);
}

gcstring Node::GetDescription() const
{
    return TextOf(Property::Description);
}

gcstring Node::GetDisplayName() const
{
    return Find(Property::DisplayName) ? TextOf(Property::DisplayName) : GetName();
}

gcstring Node::GetDeviceName() const
{
    return map.GetDeviceName();
}

gcstring Node::UnitText() const
{
    if (Find(Property::Unit)) return TextOf(Property::Unit);
    const Descent descent(*this);
    const Node* const value = ValueTarget();
    return value ? value->UnitText() : gcstring();
}

std::vector<int64_t> Node::ValidValues() const
{
    const Descent descent(*this);
    const Node* const value = ValueTarget();
    return value ? value->ValidValues() : std::vector<int64_t>();
}

void Node::GetChildren(NodeList_t& Children, ELinkType LinkType) const
{
    const Entry entry(*this, "GetChildren");
    std::vector<Node*> list;
    Node& self = *map.At(index);
    switch (LinkType)
    {
    case ctParentNodes:
        for (const NodeIndex parent : Source().parents.Of(index))
            list.push_back(map.At(parent));
        break;
    case ctDependingNodes:
        map.Dependents(self, list);
        break;
    case ctTerminalNodes:
        map.Terminals(self, list);
        break;
    default:
        AddChildren(list, LinkType);
        break;
    }
    for (Node* const node : list)
        Children.push_back(node);
}

void Node::AddChildren(std::vector<Node*>& children, ELinkType type) const
{
    map.NewMark();
    const auto add = [&](NodeIndex node) { map.Meet(*map.At(node), children); };
    const bool all = type == ctInvalidatingChildren;
    if (all) ForEachLinked(Property::pEntry, [&](const Node& node) { add(node.Index()); });
    ForEachLink(Source(), index, [&](NodeIndex target, Property link) {
        switch (type)
        {
        case ctWritingChildren:
            if (IsWriteLink(link)) add(target);
            break;
        case ctValueChangingChildren:
            if (IsValueLink(link) || link == Property::pVariable) add(target);
            if (link == Property::pConvertTo || link == Property::pConvertFrom)
            {
                ForEachLink(Source(), target, [&](NodeIndex variable, Property inner) {
                    if (inner == Property::pVariable) add(variable);
                });
            }
            break;
        default:
            if (IsReadLink(link) || (all && link == Property::pInvalidator)) add(target);
        }
    });
    if (all)
    {
        for (const NodeIndex selector : Source().selecting.Of(index))
            add(selector);
    }
}

void Node::GetParents(NodeList_t& Parents) const
{
    GetChildren(Parents, ctParentNodes);
}

CallbackHandleType Node::RegisterCallback(CNodeCallback* pCallback)
{
    if (!pCallback) throw INVALID_ARGUMENT_EXCEPTION("A callback must not be NULL");
    const Entry entry(*this, "RegisterCallback");
    if (FindCallback(pCallback) == callbacks.end())
    {
        callbacks.push_back(std::make_shared<Registration>(pCallback));
        if (callbacks.size() == 1) map.CountNodeWithCallbacks(true);
    }
    return reinterpret_cast<CallbackHandleType>(pCallback);
}

bool Node::DeregisterCallback(CallbackHandleType hCallback)
{
    const Entry entry(*this, "DeregisterCallback");
    const auto found = FindCallback(reinterpret_cast<CNodeCallback*>(hCallback));
    if (found == callbacks.end()) return false;
    const std::shared_ptr<Registration> ended = *found; // destroyed when the list is consistent again
    ended->End();
    callbacks.erase(found);
    if (callbacks.empty()) map.CountNodeWithCallbacks(false);
    return true;
}

Registrations::const_iterator Node::FindCallback(const CNodeCallback* callback) const
{
    return std::find_if(callbacks.begin(), callbacks.end(), [callback](const std::shared_ptr<Registration>& entry) {
        return entry->Callback() == callback;
    });
}

INodeMap* Node::GetNodeMap() const
{
    return &map;
}

gcstring Node::GetEventID() const
{
    return TextOf(Property::EventID);
}

bool Node::IsStreamable() const
{
    return Says(Property::Streamable);
}

void Node::ImposeAccessMode(EAccessMode ImposedAccessMode)
{
    Change("ImposeAccessMode", [&] {
        imposedMode = static_cast<uint8_t>(ImposedAccessMode);
        map.Announce(*this);
    });
}

void Node::ImposeVisibility(EVisibility ImposedVisibility)
{
    Change("ImposeVisibility", [&] {
        imposedVisibility = static_cast<uint8_t>(ImposedVisibility);
        map.Announce(*this);
    });
}

INode* Node::GetAlias() const
{
    return Linked(Property::pAlias);
}

INode* Node::GetCastAlias() const
{
    return Linked(Property::pCastAlias);
}

gcstring Node::GetDocuURL() const
{
    return TextOf(Property::DocuURL);
}

bool Node::IsDeprecated() const
{
    return Says(Property::IsDeprecated);
}

EInterfaceType Node::GetPrincipalInterfaceType() const
{
    const Element kind = Kind();
    if (IsIntegerKind(kind)) return intfIInteger;
    if (IsFloatKind(kind)) return intfIFloat;
    if (IsStringKind(kind)) return intfIString;
    switch (kind)
    {
    case Element::Boolean:
        return intfIBoolean;
    case Element::Command:
        return intfICommand;
    case Element::Register:
    case Element::ConfRom:
        return intfIRegister;
    case Element::Category:
        return intfICategory;
    case Element::Enumeration:
        return intfIEnumeration;
    case Element::EnumEntry:
        return intfIEnumEntry;
    case Element::Port:
        return intfIPort;
    default:
        return intfIValue;
    }
}

bool Node::IsFeature() const
{
    return Source().nodes[index].feature;
}

bool Node::IsSelector() const
{
    return Find(Property::pSelected) != nullptr;
}

void Node::GetSelectedFeatures(FeatureList_t& Features) const
{
    for (const NodeIndex node : Source().selected.Of(index))
    {
        if (IValue* const value = dynamic_cast<IValue*>(map.At(node))) Features.push_back(value);
    }
}

void Node::GetSelectingFeatures(FeatureList_t& Features) const
{
    for (const NodeIndex node : Source().selecting.Of(index))
    {
        if (IValue* const value = dynamic_cast<IValue*>(map.At(node))) Features.push_back(value);
    }
}

bool Node::IsNamedBy(const Node& selector) const
{
    const Span<NodeIndex> selectors = Source().namedBy.Of(index);
    return std::find(selectors.begin(), selectors.end(), selector.index) != selectors.end();
}

UserData_t Node::SetUserData(UserData_t data)
{
    return std::exchange(userData, data);
}

void Node::GetPropertyNames(GENICAM_NAMESPACE::gcstring_vector& PropertyNames) const
{
    for (const PropertyRecord& record : Source().PropertiesOf(index))
    {
        const gcstring name = runtime::NameOf(record.property);
        if (!name.empty() && !PropertyNames.contains(name)) PropertyNames.push_back(name);
    }
}

// Several values of one property are separated by tabs.
bool Node::GetProperty(const gcstring& PropertyName, gcstring& ValueStr, gcstring& AttributeStr)
{
    const Property wanted = FindProperty({PropertyName.c_str(), PropertyName.size()});
    bool found = false;
    for (const PropertyRecord& record : Source().PropertiesOf(index))
    {
        if (wanted == Property::None || record.property != wanted) continue;
        if (!found) ValueStr = AttributeStr = "";
        if (found) ValueStr += '\t';
        ValueStr += ToText(Source().ValueText(index, record));
        found = true;
    }
    return found;
}

void Node::CheckErrors() const
{
    if (!hasErrorNodes) return;
    ForEachLinked(Property::pError, [](Node& node) { node.ThrowIfError(); });
}

void Node::ThrowIfError() {}

int64_t Node::ReadInteger(ReadOptions)
{
    throw LogicalError(*this, "Node has no number");
}

double Node::ReadReal(ReadOptions)
{
    throw LogicalError(*this, "Node has no number");
}

void Node::WriteInteger(int64_t, bool)
{
    throw LogicalError(*this, "Node takes no number");
}

void Node::WriteReal(double, bool)
{
    throw LogicalError(*this, "Node takes no number");
}

int64_t Node::IntegerMin()
{
    return GC_INT64_MIN;
}

int64_t Node::IntegerMax()
{
    return GC_INT64_MAX;
}

int64_t Node::IntegerInc()
{
    return 1;
}

double Node::RealMin()
{
    return -std::numeric_limits<double>::max();
}

double Node::RealMax()
{
    return std::numeric_limits<double>::max();
}

bool Node::HasRealInc()
{
    return false;
}

double Node::RealInc()
{
    throw RuntimeError(*this, "Node has no increment");
}

} // namespace GENAPI_NAMESPACE::runtime
