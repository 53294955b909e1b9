#include "nodes/value_node.h"

#include "nodes/errors.h"
#include "nodes/node_inline.h"
#include "nodes/texts.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

gcstring ToText(const std::string& text)
{
    return gcstring(text.data(), text.size());
}

std::string_view View(const gcstring& text)
{
    return {text.c_str(), text.size()};
}

// With an increment above 1 the nearest step within the limits, the lower one of two; with 1 the value itself, wherever
// it lies.
int64_t NearestStep(int64_t value, int64_t min, int64_t max, int64_t inc)
{
    if (inc <= 1) return value;
    if (value <= min || max <= min) return min;
    value = std::min(value, max);
    const uint64_t step = static_cast<uint64_t>(inc);
    const uint64_t distance = static_cast<uint64_t>(value) - static_cast<uint64_t>(min);
    const uint64_t range = static_cast<uint64_t>(max) - static_cast<uint64_t>(min);
    uint64_t steps = distance / step;
    const uint64_t rest = distance % step;
    if (rest > step - rest && steps < range / step) ++steps;
    return static_cast<int64_t>(static_cast<uint64_t>(min) + steps * step);
}

} // namespace

gcstring ValueNode::ToString(bool Verify, bool IgnoreCache)
{
    const Entry entry(*this, "ToString");
    CheckReadable();
    return ValueText({Verify, IgnoreCache});
}

void ValueNode::FromString(const gcstring& ValueStr, bool Verify)
{
    Change("FromString", [&] {
        CheckWritable();
        SetText(ValueStr, Verify);
    });
}

bool ValueNode::IsValueCacheValid() const
{
    const Entry entry(*this, "IsValueCacheValid");
    return valueCached;
}

void ValueNode::DropCaches()
{
    Node::DropCaches();
    valueCached = false;
}

void IntegerBase::SetValue(int64_t Value, bool Verify)
{
    Change("SetValue", [&] {
        CheckWritable();
        WriteAnnounced([&] { WriteInteger(Value, Verify); });
    });
}

IInteger& IntegerBase::operator=(int64_t Value)
{
    SetValue(Value);
    return *this;
}

int64_t IntegerBase::GetValue(bool Verify, bool IgnoreCache)
{
    const Entry entry(*this, "GetValue");
    return ReadInteger({Verify, IgnoreCache});
}

int64_t IntegerBase::ReadInteger(ReadOptions options)
{
    CheckReadable();
    if (valueCached && !options.verify && !options.ignoreCache) return cachedValue;
    const Descent descent(*this);
    cachedValue = Read(options);
    valueCached = CachingMode() != NoCache;
    if (options.verify)
    {
        CheckRange(cachedValue);
        CheckErrors();
    }
    return cachedValue;
}

void IntegerBase::WriteInteger(int64_t value, bool verify)
{
    CheckWritable();
    if (verify) CheckRange(value);
    const Descent descent(*this);
    valueCached = false;
    Write(value, verify);
    cachedValue = value;
    valueCached = CachingMode() == WriteThrough;
    if (verify) CheckErrors();
}

void IntegerBase::WriteReal(double value, bool verify)
{
    const double rounded = std::round(value);
    if (!(rounded >= -0x1p63 && rounded < 0x1p63))
    {
        throw RangeError(*this, "Value = " + std::to_string(value) + " does not fit an integer.");
    }
    WriteInteger(NearestStep(static_cast<int64_t>(rounded), IntegerMin(), IntegerMax(), IntegerInc()), verify);
}

void IntegerBase::CheckRange(int64_t value)
{
    const int64_t min = IntegerMin();
    const int64_t max = IntegerMax();
    const auto refuse = [&](const char* relation, int64_t limit) {
        return RangeError(*this, "Value = " + std::to_string(value) + relation + std::to_string(limit) + ".");
    };
    if (value < min) throw refuse(" must be greater than or equal to Min = ", min);
    if (value > max) throw refuse(" must be smaller than or equal to Max = ", max);
    const int64_t inc = IntegerInc();
    if (inc <= 0) throw LogicalError(*this, "Inc = " + std::to_string(inc) + " must be greater than 0.");
    if ((static_cast<uint64_t>(value) - static_cast<uint64_t>(min)) % static_cast<uint64_t>(inc) != 0)
    {
        throw refuse((" is not on the grid of Min = " + std::to_string(min) + " and Inc = ").c_str(), inc);
    }
}

