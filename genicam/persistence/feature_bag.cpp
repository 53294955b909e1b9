#include "base/failures.h"

#include <Base/GCException.h>
#include <GenApi/Persistence.h>
#include <GenApi/Pointer.h>
#include <GenApi/Synch.h>
#include <algorithm>
#include <sstream>
#include <string>
#include <utility>

namespace GENAPI_NAMESPACE
{

using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::gcstring_vector;
using GENICAM_NAMESPACE::GenericException;

namespace
{

const size_t maxRecords = 1 << 20;       // of one bag
const int64_t maxCombinations = 1 << 20; // combinations of selectors in one StoreToBag
const size_t maxQuoted = 200;            // bytes of a text that error messages repeat

gcstring Number(int64_t number)
{
    return std::to_string(number).c_str();
}

gcstring Quoted(const gcstring& text)
{
    return "'" + (text.size() > maxQuoted ? text.substr(0, maxQuoted) + "..." : text) + "'";
}

gcstring DescribeDevice(INodeMap& map)
{
    const CDeviceInfoPtr device(&map);
    if (!device.IsValid()) return gcstring();
    Version_t version = {};
    device->GetDeviceVersion(version);
    return "Device = " + device->GetVendorName() + "::" + device->GetModelName() + " -- " + device->GetToolTip() +
           " -- Device version = " + Number(version.Major) + "." + Number(version.Minor) + "." +
           Number(version.SubMinor) + " -- Product GUID = " + device->GetProductGuid() +
           " -- Product version GUID = " + device->GetVersionGuid();
}

bool IsReadWrite(const INode& node)
{
    const EAccessMode mode = node.GetAccessMode();
    return IsReadable(mode) && IsWritable(mode);
}

bool IsSelector(INode* node)
{
    const CSelectorPtr selector(node);
    return selector.IsValid() && selector->IsSelector();
}

// Selectors are stored with the features that they select.
bool IsRecorded(INode& node)
{
    return node.IsStreamable() && dynamic_cast<IValue*>(&node) && !IsSelector(&node);
}

// A device with commands that begin and end the storing is not ready while it offers neither of them: the first one
// must become available, or the second one after the application has called the first. The application must call them.
void CheckDeviceIsReady(INodeMap& map)
{
    const CCommandPtr begin(map.GetNode("DeviceFeaturePersistenceStart"));
    const CCommandPtr end(map.GetNode("DeviceFeaturePersistenceEnd"));
    if (!IsImplemented(begin) || IsWritable(begin) || IsWritable(end)) return;
    throw ACCESS_EXCEPTION("The features cannot be stored now: 'DeviceFeaturePersistenceStart' is not writable");
}

// How many values a selector has now; outer ones may change that while they move.
uint64_t CountValues(IValue& selector)
{
    if (IEnumeration* const enumeration = dynamic_cast<IEnumeration*>(&selector))
    {
        StringList_t names;
        enumeration->GetSymbolics(names);
        return names.size();
    }
    if (dynamic_cast<IBoolean*>(&selector)) return 2;
    IInteger* const integer = dynamic_cast<IInteger*>(&selector);
    if (!integer) return 1;
    const int64_t min = integer->GetMin();
    const int64_t max = integer->GetMax();
    const int64_t inc = integer->GetInc();
    if (max <= min || inc <= 0) return 1;
    const uint64_t steps = (static_cast<uint64_t>(max) - static_cast<uint64_t>(min)) / static_cast<uint64_t>(inc);
    return std::max(steps, steps + 1); // all of 64 bits is one more than fits
}

bool AreMoreThan(uint64_t bound, CSelectorSet& selectors)
{
    FeatureList_t list;
    selectors.GetSelectorList(list);
    uint64_t product = 1;
    for (IValue* const selector : list)
    {
        const uint64_t count = CountValues(*selector);
        if (count > 0 && product > bound / count) return true;
        product *= count;
    }
    return product > bound;
}

gcstring TooManyCombinations(const INode& node)
{
    return "The selectors of feature '" + node.GetName() + "' have too many combinations: at most " +
           Number(maxCombinations) + " are walked at a time";
}

} // namespace

CFeatureBag::CFeatureBag() {}

CFeatureBag::CFeatureBag(const CFeatureBag& other) : IPersistScript(), info(other.info), bagName(other.bagName)
{
    for (const Triplet& triplet : other.triplets)
    {
        CSelectorState* const state = AllocateSelector();
        *state = *triplet.pState;
        Append(triplet.name, triplet.value, state);
    }
}

CFeatureBag& CFeatureBag::operator=(const CFeatureBag& other)
{
    CFeatureBag copy(other);
    Swap(copy);
    return *this;
}

CFeatureBag::~CFeatureBag() {}

void CFeatureBag::Swap(CFeatureBag& other)
{
    info.swap(other.info);
    bagName.swap(other.bagName);
    triplets.swap(other.triplets);
    states.swap(other.states);
}

CSelectorState* CFeatureBag::AllocateSelector()
{
    states.push_back(std::make_unique<CSelectorState>());
    return states.back().get();
}

void CFeatureBag::DeleteSelector(CSelectorState*& pSelectorState)
{
    // Searched from the end, where those are that were not pushed.
    const auto found =
        std::find_if(states.rbegin(), states.rend(), [&](const auto& state) { return state.get() == pSelectorState; });
    if (found != states.rend()) states.erase(std::next(found).base());
    pSelectorState = nullptr;
}

void CFeatureBag::Clear()
{
    info = "";
    triplets.clear();
    states.clear();
}

void CFeatureBag::Push(const char* name, const char* value, CSelectorState* pSelectorState)
{
    Append(name, value, pSelectorState ? pSelectorState : AllocateSelector());
}

void CFeatureBag::Append(const gcstring& name, const gcstring& value, CSelectorState* state)
{
    if (triplets.size() >= maxRecords) throw RUNTIME_EXCEPTION("A feature bag takes at most %zu records", maxRecords);
    triplets.push_back({name, value, state});
}

void CFeatureBag::PersistFeature(IValue& item, CSelectorSet* selectorSet)
{
    INode* const node = item.GetNode();
    if (!node) throw INVALID_ARGUMENT_EXCEPTION("A feature must be a node");
    const gcstring value = item.ToString();
    CSelectorState* const state = AllocateSelector();
    if (selectorSet) selectorSet->GetState(*state);
    Append(node->GetName(), value, state);
}

int64_t CFeatureBag::StoreToBag(
    INodeMap* pNodeMap, const int MaxNumPersistSkriptEntries, gcstring_vector* pFeatureFilter)
{
    if (!pNodeMap) throw INVALID_ARGUMENT_EXCEPTION("The node map must not be NULL");
    const AutoLock held(pNodeMap->GetLock());
    CheckDeviceIsReady(*pNodeMap);
    info = DescribeDevice(*pNodeMap);
    const int64_t limit = MaxNumPersistSkriptEntries < 0 ? GC_INT64_MAX : std::max(MaxNumPersistSkriptEntries, 1);
    int64_t stored = 0;
    int64_t combinations = 0;
    NodeList_t nodes;
    pNodeMap->GetNodes(nodes);
    for (INode* const node : nodes)
    {
        if (stored >= limit) break;
        if (!IsRecorded(*node)) continue;
        if (pFeatureFilter && !pFeatureFilter->contains(node->GetName())) continue;
        stored += StoreNode(*node, limit - stored, combinations);
    }
    return stored;
}

int64_t CFeatureBag::StoreNode(INode& node, int64_t limit, int64_t& combinations)
{
    CSelectorSet selectors(&node);
    if (selectors.IsEmpty())
    {
        if (!node.IsFeature() || !IsReadWrite(node)) return 0;
        PersistFeature(*CValuePtr(&node));
        return 1;
    }
    int64_t stored = 0;
    try
    {
        if (node.IsFeature()) stored = StoreCombinations(node, selectors, limit, combinations);
    }
    catch (...)
    {
        runtime::Succeeds([&] { selectors.Restore(); }); // a failure is on its way already
        throw;
    }
    selectors.Restore();

    FeatureList_t list;
    selectors.GetSelectorList(list);
    for (IValue* const selector : list)
    {
        if (stored >= limit) break;
        if (CBooleanPtr(selector).IsValid()) continue;
        PersistFeature(*selector);
        ++stored;
    }
    return stored;
}

int64_t CFeatureBag::StoreCombinations(INode& node, CSelectorSet& selectors, int64_t limit, int64_t& combinations)
{
    // Before anything moves, unless the limit may end the walk early.
    const uint64_t left = static_cast<uint64_t>(maxCombinations - combinations);
    if (limit > maxCombinations && AreMoreThan(left, selectors))
    {
        throw RUNTIME_EXCEPTION("%s", TooManyCombinations(node).c_str());
    }
    int64_t stored = 0;
    for (bool more = selectors.SetFirst(); more; more = selectors.SetNext())
    {
        if (++combinations > maxCombinations) throw RUNTIME_EXCEPTION("%s", TooManyCombinations(node).c_str());
        if (!IsReadWrite(node)) continue;
        PersistFeature(*CValuePtr(&node), &selectors);
        if (++stored == limit) break;
    }
    return stored;
}

bool CFeatureBag::LoadFromBag(INodeMap* pNodeMap, bool Verify, gcstring_vector* pErrorList)
{
    if (!pNodeMap) throw INVALID_ARGUMENT_EXCEPTION("The node map must not be NULL");
    const AutoLock held(pNodeMap->GetLock());
    bool good = true;
    for (const Triplet& triplet : triplets)
        good = WriteRecord(*pNodeMap, triplet, pErrorList) && good;
    if (!good || !Verify) return good;
    for (const Triplet& triplet : triplets)
        good = VerifyRecord(*pNodeMap, triplet, pErrorList) && good;
    return good;
}

// A record whose selectors fail is dropped: its value would land in another place.
bool CFeatureBag::WriteRecord(INodeMap& map, const Triplet& triplet, gcstring_vector* errors) const
{
    const CValuePtr node = map.GetNode(triplet.name);
    if (!node.IsValid())
    {
        if (errors) errors->push_back("Error while writing node: " + Quoted(triplet.name) + " not found");
        return false;
    }
    if (!triplet.pState->RestoreState(&map, errors)) return false;
    try
    {
        node->FromString(triplet.value, false);
        return true;
    }
    catch (const GenericException& exception)
    {
        if (errors)
        {
            errors->push_back("Error while writing node " + Quoted(triplet.name) + ": " + exception.what());
        }
        return false;
    }
}

bool CFeatureBag::VerifyRecord(INodeMap& map, const Triplet& triplet, gcstring_vector* errors) const
{
    const CValuePtr node = map.GetNode(triplet.name);
    if (!node.IsValid() || !triplet.pState->RestoreState(&map, errors)) return false;
    try
    {
        // The record of a selector is what sets it back.
        if (IsSelector(node->GetNode())) node->FromString(triplet.value, false);
        if (node->GetAccessMode() == WO) return true;
        const gcstring found = node->ToString(true);
        if (found == triplet.value) return true;
        if (errors)
        {
            errors->push_back(
                "Error while verifying node " + Quoted(triplet.name) + ": expected " + Quoted(triplet.value) +
                ", found " + Quoted(found));
        }
    }
    catch (const GenericException& exception)
    {
        if (errors)
        {
            errors->push_back(
                "Error while verifying the value of node " + Quoted(triplet.name) + ": " + exception.what());
        }
    }
    return false;
}

bool CFeatureBag::operator==(const CFeatureBag& other) const
{
    return std::equal(
        triplets.begin(), triplets.end(), other.triplets.begin(), other.triplets.end(),
        [](const Triplet& left, const Triplet& right) {
            const auto& ours = left.pState->selectors;
            const auto& theirs = right.pState->selectors;
            return left.name == right.name && left.value == right.value &&
                   std::equal(ours.begin(), ours.end(), theirs.begin(), theirs.end(), [](const auto& a, const auto& b) {
                       return a.name == b.name && a.value == b.value;
                   });
        });
}

gcstring CFeatureBag::ToString()
{
    std::ostringstream stream;
    WriteTo(stream);
    const std::string text = stream.str();
    return gcstring(text.data(), text.size());
}

} // namespace GENAPI_NAMESPACE
