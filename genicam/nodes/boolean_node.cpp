#include "nodes/boolean_node.h"

#include "nodes/errors.h"
#include "nodes/node_inline.h"

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::gcstring;

void BooleanNode::Resolve()
{
    ValueNode::Resolve();
    source.Resolve(*this);
    onValue = NumberOf(Property::OnValue, 1);
    offValue = NumberOf(Property::OffValue, 0);
    // A value in the node itself is written as true or false.
    if (const PropertyRecord* const own = Find(Property::Value)) source.Preset(own->number ? onValue : offValue);
}

void BooleanNode::SetValue(bool Value, bool Verify)
{
    Change("SetValue", [&] {
        const Unrestricted unrestricted(map, !Verify);
        CheckWritable();
        WriteAnnounced([&] { Write(Value, Verify); });
    });
}

bool BooleanNode::GetValue(bool Verify, bool IgnoreCache) const
{
    const Entry entry(*this, "GetValue");
    const bool value = const_cast<BooleanNode*>(this)->Read({Verify, IgnoreCache});
    if (Verify) CheckErrors();
    return value;
}

bool BooleanNode::Read(ReadOptions options)
{
    return ReadCached(cachedValue, options, [&] { return ReadSource(options); });
}

bool BooleanNode::ReadSource(ReadOptions options)
{
    const int64_t number = source.Read(options);
    if (number != onValue && number != offValue)
    {
        throw LogicalError(*this, "The number " + std::to_string(number) + " is neither the on nor the off value.");
    }
    return number == onValue;
}

void BooleanNode::Write(bool value, bool verify)
{
    CheckWritable();
    WriteCached(cachedValue, value, [&] { source.Write(value ? onValue : offValue, verify); });
    if (verify) CheckErrors();
}

gcstring BooleanNode::ValueText(ReadOptions options)
{
    const bool value = Read(options);
    if (options.verify) CheckErrors();
    return value ? "1" : "0";
}

void BooleanNode::SetText(const gcstring& text, bool verify)
{
    const bool on = text == "1" || text == "true";
    if (!on && text != "0" && text != "false")
    {
        throw ArgumentError(*this, "The text '" + std::string(text).substr(0, 200) + "' is no truth value.");
    }
    WriteAnnounced([&] { Write(on, verify); });
}

} // namespace GENAPI_NAMESPACE::runtime
