#include "nodes/string_nodes.h"

#include "nodes/errors.h"
#include "nodes/node_inline.h"

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

const int64_t lengthOfConstants = 0x3FFFFFFF; // bytes; no bound of the description

} // namespace

void StringBase::SetValue(const gcstring& Value, bool Verify)
{
    Change("SetValue", [&] {
        CheckWritable();
        SetText(Value, Verify);
    });
}

IString& StringBase::operator=(const gcstring& Value)
{
    SetValue(Value);
    return *this;
}

gcstring StringBase::GetValue(bool Verify, bool IgnoreCache)
{
    const Entry entry(*this, "GetValue");
    return ValueText({Verify, IgnoreCache});
}

int64_t StringBase::GetMaxLength(bool)
{
    const Entry entry(*this, "GetMaxLength");
    return MaxLength();
}

int64_t StringBase::MaxLength()
{
    const Descent descent(*this);
    return IsWritable(AccessMode()) ? Capacity() : TextLength();
}

gcstring StringBase::ReadText(ReadOptions options)
{
    CheckReadable();
    const Descent descent(*this);
    return Read(options);
}

void StringBase::WriteText(const gcstring& value, bool verify)
{
    CheckWritable();
    const int64_t max = MaxLength();
    if (static_cast<uint64_t>(value.size()) > static_cast<uint64_t>(max))
    {
        throw RangeError(
            *this, "The text has " + std::to_string(value.size()) + " bytes; at most " + std::to_string(max) + " fit.");
    }
    const Descent descent(*this);
    Write(value, verify);
    if (verify) CheckErrors();
}

gcstring StringBase::ValueText(ReadOptions options)
{
    const gcstring value = ReadText(options);
    if (options.verify) CheckErrors();
    return value;
}

void StringBase::SetText(const gcstring& text, bool verify)
{
    WriteAnnounced([&] { WriteText(text, verify); });
}

void StringNode::Resolve()
{
    StringBase::Resolve();
    target = dynamic_cast<StringBase*>(Linked(Property::pValue));
    constant = TextOf(Property::Value);
}

gcstring StringNode::Read(ReadOptions options)
{
    return target ? target->ReadText(options) : constant;
}

void StringNode::Write(const gcstring& written, bool verify)
{
    if (target)
    {
        target->WriteText(written, verify);
    }
    else
    {
        map.CountWrite();
        constant = written;
    }
}

int64_t StringNode::TextLength()
{
    return target ? StringBase::TextLength() : static_cast<int64_t>(constant.size());
}

int64_t StringNode::Capacity()
{
    return target ? target->MaxLength() : lengthOfConstants;
}

} // namespace GENAPI_NAMESPACE::runtime
