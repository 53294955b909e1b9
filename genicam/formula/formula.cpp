#include "formula/formula.h"

#include "formula/arithmetic.h"
#include "formula/compiler.h"

namespace GENAPI_NAMESPACE::runtime
{

template <class Number>
Formula<Number>::Formula(std::string_view text, const std::vector<std::string_view>& variables)
{
    FormulaCompiler<Number>(*this, text, variables).Run();
    steps.shrink_to_fit();
    constants.shrink_to_fit();
}

template <class Number>
Number Formula<Number>::Evaluate(const Number* values) const
{
    const size_t usual = 32;
    Number small[usual];
    std::vector<Number> large(depth > usual ? depth : 0);
    Number* const stack = depth > usual ? large.data() : small;
    Number* top = stack; // behind the last operand
    for (const Step step : steps)
    {
        switch (step.operation)
        {
        case Operation::Constant:
            *top++ = constants[step.operand];
            break;
        case Operation::Variable:
            *top++ = values[step.operand];
            break;
        case Operation::Select:
            top -= 2;
            top[-1] = top[-1] != 0 ? top[0] : top[1];
            break;
        default:
            if (OperandsOf(step.operation) == 2)
            {
                --top;
                top[-1] = Compute(step.operation, top[-1], top[0]);
            }
            else
            {
                top[-1] = Compute(step.operation, top[-1]);
            }
        }
    }
    return top[-1];
}

template class Formula<int64_t>;
template class Formula<double>;

} // namespace GENAPI_NAMESPACE::runtime
