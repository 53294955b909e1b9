#include "nodes/number_base.h"

#include "nodes/errors.h"
#include "nodes/node_inline.h"
#include "nodes/texts.h"

#include <algorithm>
#include <cmath>

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

// With an increment above 1 this is the nearest step counted from the minimum, and the lower one of two equally near
// steps; with 1 it is the value itself. A value that is below the minimum by less than a step becomes the minimum.
// Limits are not considered otherwise: a step outside of them is refused later.
int64_t NearestStep(int64_t value, int64_t min, int64_t inc)
{
    if (inc <= 1) return value;
    const uint64_t step = static_cast<uint64_t>(inc);
    const bool below = value < min;
    const uint64_t from = static_cast<uint64_t>(below ? value : min);
    const uint64_t rest = (static_cast<uint64_t>(below ? min : value) - from) % step;
    if (below) return value + static_cast<int64_t>(rest); // never beyond the minimum
    if (rest <= step - rest) return value - static_cast<int64_t>(rest);
    int64_t stepped = value;
    return __builtin_add_overflow(value, static_cast<int64_t>(step - rest), &stepped) ? value : stepped;
}

// Rounds half away from zero; returns false outside of 64 bits.
bool ToInteger(double value, int64_t& integer)
{
    const double rounded = std::round(value);
    if (!(rounded >= -0x1p63 && rounded < 0x1p63)) return false;
    integer = static_cast<int64_t>(rounded);
    return true;
}

template <class Number>
std::string ValueIs(Number value)
{
    return "Value = " + PlainText(value);
}

} // namespace

template <class Number, class Interface, class List>
void NumberBase<Number, Interface, List>::SetValue(Number Value, bool Verify)
{
    Change("SetValue", [&] {
        const Unrestricted unrestricted(map, !Verify);
        CheckWritable();
        WriteAnnounced([&] { WriteNumber(Value, Verify); });
    });
}

template <class Number, class Interface, class List>
Interface& NumberBase<Number, Interface, List>::operator=(Number Value)
{
    SetValue(Value);
    return *this;
}

template <class Number, class Interface, class List>
Number NumberBase<Number, Interface, List>::GetValue(bool Verify, bool IgnoreCache)
{
    const Entry entry(*this, "GetValue");
    return ReadNumber({Verify, IgnoreCache});
}

template <class Number, class Interface, class List>
Number NumberBase<Number, Interface, List>::ReadNumber(ReadOptions options)
{
    const Number value = ReadCached(cachedValue, options, [&] { return Read(options); });
    if (options.verify)
    {
        CheckRange(value);
        CheckErrors();
    }
    return value;
}

template <class Number, class Interface, class List>
void NumberBase<Number, Interface, List>::WriteNumber(Number value, bool verify)
{
    CheckWritable();
    if (verify) CheckRange(value);
    WriteCached(cachedValue, value, [&] { Write(value, verify); });
    if (verify) CheckErrors();
}

template <class Number, class Interface, class List>
void NumberBase<Number, Interface, List>::CheckRange(Number value)
{
    const Number min = MinOfWrites();
    const Number max = MaxOfWrites();
    const auto refuse = [&](const char* relation, Number limit) {
        return RangeError(*this, ValueIs(value) + relation + PlainText(limit) + ".");
    };
    if (value < min) throw refuse(" must be greater than or equal to Min = ", min);
    if (value > max) throw refuse(" must be smaller than or equal to Max = ", max);
    CheckStep(value, min);
}

template <class Number, class Interface, class List>
Number NumberBase<Number, Interface, List>::GetMin()
{
    const Entry entry(*this, "GetMin");
    CheckAvailable();
    return std::max(MinOf<Number>(*this), imposedMin);
}

template <class Number, class Interface, class List>
Number NumberBase<Number, Interface, List>::GetMax()
{
    const Entry entry(*this, "GetMax");
    CheckAvailable();
    return std::min(MaxOf<Number>(*this), imposedMax);
}

template <class Number, class Interface, class List>
EIncMode NumberBase<Number, Interface, List>::GetIncMode()
{
    const Entry entry(*this, "GetIncMode");
    if (!ValidValues().empty()) return listIncrement;
    return HasRealInc() ? fixedIncrement : noIncrement;
}

// Whether there is an increment is known without access to the device.
template <class Number, class Interface, class List>
Number NumberBase<Number, Interface, List>::GetInc()
{
    const Entry entry(*this, "GetInc");
    if (HasRealInc()) CheckAvailable();
    return IncOf<Number>(*this);
}

template <class Number, class Interface, class List>
List NumberBase<Number, Interface, List>::GetListOfValidValues(bool bounded)
{
    const Entry entry(*this, "GetListOfValidValues");
    std::vector<int64_t> values = ValidValues();
    if (bounded)
    {
        const Number min = MinOf<Number>(*this);
        const Number max = MaxOf<Number>(*this);
        const auto outside = [&](int64_t value) {
            return static_cast<Number>(value) < min || static_cast<Number>(value) > max;
        };
        values.erase(std::remove_if(values.begin(), values.end(), outside), values.end());
    }
    std::sort(values.begin(), values.end());
    List list(values.size());
    for (size_t i = 0; i < values.size(); ++i)
        list[i] = static_cast<Number>(values[i]);
    return list;
}

