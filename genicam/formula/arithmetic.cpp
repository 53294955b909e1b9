#include "formula/arithmetic.h"

#include <cmath>
#include <limits>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const int64_t lowest = std::numeric_limits<int64_t>::min();
const double notANumber = std::numeric_limits<double>::quiet_NaN(); // of the same sign everywhere

uint64_t Unsigned(int64_t number)
{
    return static_cast<uint64_t>(number);
}

int64_t Wrapped(uint64_t number)
{
    return static_cast<int64_t>(number);
}

void RefuseZero(int64_t divisor)
{
    if (divisor == 0) throw FormulaError{"division by zero"};
}

// Below this a divisor counts as zero.
void RefuseZero(double divisor)
{
    if (std::fabs(divisor) < std::numeric_limits<double>::epsilon()) throw FormulaError{"division by zero"};
}

// Beyond 64 bits, and for 0 to a negative power: the lowest number.
int64_t Power(int64_t base, int64_t exponent)
{
    if (base == 1 || exponent == 0) return 1;
    if (base == -1) return exponent % 2 == 0 ? 1 : -1;
    if (base == 0) return exponent < 0 ? lowest : 0;
    if (exponent < 0) return 0;
    int64_t result = 1;
    for (; exponent > 0; --exponent)
    { // at most 63 times: the base is at least 2
        if (__builtin_mul_overflow(result, base, &result)) return lowest;
    }
    return result;
}

// The bit operators of float formulas work on 32 bits.
int32_t Bits(double number)
{
    const double whole = std::trunc(number);
    const bool fits = whole >= std::numeric_limits<int32_t>::min() && whole <= std::numeric_limits<int32_t>::max();
    if (!fits) throw FormulaError{"value too big"};
    return static_cast<int32_t>(whole);
}

double BitOperation(Operation operation, int32_t left, int32_t right)
{
    const unsigned count = static_cast<unsigned>(right) % 32;
    switch (operation)
    {
    case Operation::ShiftLeft:
        return static_cast<int32_t>(static_cast<uint32_t>(left) << count);
    case Operation::ShiftRight:
        return left >> count;
    case Operation::And:
        return left & right;
    case Operation::Or:
        return left | right;
    default:
        return left ^ right;
    }
}

double RoundTo(double number, double digits)
{
    const double scale = std::pow(10.0, std::trunc(digits));
    const double scaled = number * scale;
    if (!std::isfinite(scaled) || scale == 0) return scale == 0 ? 0 : number;
    return std::round(scaled) / scale;
}

template <class Number>
Number Compare(Operation operation, Number left, Number right)
{
    switch (operation)
    {
    case Operation::Equal:
        return left == right;
    case Operation::Unequal:
        return left != right;
    case Operation::Less:
        return left < right;
    case Operation::Greater:
        return left > right;
    case Operation::LessOrEqual:
        return left <= right;
    case Operation::GreaterOrEqual:
        return left >= right;
    case Operation::LogicalAnd:
        return left != 0 && right != 0;
    default:
        return left != 0 || right != 0;
    }
}

} // namespace

int64_t Compute(Operation operation, int64_t left, int64_t right)
{
    switch (operation)
    {
    case Operation::Power:
        return Power(left, right);
    case Operation::ShiftLeft:
        return Wrapped(Unsigned(left) << (Unsigned(right) % 64));
    case Operation::ShiftRight:
        return left >> (Unsigned(right) % 64);
    case Operation::And:
        return left & right;
    case Operation::Or:
        return left | right;
    case Operation::Xor:
        return left ^ right;
    case Operation::Multiply:
        return Wrapped(Unsigned(left) * Unsigned(right));
    case Operation::Divide:
        RefuseZero(right);
        return right == -1 ? Wrapped(0 - Unsigned(left)) : left / right;
    case Operation::Remainder:
        RefuseZero(right);
        return right == -1 ? 0 : left % right;
    case Operation::Add:
        return Wrapped(Unsigned(left) + Unsigned(right));
    case Operation::Subtract:
        return Wrapped(Unsigned(left) - Unsigned(right));
    default:
        return Compare(operation, left, right);
    }
}

double Compute(Operation operation, double left, double right)
{
    switch (operation)
    {
    case Operation::Power:
        return std::pow(left, right);
    case Operation::ShiftLeft:
    case Operation::ShiftRight:
    case Operation::And:
    case Operation::Or:
    case Operation::Xor:
        return BitOperation(operation, Bits(left), Bits(right));
    case Operation::Multiply:
        return left * right;
    case Operation::Divide:
        RefuseZero(right);
        return left / right;
    case Operation::Remainder:
        RefuseZero(right);
        return std::fmod(left, right);
    case Operation::Add:
        return left + right;
    case Operation::Subtract:
        return left - right;
    case Operation::RoundTo:
        return RoundTo(left, right);
    default:
        return Compare(operation, left, right);
    }
}

int64_t Compute(Operation operation, int64_t operand)
{
    switch (operation)
    {
    case Operation::Negate:
        return Wrapped(0 - Unsigned(operand));
    case Operation::Complement:
        return ~operand;
    default:
        return operand > 0 ? 1 : (operand < 0 ? -1 : 0); // Sgn: integer formulas have no other function
    }
}

double Compute(Operation operation, double operand)
{
    switch (operation)
    {
    case Operation::Negate:
        return -operand;
    case Operation::Complement:
        return ~Bits(operand);
    case Operation::Abs:
        return std::fabs(operand);
    case Operation::Sqrt:
        return std::sqrt(operand);
    case Operation::Sin:
        return std::sin(operand);
    case Operation::Cos:
        return std::cos(operand);
    case Operation::Tan:
        return std::tan(operand);
    case Operation::Asin:
        return std::asin(operand);
    case Operation::Acos:
        return std::acos(operand);
    case Operation::Atan:
        return std::atan(operand);
    case Operation::Exp:
        return std::exp(operand);
    case Operation::Ln:
        return operand < 0 ? notANumber : std::log(operand);
    case Operation::Lg:
        return operand < 0 ? notANumber : std::log10(operand);
    case Operation::Trunc:
        return std::trunc(operand);
    case Operation::Frac:
        return operand - std::trunc(operand);
    case Operation::Floor:
        return std::floor(operand);
    case Operation::Ceil:
        return std::ceil(operand);
    case Operation::Round:
        return std::round(operand);
    default:
        return operand > 0 ? 1 : (operand < 0 ? -1 : 0);
    }
}

size_t OperandsOf(Operation operation)
{
    switch (operation)
    {
    case Operation::Constant:
    case Operation::Variable:
        return 0;
    case Operation::Select:
        return 3;
    case Operation::RoundTo:
        return 2;
    default:
        break;
    }
    const bool binary = operation >= Operation::Power && operation <= Operation::LogicalOr;
    return binary ? 2 : 1;
}

} // namespace GENAPI_NAMESPACE::runtime
