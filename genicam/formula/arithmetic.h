// The operators of formulas: 64-bit integers that wrap around, and doubles. Failures are FormulaErrors.
#pragma once

#include "formula/formula.h"

namespace GENAPI_NAMESPACE::runtime
{

int64_t Compute(Operation operation, int64_t left, int64_t right);
double Compute(Operation operation, double left, double right);
// The operations with one operand.
int64_t Compute(Operation operation, int64_t operand);
double Compute(Operation operation, double operand);

// Operands that an operation takes from the stack.
size_t OperandsOf(Operation operation);

} // namespace GENAPI_NAMESPACE::runtime
