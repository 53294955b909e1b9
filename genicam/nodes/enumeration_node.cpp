#include "nodes/enumeration_node.h"

#include "nodes/errors.h"
#include "nodes/node_inline.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

std::string NoEntry(int64_t number)
{
    return "There is no entry with the number " + std::to_string(number) + ".";
}

} // namespace

// Read in the constructor, because enumerations sort their entries by it.
EnumEntryNode::EnumEntryNode(NodeMap& owner, NodeIndex index) : ValueNode(owner, index)
{
    number = NumberOf(Property::Value, 0);
    const PropertyRecord* const own = Find(Property::NumericValue);
    numeric = own ? own->real : static_cast<double>(number);
}

std::string_view EnumEntryNode::Symbolic() const
{
    if (const PropertyRecord* const own = Find(Property::Symbolic)) return Source().Text(own->text);
    return Source().Text(Index(), Property::EntryName);
}

gcstring EnumEntryNode::GetSymbolic() const
{
    const std::string_view symbolic = Symbolic();
    return gcstring(symbolic.data(), symbolic.size());
}

gcstring EnumEntryNode::GetDisplayName() const
{
    return Find(Property::DisplayName) ? TextOf(Property::DisplayName) : GetSymbolic();
}

bool EnumEntryNode::SelfClearing() const
{
    return Says(Property::IsSelfClearing);
}

gcstring EnumEntryNode::ValueText(ReadOptions)
{
    return std::to_string(number).c_str();
}

void EnumEntryNode::SetText(const gcstring&, bool)
{
    throw AccessError(*this, "Node is not writable.");
}

void EnumerationNode::Resolve()
{
    ValueNode::Resolve();
    source.Resolve(*this);
    ForEachLinked(Property::pEntry, [this](Node& node) { entries.push_back(dynamic_cast<EnumEntryNode*>(&node)); });
    byNumber = bySymbolic = entries;
    std::stable_sort(byNumber.begin(), byNumber.end(), [](const EnumEntryNode* left, const EnumEntryNode* right) {
        return left->Number() < right->Number();
    });
    std::stable_sort(bySymbolic.begin(), bySymbolic.end(), [](const EnumEntryNode* left, const EnumEntryNode* right) {
        return left->Symbolic() < right->Symbolic();
    });
}

EAccessMode EnumerationNode::LinkedMode() const
{
    bool implementedEntry = false;
    bool availableEntry = false;
    for (const EnumEntryNode* const entry : entries)
    {
        const EAccessMode mode = entry->AccessMode();
        implementedEntry = implementedEntry || IsImplemented(mode);
        availableEntry = availableEntry || IsAvailable(mode);
        if (availableEntry) break;
    }
    const EAccessMode ofEntries = availableEntry ? RW : (implementedEntry ? NA : NI);
    return Combine(source.Mode(), ofEntries);
}

void EnumerationNode::GetSymbolics(StringList_t& Symbolics)
{
    const Entry scope(*this, "GetSymbolics");
    for (const EnumEntryNode* const entry : entries)
    {
        if (IsAvailable(entry->AccessMode())) Symbolics.push_back(entry->GetSymbolic());
    }
}

void EnumerationNode::GetEntries(NodeList_t& Entries)
{
    for (EnumEntryNode* const entry : entries)
        Entries.push_back(entry);
}

IEnumeration& EnumerationNode::operator=(const gcstring& ValueStr)
{
    FromString(ValueStr);
    return *this;
}

void EnumerationNode::SetIntValue(int64_t Value, bool Verify)
{
    Change("SetIntValue", [&] {
        const Unrestricted unrestricted(map, !Verify);
        CheckWritable();
        const EnumEntryNode* const entry = EntryFor(Value);
        if (!entry) throw ArgumentError(*this, NoEntry(Value));
        SetEntry(*entry, Verify);
    });
}

int64_t EnumerationNode::GetIntValue(bool Verify, bool IgnoreCache)
{
    const Entry scope(*this, "GetIntValue");
    if (Verify) Current({Verify, IgnoreCache});
    const int64_t number = Read({Verify, IgnoreCache});
    if (Verify) CheckErrors();
    return number;
}

IEnumEntry* EnumerationNode::GetEntryByName(const gcstring& Symbolic)
{
    return const_cast<EnumEntryNode*>(EntryNamed({Symbolic.c_str(), Symbolic.size()}));
}

IEnumEntry* EnumerationNode::GetEntry(const int64_t IntValue)
{
    return EntryFor(IntValue);
}

IEnumEntry* EnumerationNode::GetCurrentEntry(bool Verify, bool IgnoreCache)
{
    const Entry scope(*this, "GetCurrentEntry");
    EnumEntryNode* const entry = Current({Verify, IgnoreCache});
    if (Verify) CheckErrors();
    return entry;
}