template <class Number, class Interface, class List>
ERepresentation NumberBase<Number, Interface, List>::GetRepresentation()
{
    const Entry entry(*this, "GetRepresentation");
    return Representation();
}

template <class Number, class Interface, class List>
ERepresentation NumberBase<Number, Interface, List>::Representation() const
{
    if (Find(Property::Representation)) return static_cast<ERepresentation>(NumberOf(Property::Representation, 0));
    const Descent descent(*this);
    const Node* const value = ValueTarget();
    // The increment of a float does not apply to an integer.
    if (!value || (isInteger<Number> && IsFloatKind(value->Kind()))) return PureNumber;
    return value->Representation();
}

template <class Number, class Interface, class List>
void NumberBase<Number, Interface, List>::ImposeMin(Number Value)
{
    const Entry entry(*this, "ImposeMin");
    imposedMin = Value;
}

template <class Number, class Interface, class List>
void NumberBase<Number, Interface, List>::ImposeMax(Number Value)
{
    const Entry entry(*this, "ImposeMax");
    imposedMax = Value;
}

template <class Number, class Interface, class List>
gcstring NumberBase<Number, Interface, List>::ValueText(ReadOptions options)
{
    const std::string text = Shown(ReadNumber(options));
    return gcstring(text.data(), text.size());
}

template <class Number, class Interface, class List>
void NumberBase<Number, Interface, List>::SetText(const gcstring& text, bool verify)
{
    Number value = 0;
    if (!Parse({text.c_str(), text.size()}, value))
    {
        const char* const kind = isInteger<Number> ? "' is no integer value." : "' is no float value.";
        throw ArgumentError(*this, "The text '" + std::string(text).substr(0, 200) + kind);
    }
    WriteAnnounced([&] { WriteNumber(value, verify); });
}

template class NumberBase<int64_t, IInteger, int64_autovector_t>;
template class NumberBase<double, IFloat, double_autovector_t>;

void IntegerBase::WriteReal(double value, bool verify)
{
    int64_t rounded = 0;
    if (!ToInteger(value, rounded))
    {
        throw RangeError(*this, ValueIs(value) + " does not fit an integer.");
    }
    WriteInteger(NearestStep(rounded, IntegerMin(), IntegerInc()), verify);
}

void IntegerBase::CheckStep(int64_t value, int64_t min)
{
    const int64_t inc = IntegerInc();
    if (inc <= 0) throw LogicalError(*this, "Inc = " + PlainText(inc) + " must be greater than 0.");
    if ((static_cast<uint64_t>(value) - static_cast<uint64_t>(min)) % static_cast<uint64_t>(inc) != 0)
    {
        throw RangeError(
            *this,
            ValueIs(value) + " is not on the grid of Min = " + PlainText(min) + " and Inc = " + PlainText(inc) + ".");
    }
}

gcstring IntegerBase::GetUnit()
{
    const Entry entry(*this, "GetUnit");
    return UnitText();
}

std::string IntegerBase::Shown(int64_t value)
{
    return IntegerText(value, Representation());
}

bool IntegerBase::Parse(std::string_view text, int64_t& value) const
{
    return runtime::ReadInteger(text, Representation(), value);
}

int64_t FloatBase::Rounded(double value) const
{
    int64_t rounded = 0;
    if (!ToInteger(value, rounded))
    {
        throw RuntimeError(*this, ValueIs(value) + " does not fit an integer.");
    }
    return rounded;
}

// Only a whole number of at least 1 is an increment of integers.
int64_t FloatBase::IntegerInc()
{
    const Descent descent(*this);
    if (!HasRealInc()) return 1;
    const double inc = RealInc();
    int64_t whole = 1;
    return inc >= 1 && std::trunc(inc) == inc && ToInteger(inc, whole) ? whole : 1;
}

bool FloatBase::HasInc()
{
    const Entry entry(*this, "HasInc");
    return HasRealInc();
}

EDisplayNotation FloatBase::Notation() const
{
    if (Find(Property::DisplayNotation)) return static_cast<EDisplayNotation>(NumberOf(Property::DisplayNotation, 0));
    const Descent descent(*this);
    const Node* const value = ValueTarget();
    return value ? value->Notation() : fnAutomatic;
}

int64_t FloatBase::Precision() const
{
    if (Find(Property::DisplayPrecision)) return NumberOf(Property::DisplayPrecision, 0);
    const Descent descent(*this);
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

std::string FloatBase::Shown(double value)
{
    return RealText(value, MinOfWrites(), MaxOfWrites(), Notation(), Precision());
}

bool FloatBase::Parse(std::string_view text, double& value) const
{
    return runtime::ReadReal(text, value);
}

} // namespace GENAPI_NAMESPACE::runtime
