#include "nodes/register_nodes.h"

#include "nodes/errors.h"
#include "nodes/texts.h"

#include <algorithm>
#include <limits>
#include <string.h>

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

const int64_t maxTextLength = 16 << 20; // maximum size in bytes of a register that is converted to a text

uint64_t Mask(unsigned width)
{
    return width >= 64 ? ~uint64_t(0) : (uint64_t(1) << width) - 1;
}

uint64_t ToWord(const uint8_t* bytes, unsigned length, bool big)
{
    uint64_t word = 0;
    for (unsigned i = 0; i < length; ++i)
        word = word << 8 | bytes[big ? i : length - 1 - i];
    return word;
}

void FromWord(uint64_t word, uint8_t* bytes, unsigned length, bool big)
{
    for (unsigned i = 0; i < length; ++i)
        bytes[big ? length - 1 - i : i] = static_cast<uint8_t>(word >> 8 * i);
}

size_t CheckedTextLength(const Node& node, int64_t length)
{
    if (length <= maxTextLength) return static_cast<size_t>(length);
    throw RuntimeError(
        node, "Length = " + std::to_string(length) + " is more than a text may have: " + std::to_string(maxTextLength) +
                  " bytes.");
}

} // namespace

void IntegerRegister::Resolve()
{
    RegisterOf<IntegerBase>::Resolve();
    masked = Kind() == Element::MaskedIntReg;
    isSigned = NumberOf(Property::Sign, Unsigned) == Signed;
    big = NumberOf(Property::Endianess, LittleEndian) == BigEndian;
    const int64_t bit = NumberOf(Property::Bit, 0);
    lsb = NumberOf(Property::LSB, bit);
    msb = NumberOf(Property::MSB, bit);
}

int64_t IntegerRegister::CheckedLength()
{
    const int64_t length = place.Length();
    if (length < 1 || length > 8)
    {
        throw RangeError(*this, "Length = " + std::to_string(length) + " must be between 1 and 8.");
    }
    return length;
}

// Big endian registers count their bits from the most significant one.
IntegerRegister::Field IntegerRegister::FieldIn(unsigned length) const
{
    const unsigned bits = 8 * length;
    if (!masked) return {0, bits};
    if (std::max(lsb, msb) >= bits) // checked at loading only if the length is a constant
    {
        throw RangeError(
            *this,
            "Length = " + std::to_string(length) + " leaves out bit " + std::to_string(std::max(lsb, msb)) + ".");
    }
    const unsigned low = static_cast<unsigned>(big ? bits - 1 - lsb : lsb);
    const unsigned width = static_cast<unsigned>((big ? lsb - msb : msb - lsb) + 1);
    return {low, width};
}

// If the length comes from a node, the limits are those of the whole register.
IntegerRegister::Field IntegerRegister::LimitField()
{
    const unsigned length = LengthOfWord();
    return Find(Property::pLength) ? Field{0, 8 * length} : FieldIn(length);
}

int64_t IntegerRegister::MinOfWrites()
{
    const Field field = LimitField();
    return isSigned ? -static_cast<int64_t>(Mask(field.width - 1)) - 1 : 0;
}

// An unsigned register of 64 bits is limited to the range of signed numbers; a bit field of 64 bits returns -1 and
// accepts nothing.
int64_t IntegerRegister::MaxOfWrites()
{
    const Field field = LimitField();
    if (isSigned) return static_cast<int64_t>(Mask(field.width - 1));
    return static_cast<int64_t>(Mask(masked ? field.width : std::min(field.width, 63u)));
}

uint64_t IntegerRegister::ReadWord(unsigned length, ReadOptions options)
{
    uint8_t bytes[8] = {};
    place.ReadBytes(bytes, length, options);
    return ToWord(bytes, length, big);
}

int64_t IntegerRegister::Read(ReadOptions options)
{
    const unsigned length = LengthOfWord();
    const Field field = FieldIn(length);
    uint64_t value = ReadWord(length, options) >> field.shift & Mask(field.width);
    const bool negative = isSigned && (value >> (field.width - 1) & 1) != 0;
    if (negative) value |= ~Mask(field.width);
    return static_cast<int64_t>(value);
}

void IntegerRegister::Write(int64_t value, bool verify)
{
    const unsigned length = LengthOfWord();
    const Field field = FieldIn(length);
    uint64_t word = static_cast<uint64_t>(value);
    if (masked)
    {
        CheckReadable(); // the neighbouring bits must be known
        const uint64_t mask = Mask(field.width) << field.shift;
        word = (ReadWord(length, {verify, false}) & ~mask) | (word << field.shift & mask);
    }
    uint8_t bytes[8];
    FromWord(word, bytes, length, big);
    place.WriteBytes(bytes, length, verify);
}