// Of two entries with the same text the first one is found.
const EnumEntryNode* EnumerationNode::EntryNamed(std::string_view symbolic) const
{
    const auto found = std::lower_bound(
        bySymbolic.begin(), bySymbolic.end(), symbolic,
        [](const EnumEntryNode* entry, std::string_view wanted) { return entry->Symbolic() < wanted; });
    return found != bySymbolic.end() && (*found)->Symbolic() == symbolic ? *found : nullptr;
}

// Of two entries with the same number the later one is found.
EnumEntryNode* EnumerationNode::EntryFor(int64_t number) const
{
    const auto behind =
        std::upper_bound(byNumber.begin(), byNumber.end(), number, [](int64_t wanted, const EnumEntryNode* entry) {
            return wanted < entry->Number();
        });
    if (behind == byNumber.begin()) return nullptr;
    EnumEntryNode* const entry = *std::prev(behind);
    return entry->Number() == number ? entry : nullptr;
}

EnumEntryNode* EnumerationNode::Current(ReadOptions options)
{
    const int64_t number = Read(options);
    EnumEntryNode* const entry = EntryFor(number);
    if (!options.verify) return entry;
    if (!entry) throw RangeError(*this, NoEntry(number));
    CheckEntry(*entry);
    return entry;
}

void EnumerationNode::CheckEntry(const EnumEntryNode& entry) const
{
    if (IsAvailable(entry.AccessMode())) return;
    throw AccessError(*this, "The current entry '" + std::string(entry.Symbolic()) + "' is not available.");
}

int64_t EnumerationNode::Read(ReadOptions options)
{
    options.ignoreCache = options.ignoreCache || selfClearing;
    const int64_t former = cachedNumber;
    const int64_t number = ReadCached(cachedNumber, options, [&] { return source.Read(options); });
    if (number != former) selfClearing = false;
    return number;
}

void EnumerationNode::Write(int64_t number, bool verify)
{
    CheckWritable();
    WriteCached(cachedNumber, number, [&] { source.Write(number, verify); });
    const EnumEntryNode* const entry = EntryFor(number);
    selfClearing = entry && entry->SelfClearing();
    if (verify) CheckErrors();
}

int64_t EnumerationNode::ReadInteger(ReadOptions options)
{
    const double numeric = ReadReal(options);
    return static_cast<int64_t>(std::round(numeric));
}

double EnumerationNode::ReadReal(ReadOptions options)
{
    const int64_t number = Read(options);
    const EnumEntryNode* const entry = EntryFor(number);
    if (entry && options.verify) CheckEntry(*entry);
    if (entry) return entry->Numeric();
    if (options.verify) throw RangeError(*this, NoEntry(number));
    throw LogicalError(*this, NoEntry(number));
}

void EnumerationNode::WriteNearest(double value, bool verify)
{
    const EnumEntryNode* nearest = nullptr;
    for (const EnumEntryNode* const entry : entries)
    {
        if (!IsAvailable(entry->AccessMode())) continue;
        const bool nearer = !nearest || std::fabs(entry->Numeric() - value) < std::fabs(nearest->Numeric() - value);
        if (nearer) nearest = entry;
    }
    if (!nearest) throw AccessError(*this, "No entry is available.");
    Write(nearest->Number(), verify);
}

void EnumerationNode::SetEntry(const EnumEntryNode& entry, bool verify)
{
    const EAccessMode mode = entry.AccessMode();
    if (!IsImplemented(mode) || (verify && !IsAvailable(mode)))
    {
        throw AccessError(*this, "The entry '" + std::string(entry.Symbolic()) + "' is not available.");
    }
    WriteAnnounced([&] { Write(entry.Number(), verify); });
}

void EnumerationNode::ThrowIfError()
{
    const int64_t number = Read({});
    if (number == 0) return;
    const EnumEntryNode* const entry = EntryFor(number);
    if (!entry) throw LogicalError(*this, NoEntry(number));
    throw RuntimeError(*this, std::string(entry->GetDisplayName()) + " : " + std::string(entry->GetToolTip()));
}

gcstring EnumerationNode::ValueText(ReadOptions options)
{
    const int64_t number = Read(options);
    const EnumEntryNode* const entry = EntryFor(number);
    if (!entry) throw ArgumentError(*this, NoEntry(number)); // no text represents it
    if (options.verify)
    {
        CheckEntry(*entry);
        CheckErrors();
    }
    return entry->GetSymbolic();
}

void EnumerationNode::SetText(const gcstring& text, bool verify)
{
    const EnumEntryNode* const entry = EntryNamed({text.c_str(), text.size()});
    if (!entry) throw ArgumentError(*this, "There is no entry '" + std::string(text).substr(0, 200) + "'.");
    SetEntry(*entry, verify);
}

} // namespace GENAPI_NAMESPACE::runtime
