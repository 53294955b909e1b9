#include "nodes/register_part.h"

#include "nodes/errors.h"
#include "nodes/port_node.h"

#include <Base/GCException.h>
#include <string.h>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const int64_t maxCachedLength = 1 << 20; // bytes; longer registers are not cached

int64_t Sum(int64_t left, int64_t right)
{
    return static_cast<int64_t>(static_cast<uint64_t>(left) + static_cast<uint64_t>(right));
}

int64_t Product(int64_t left, int64_t right)
{
    return static_cast<int64_t>(static_cast<uint64_t>(left) * static_cast<uint64_t>(right));
}

bool IsPlace(Property property)
{
    return property == Property::pAddress || property == Property::pIndex || property == Property::pOffset ||
           property == Property::pLength;
}

} // namespace

void CheckRegisterBuffer(const Node& node, RegisterPart& place, const void* buffer, int64_t length)
{
    if (!buffer) throw LogicalError(node, "The buffer must not be NULL.");
    const int64_t whole = place.Length();
    if (length < 0 || length > whole)
    {
        throw RangeError(
            node, "Length = " + std::to_string(length) + " must be between 0 and " + std::to_string(whole) + ".");
    }
}

RegisterPart::~RegisterPart()
{
    Release();
}

void RegisterPart::Release()
{
    if (block) node.Map().Registers().Release(block, node.Index());
    block = nullptr;
}

void RegisterPart::Resolve()
{
    const Description& source = node.Source();
    for (const PropertyRecord& record : source.PropertiesOf(node.Index()))
    {
        if (record.property == Property::pPort) port = dynamic_cast<PortNode*>(node.Map().At(record.node));
        if (record.property == Property::pLength) lengthNode = node.Map().At(record.node);
        if (record.property == Property::Length) fixedLength = record.number;
        addressTold = addressTold || IsPlace(record.property);
        lengthIsOffset = lengthIsOffset || (record.property == Property::pIndex && !OffsetBehind(&record));
    }
    // A smart feature has no Length element.
    if (node.Kind() == Element::SmartFeature) fixedLength = 24;
}

int64_t RegisterPart::Length(bool verify)
{
    const int64_t length = lengthNode ? lengthNode->ReadInteger({verify, false}) : fixedLength;
    if (length < 0) throw RangeError(node, "Length = " + std::to_string(length) + " must not be negative.");
    return length;
}

int64_t RegisterPart::Address(ReadOptions options)
{
    const bool anew = addressTold && (options.verify || options.ignoreCache);
    if (addressKnown && !anew) return address;
    const Description& source = node.Source();
    int64_t sum = 0;
    bool cachable = true;
    const Span<PropertyRecord> records = source.EssentialsOf(node.Index());
    for (const PropertyRecord* record = records.begin(); record != records.end(); ++record)
    {
        if (record->property == Property::Address) sum = Sum(sum, record->number);
        if (record->property == Property::pAddress) sum = Sum(sum, node.Map().At(record->node)->ReadInteger(options));
        if (record->property == Property::pIndex) sum = Sum(sum, IndexPart(record, options));
        if (!IsPlace(record->property) || node.Map().At(record->node)->CachingMode() != NoCache) continue;
        // The length is queried at each read. It is a part of the address only as an offset.
        cachable = cachable && record->property == Property::pLength && !lengthIsOffset;
    }
    address = sum;
    addressKnown = cachable;
    if (addressKnown) node.NoteFilled();
    return address;
}

// The offset follows its index; null without one.
const PropertyRecord* RegisterPart::OffsetBehind(const PropertyRecord* index) const
{
    if (index + 1 == node.Source().EssentialsOf(node.Index()).end()) return nullptr;
    const Property next = index[1].property;
    return next == Property::Offset || next == Property::pOffset ? index + 1 : nullptr;
}

// Index times offset; without an offset the length is used.
int64_t RegisterPart::IndexPart(const PropertyRecord* record, ReadOptions options)
{
    const int64_t index = node.Map().At(record->node)->ReadInteger(options);
    const PropertyRecord* const offset = OffsetBehind(record);
    if (!offset) return Product(index, Length(options.verify));
    if (offset->property == Property::Offset) return Product(index, offset->number);
    return Product(index, node.Map().At(offset->node)->ReadInteger(options));
}

EAccessMode RegisterPart::OwnMode() const
{
    const PropertyRecord* const own = node.Source().Find(node.Index(), Property::AccessMode);
    return own ? static_cast<EAccessMode>(own->number) : RW;
}

EAccessMode RegisterPart::LinkedMode() const
{
    if (!port) return NI;
    EAccessMode mode = port->AccessMode();
    for (const PropertyRecord& record : node.Source().EssentialsOf(node.Index()))
    {
        if (!IsPlace(record.property)) continue;
        const EAccessMode source = node.Map().At(record.node)->AccessMode();
        if (!IsAvailable(source)) mode = Combine(mode, source);
    }
    return mode;
}