int64_t FloatRegister::CheckedLength()
{
    const int64_t length = place.Length();
    if (length != 4 && length != 8) throw RangeError(*this, "Length = " + std::to_string(length) + " must be 4 or 8.");
    return length;
}

double FloatRegister::MaxOfWrites()
{
    return CheckedLength() == 4 ? static_cast<double>(std::numeric_limits<float>::max())
                                : std::numeric_limits<double>::max();
}

double FloatRegister::Read(ReadOptions options)
{
    const int64_t length = CheckedLength();
    uint8_t bytes[8] = {};
    place.ReadBytes(bytes, length, options);
    const uint64_t word =
        ToWord(bytes, static_cast<unsigned>(length), NumberOf(Property::Endianess, LittleEndian) == BigEndian);
    if (length == 4)
    {
        const uint32_t half = static_cast<uint32_t>(word);
        float value = 0;
        memcpy(&value, &half, sizeof value);
        return static_cast<double>(value);
    }
    double value = 0;
    memcpy(&value, &word, sizeof value);
    return value;
}

void FloatRegister::Write(double value, bool verify)
{
    const int64_t length = CheckedLength();
    uint64_t word = 0;
    if (length == 4)
    {
        const float narrow = static_cast<float>(value);
        uint32_t half = 0;
        memcpy(&half, &narrow, sizeof half);
        word = half;
    }
    else
    {
        memcpy(&word, &value, sizeof word);
    }
    uint8_t bytes[8];
    FromWord(word, bytes, static_cast<unsigned>(length), NumberOf(Property::Endianess, LittleEndian) == BigEndian);
    place.WriteBytes(bytes, length, verify);
}

// Queries the length three times: together with the queries of the transfer this is how often the recorded devices were
// queried for a length that is not cached. A cached one costs nothing.
int64_t StringRegister::LengthOfText()
{
    int64_t length = 0;
    for (int question = 0; question < 3; ++question)
        length = place.Length();
    return length;
}

// Up to the first zero byte; without one the full length.
gcstring StringRegister::Read(ReadOptions options)
{
    std::vector<uint8_t> bytes(CheckedTextLength(*this, LengthOfText()));
    place.ReadBytes(bytes.data(), static_cast<int64_t>(bytes.size()), options);
    const auto end = std::find(bytes.begin(), bytes.end(), uint8_t(0));
    return gcstring(reinterpret_cast<const char*>(bytes.data()), static_cast<size_t>(end - bytes.begin()));
}

void StringRegister::Write(const gcstring& value, bool verify)
{
    std::vector<uint8_t> bytes(CheckedTextLength(*this, place.Length()));
    std::copy_n(value.c_str(), std::min(value.size(), bytes.size()), bytes.begin());
    place.WriteBytes(bytes.data(), static_cast<int64_t>(bytes.size()), verify);
}

gcstring RegisterNode::ValueText(ReadOptions options)
{
    std::vector<uint8_t> bytes(CheckedTextLength(*this, place.Length()));
    place.ReadBytes(bytes.data(), static_cast<int64_t>(bytes.size()), options);
    if (options.verify) CheckErrors();
    const std::string text = HexText(bytes.data(), bytes.size());
    return gcstring(text.data(), text.size());
}

// A shorter text writes the first bytes; the part that does not fit is left out.
void RegisterNode::SetText(const gcstring& text, bool verify)
{
    std::string bytes;
    if (!ReadHex({text.c_str(), text.size()}, bytes))
    {
        throw ArgumentError(*this, "The text '" + std::string(text).substr(0, 200) + "' is no list of hex digits.");
    }
    const int64_t length = std::min(place.Length(), static_cast<int64_t>(bytes.size()));
    SetBytes(reinterpret_cast<const uint8_t*>(bytes.data()), length, verify);
}

gcstring RomText::Read(ReadOptions)
{
    throw RuntimeError(*this, "unsupported bus");
}

void RomText::Write(const gcstring&, bool)
{
    throw AccessError(*this, "Node is not writable.");
}

int64_t RomNumber::Read(ReadOptions)
{
    throw RuntimeError(*this, "unsupported bus");
}

void RomNumber::Write(int64_t, bool)
{
    throw AccessError(*this, "Node is not writable.");
}

int64_t FeatureLockNode::Read(ReadOptions options)
{
    if (Kind() == Element::AdvFeatureLock) return 1;
    uint8_t bytes[24] = {};
    place.ReadBytes(bytes, sizeof bytes, options);
    return static_cast<int64_t>(ToWord(bytes + 20, 4, true) << 32 | ToWord(bytes + 16, 4, true));
}

void FeatureLockNode::Write(int64_t, bool)
{
    throw AccessError(*this, "Node is not writable.");
}

} // namespace GENAPI_NAMESPACE::runtime
