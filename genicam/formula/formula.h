// Formula: one formula of a description, compiled once into a small bytecode.
//
// Constant after compilation: safe to evaluate on any thread. Evaluation is never lazy: both branches of "? :" and both
// sides of "&&" are computed, and a failure in one of them fails the formula.
#pragma once

#include <Base/GCNamespace.h>
#include <stdint.h>
#include <string>
#include <string_view>
#include <vector>

namespace GENAPI_NAMESPACE::runtime
{

// Why a formula does not compile or evaluate. Caught where the node is known.
struct FormulaError
{
    std::string reason;
};

// The operations of the bytecode. Functions and operators take their operands from the stack.
enum class Operation : uint8_t
{
    Constant,
    Variable,
    Negate,
    Complement,
    Power,
    ShiftLeft,
    ShiftRight,
    And,
    Or,
    Xor,
    Multiply,
    Divide,
    Remainder,
    Add,
    Subtract,
    Equal,
    Unequal,
    Less,
    Greater,
    LessOrEqual,
    GreaterOrEqual,
    LogicalAnd,
    LogicalOr,
    Select,
    Sgn,
    Abs,
    Sqrt,
    Sin,
    Cos,
    Tan,
    Asin,
    Acos,
    Atan,
    Exp,
    Ln,
    Lg,
    Trunc,
    Frac,
    Floor,
    Ceil,
    Round,
    RoundTo
};

// Number is int64_t for integer formulas, which wrap, and double for float formulas.
template <class Number>
class Formula
{
public:
    // `variables` are the names that may occur, numbered by their position; the first of two equal names counts.
    // Throws FormulaError.
    Formula(std::string_view text, const std::vector<std::string_view>& variables);

    // `values` in the order of `variables`. Throws FormulaError.
    Number Evaluate(const Number* values) const;

private:
    struct Step
    {
        Operation operation;
        uint32_t operand; // of Constant and Variable
    };

    std::vector<Step> steps;
    std::vector<Number> constants;
    size_t depth; // of the stack

    template <class>
    friend class FormulaCompiler;
};

extern template class Formula<int64_t>;
extern template class Formula<double>;

} // namespace GENAPI_NAMESPACE::runtime