ECachingMode RegisterPart::Caching(ECachingMode absent) const
{
    const PropertyRecord* const own = node.Source().Find(node.Index(), Property::Cachable);
    ECachingMode mode = own ? static_cast<ECachingMode>(own->number) : absent;
    for (const PropertyRecord& record : node.Source().EssentialsOf(node.Index()))
    {
        if (!IsPlace(record.property) || record.property == Property::pLength) continue;
        mode = Combine(mode, node.Map().At(record.node)->CachingMode());
    }
    return mode;
}

RegisterCache::Block* RegisterPart::Block(int64_t start, int64_t length)
{
    if (length > maxCachedLength || node.CachingMode() == NoCache) return nullptr;
    const RegisterCache::Place place = {port, start, length};
    if (block && block->place == place) return block;
    Release();
    block = node.Map().Registers().Acquire(place, node.Index());
    if (block->valid) node.NoteFilled();
    return block;
}

// A length that comes from other nodes may have become shorter since the caller queried it.
int64_t RegisterPart::LengthFor(int64_t count, bool verify)
{
    const int64_t length = Length(verify);
    if (count <= length) return length;
    throw RangeError(
        node, "Length = " + std::to_string(length) + " must be at least " + std::to_string(count) + " by now.");
}

void RegisterPart::ReadPort(uint8_t* bytes, int64_t start, int64_t count)
{
    IPort& connected = port->Connected();
    try
    {
        connected.Read(bytes, start, count);
    }
    catch (const GENICAM_NAMESPACE::TimeoutException&)
    {
        node.Map().CountTimedOutRead();
        throw;
    }
}

void RegisterPart::ReadBytes(uint8_t* bytes, int64_t count, ReadOptions options)
{
    if (count == 0) return;
    const int64_t start = Address(options);
    const int64_t length = LengthFor(count, options.verify);
    if (options.ignoreCache) node.Map().DropInvalidatedBy(node);
    RegisterCache::Block* cache = Block(start, length);
    if (cache && cache->valid && !options.ignoreCache)
    {
        memcpy(bytes, cache->bytes.data(), static_cast<size_t>(count));
        return;
    }
    if (!cache || count < length)
    {
        ReadPort(bytes, start, count);
        return;
    }
    cache->valid = false;
    const uint64_t before = node.Map().NestedEntries();
    ReadPort(bytes, start, length);
    if (node.Map().NestedEntries() != before) cache = Block(start, length); // the port may have moved the register
    if (options.ignoreCache) return;
    // The length may have changed while the device responded.
    if (Length(options.verify) != length) return;
    cache->bytes.assign(bytes, bytes + length);
    node.Map().Registers().Fill(*cache);
}

void RegisterPart::WriteBytes(const uint8_t* bytes, int64_t count, bool verify)
{
    if (count == 0) return;
    const int64_t start = Address({verify, false});
    const int64_t length = LengthFor(count, verify);
    IPort& connected = port->Connected();
    RegisterCache::Block* cache = Block(start, length);
    bool known = cache && (cache->valid || count == length) && node.CachingMode() == WriteThrough;
    // Values that were read during this operation are older than the write.
    const auto outdate = [&] {
        node.Map().DropDependents(node);
        DropOverlapping({port, start, count});
        if (cache) cache->valid = false;
    };
    outdate();
    const uint64_t before = node.Map().NestedEntries();
    node.Map().CountWrite();
    connected.Write(bytes, start, count);
    if (node.Map().NestedEntries() != before)
    { // also the values that the port itself has read; it may also have moved the register
        cache = Block(start, length);
        outdate();
        known = known && count == length; // the other bytes may have been discarded
    }
    if (!known) return;
    cache->bytes.resize(static_cast<size_t>(length));
    memcpy(cache->bytes.data(), bytes, static_cast<size_t>(count));
    node.Map().Registers().Fill(*cache);
}

// Discards the cached values of overlapping registers and everything computed from them.
void RegisterPart::DropOverlapping(const RegisterCache::Place& place)
{
    std::vector<NodeIndex> users;
    node.Map().Registers().ForEachOverlapping(place, [&](RegisterCache::Block& overlapping) {
        overlapping.valid = false;
        for (const NodeIndex user : overlapping.users.Active())
        {
            if (user != node.Index()) users.push_back(user);
        }
    });
    if (!users.empty()) node.Map().DropWithDependents({users.data(), users.data() + users.size()});
}

void RegisterPart::DropBytes()
{
    if (block) block->valid = false;
}

void RegisterPart::Drop()
{
    DropBytes();
    addressKnown = false;
}

} // namespace GENAPI_NAMESPACE::runtime