int64_t IntegerBase::GetMin()
{
    const Entry entry(*this, "GetMin");
    CheckAvailable();
    return std::max(IntegerMin(), imposedMin);
}

int64_t IntegerBase::GetMax()
{
    const Entry entry(*this, "GetMax");
    CheckAvailable();
    return std::min(IntegerMax(), imposedMax);
}

int64_t IntegerBase::GetInc()
{
    const Entry entry(*this, "GetInc");
    CheckAvailable();
    return IntegerInc();
}

EIncMode IntegerBase::GetIncMode()
{
    const Entry entry(*this, "GetIncMode");
    return ValidValues().empty() ? fixedIncrement : listIncrement;
}

int64_autovector_t IntegerBase::GetListOfValidValues(bool bounded)
{
    const Entry entry(*this, "GetListOfValidValues");
    std::vector<int64_t> values = ValidValues();
    if (bounded)
    {
        const int64_t min = IntegerMin();
        const int64_t max = IntegerMax();
        values.erase(
            std::remove_if(values.begin(), values.end(), [&](int64_t value) { return value < min || value > max; }),
            values.end());
    }
    std::sort(values.begin(), values.end());
    int64_autovector_t list(values.size());
    for (size_t i = 0; i < values.size(); ++i)
        list[i] = values[i];
    return list;
}

ERepresentation IntegerBase::GetRepresentation()
{
    const Entry entry(*this, "GetRepresentation");
    return Representation();
}

ERepresentation IntegerBase::Representation() const
{
    if (Find(Property::Representation)) return static_cast<ERepresentation>(NumberOf(Property::Representation, 0));
    const Node* const value = ValueTarget();
    return value ? value->Representation() : PureNumber;
}

gcstring IntegerBase::GetUnit()
{
    const Entry entry(*this, "GetUnit");
    return UnitText();
}

void IntegerBase::ImposeMin(int64_t Value)
{
    const Entry entry(*this, "ImposeMin");
    imposedMin = Value;
}

void IntegerBase::ImposeMax(int64_t Value)
{
    const Entry entry(*this, "ImposeMax");
    imposedMax = Value;
}

gcstring IntegerBase::ValueText(ReadOptions options)
{
    return ToText(IntegerText(ReadInteger(options), Representation()));
}

void IntegerBase::SetText(const gcstring& text, bool verify)
{
    int64_t value = 0;
    if (!runtime::ReadInteger(View(text), Representation(), value))
    {
        throw ArgumentError(*this, "The text '" + std::string(text) + "' is no integer value.");
    }
    WriteAnnounced([&] { WriteInteger(value, verify); });
}

FloatBase::FloatBase(NodeMap& owner, NodeIndex number)
    : ValueNode(owner, number), imposedMin(-std::numeric_limits<double>::infinity()),
      imposedMax(std::numeric_limits<double>::infinity())
{}

void FloatBase::SetValue(double Value, bool Verify)
{
    Change("SetValue", [&] {
        CheckWritable();
        WriteAnnounced([&] { WriteReal(Value, Verify); });
    });
}

IFloat& FloatBase::operator=(double Value)
{
    SetValue(Value);
    return *this;
}

double FloatBase::GetValue(bool Verify, bool IgnoreCache)
{
    const Entry entry(*this, "GetValue");
    return ReadReal({Verify, IgnoreCache});
}

int64_t FloatBase::ReadInteger(ReadOptions options)
{
    return Rounded(ReadReal(options));
}

double FloatBase::ReadReal(ReadOptions options)
{
    CheckReadable();
    if (valueCached && !options.verify && !options.ignoreCache) return cachedValue;
    const Descent descent(*this);
    cachedValue = Read(options);
    valueCached = CachingMode() != NoCache;
    if (options.verify)
    {
        CheckRange(cachedValue);
        CheckErrors();
    }
    return cachedValue;
}

void FloatBase::WriteReal(double value, bool verify)
{
    CheckWritable();
    if (verify) CheckRange(value);
    const Descent descent(*this);
    valueCached = false;
    Write(value, verify);
    cachedValue = value;
    valueCached = CachingMode() == WriteThrough;
    if (verify) CheckErrors();
}

