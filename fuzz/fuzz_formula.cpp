// Formulas, compiled and computed with both number types. Brackets around the whole do not change the result, and a
// name that is not a variable is never accepted.
#include "formula/formula.h"
#include "fuzz/fuzz_target.h"

#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace
{

using GENAPI_NAMESPACE::runtime::Formula;
using GENAPI_NAMESPACE::runtime::FormulaError;
using koro::fuzz::Require;

const std::vector<std::string_view> names = {"A", "B", "A", "VAR_C", "FROM", "D.Max"};

template <class Number>
std::optional<Number> Result(std::string_view text)
{
    const Number values[] = {7, -3, 100, 2, 0, 11};
    try
    {
        const Formula<Number> formula(text, names);
        const Number result = formula.Evaluate(values);
        const Number again = formula.Evaluate(values);
        Require(result == again || std::isnan(static_cast<double>(result)), "a formula computes the same again");
        return result;
    }
    catch (const FormulaError& error)
    {
        Require(!error.reason.empty(), "a refusal says why");
        Require(error.reason.size() < 500, "a reason is short");
        return std::nullopt;
    }
}

template <class Number>
void Compute(std::string_view text)
{
    const std::optional<Number> plain = Result<Number>(text);
    if (!plain) return;
    const std::optional<Number> bracketed = Result<Number>("(" + std::string(text) + ")");
    if (!bracketed) return; // one bracket too deep
    Require(*bracketed == *plain || std::isnan(static_cast<double>(*plain)), "brackets around it change nothing");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    Compute<std::int64_t>(text);
    Compute<double>(text);
    return 0;
}