void FloatBase::CheckRange(double value)
{
    const double min = RealMin();
    const double max = RealMax();
    const auto refuse = [&](const char* relation, double limit) {
        return RangeError(*this, "Value = " + std::to_string(value) + relation + std::to_string(limit) + ".");
    };
    if (value < min) throw refuse(" must be greater than or equal to Min = ", min);
    if (value > max) throw refuse(" must be smaller than or equal to Max = ", max);
}

int64_t FloatBase::Rounded(double value) const
{
    const double rounded = std::round(value);
    if (!(rounded >= -0x1p63 && rounded < 0x1p63))
    {
        throw RuntimeError(*this, "Value = " + std::to_string(value) + " does not fit an integer.");
    }
    return static_cast<int64_t>(rounded);
}

double FloatBase::GetMin()
{
    const Entry entry(*this, "GetMin");
    CheckAvailable();
    return std::max(RealMin(), imposedMin);
}

double FloatBase::GetMax()
{
    const Entry entry(*this, "GetMax");
    CheckAvailable();
    return std::min(RealMax(), imposedMax);
}

bool FloatBase::HasInc()
{
    const Entry entry(*this, "HasInc");
    return HasRealInc();
}

EIncMode FloatBase::GetIncMode()
{
    const Entry entry(*this, "GetIncMode");
    if (!ValidValues().empty()) return listIncrement;
    return HasRealInc() ? fixedIncrement : noIncrement;
}

double FloatBase::GetInc()
{
    const Entry entry(*this, "GetInc");
    if (HasRealInc()) CheckAvailable();
    return RealInc();
}

double_autovector_t FloatBase::GetListOfValidValues(bool bounded)
{
    const Entry entry(*this, "GetListOfValidValues");
    const std::vector<int64_t> numbers = ValidValues();
    std::vector<double> values(numbers.begin(), numbers.end());
    if (bounded)
    {
        const double min = RealMin();
        const double max = RealMax();
        values.erase(
            std::remove_if(values.begin(), values.end(), [&](double value) { return value < min || value > max; }),
            values.end());
    }
    std::sort(values.begin(), values.end());
    double_autovector_t list(values.size());
    for (size_t i = 0; i < values.size(); ++i)
        list[i] = values[i];
    return list;
}

ERepresentation FloatBase::GetRepresentation()
{
    const Entry entry(*this, "GetRepresentation");
    return Representation();
}

ERepresentation FloatBase::Representation() const
{
    if (Find(Property::Representation)) return static_cast<ERepresentation>(NumberOf(Property::Representation, 0));
    const Node* const value = ValueTarget();
    return value ? value->Representation() : PureNumber;
}

EDisplayNotation FloatBase::Notation() const
{
    if (Find(Property::DisplayNotation)) return static_cast<EDisplayNotation>(NumberOf(Property::DisplayNotation, 0));
    const Node* const value = ValueTarget();
    return value ? value->Notation() : fnAutomatic;
}

int64_t FloatBase::Precision() const
{
    if (Find(Property::DisplayPrecision)) return NumberOf(Property::DisplayPrecision, 0);
    const Node* const value = ValueTarget();
    return value ? value->Precision() : 6;
}

gcstring FloatBase::GetUnit() const
{
    const Entry entry(*this, "GetUnit");
    return UnitText();
}

EDisplayNotation FloatBase::GetDisplayNotation() const
{
    const Entry entry(*this, "GetDisplayNotation");
    return Notation();
}

int64_t FloatBase::GetDisplayPrecision() const
{
    const Entry entry(*this, "GetDisplayPrecision");
    return Precision();
}

void FloatBase::ImposeMin(double Value)
{
    const Entry entry(*this, "ImposeMin");
    imposedMin = Value;
}

void FloatBase::ImposeMax(double Value)
{
    const Entry entry(*this, "ImposeMax");
    imposedMax = Value;
}

gcstring FloatBase::ValueText(ReadOptions options)
{
    const double value = ReadReal(options);
    return ToText(RealText(value, RealMin(), RealMax(), Notation(), Precision()));
}

void FloatBase::SetText(const gcstring& text, bool verify)
{
    double value = 0;
    if (!runtime::ReadReal(View(text), value))
    {
        throw ArgumentError(*this, "The text '" + std::string(text) + "' is no float value.");
    }
    WriteAnnounced([&] { WriteReal(value, verify); });
}

} // namespace GENAPI_NAMESPACE::runtime
