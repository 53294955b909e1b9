#include "formula/compiler.h"

#include "base/quoted.h"
#include "formula/arithmetic.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <numeric>
#include <string.h>
#include <strings.h>
#include <type_traits>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const unsigned maxNesting = 1000; // brackets and function calls within each other

struct NamedOperation
{
    const char* name;
    Operation operation;
};

const NamedOperation functions[] = {
    {"SGN", Operation::Sgn},   {"NEG", Operation::Negate}, // integer formulas have these two only
    {"ABS", Operation::Abs},   {"SQRT", Operation::Sqrt},   {"SIN", Operation::Sin},   {"COS", Operation::Cos},
    {"TAN", Operation::Tan},   {"ASIN", Operation::Asin},   {"ACOS", Operation::Acos}, {"ATAN", Operation::Atan},
    {"EXP", Operation::Exp},   {"LN", Operation::Ln},       {"LG", Operation::Lg},     {"TRUNC", Operation::Trunc},
    {"FRAC", Operation::Frac}, {"FLOOR", Operation::Floor}, {"CEIL", Operation::Ceil}, {"ROUND", Operation::Round},
};

const NamedOperation bitOperators[] = {{"**", Operation::Power},      {"<<", Operation::ShiftLeft},
                                       {">>", Operation::ShiftRight}, {"&", Operation::And},
                                       {"|", Operation::Or},          {"^", Operation::Xor}};
const NamedOperation productOperators[] = {
    {"*", Operation::Multiply}, {"/", Operation::Divide}, {"%", Operation::Remainder}};
const NamedOperation sumOperators[] = {{"+", Operation::Add}, {"-", Operation::Subtract}};
const NamedOperation logicOperators[] = {{"=", Operation::Equal},        {"<>", Operation::Unequal},
                                         {"<", Operation::Less},         {">", Operation::Greater},
                                         {"<=", Operation::LessOrEqual}, {">=", Operation::GreaterOrEqual},
                                         {"&&", Operation::LogicalAnd},  {"||", Operation::LogicalOr}};

template <size_t N>
const NamedOperation* FindOperator(const NamedOperation (&table)[N], const Token& token)
{
    if (token.kind != TokenKind::Operator) return nullptr;
    const auto found = std::find_if(
        std::begin(table), std::end(table), [&](const NamedOperation& entry) { return token.text == entry.name; });
    return found == std::end(table) ? nullptr : found;
}

bool SameLetters(std::string_view text, const char* name)
{
    return text.size() == strlen(name) && strncasecmp(text.data(), name, text.size()) == 0;
}

template <class Number>
const NamedOperation* FindFunction(std::string_view name)
{
    const size_t count = std::is_same<Number, int64_t>::value ? 2 : std::size(functions);
    const auto found = std::find_if(
        functions, functions + count, [&](const NamedOperation& entry) { return SameLetters(name, entry.name); });
    return found == functions + count ? nullptr : found;
}

bool IsHex(std::string_view text)
{
    return text.size() > 1 && (text[1] == 'x' || text[1] == 'X');
}

// Beyond the range: the largest number.
bool ReadLiteral(std::string_view text, int64_t& number)
{
    const bool hex = IsHex(text);
    if (hex && text[1] == 'X') return false;
    const std::string_view digits = hex ? text.substr(2) : text;
    const std::from_chars_result result =
        std::from_chars(digits.data(), digits.data() + digits.size(), number, hex ? 16 : 10);
    if (result.ec == std::errc::result_out_of_range) number = std::numeric_limits<int64_t>::max();
    return result.ec != std::errc::invalid_argument && result.ptr == digits.data() + digits.size();
}

// Whether a decimal number is below 1; from_chars does not distinguish too small from too large.
bool IsBelowOne(std::string_view digits)
{
    const size_t letter = std::min(digits.find_first_of("eE"), digits.size());
    const std::string_view mantissa = digits.substr(0, letter);
    const size_t firstDigit = mantissa.find_first_of("123456789");
    if (firstDigit == std::string_view::npos) return true;
    std::string_view written = digits.substr(std::min(letter + 1, digits.size()));
    if (written.substr(0, 1) == "+") written.remove_prefix(1);
    int64_t exponent = 0;
    const std::from_chars_result read = std::from_chars(written.data(), written.data() + written.size(), exponent);
    if (read.ec == std::errc::result_out_of_range) return written[0] == '-';

    const int64_t point = static_cast<int64_t>(std::min(mantissa.find('.'), mantissa.size()));
    const int64_t first = static_cast<int64_t>(firstDigit);
    const int64_t power = first < point ? point - first - 1 : point - first; // of ten, at the first digit that counts
    return exponent < -power;
}

bool ReadLiteral(std::string_view text, double& number)
{
    const bool hex = IsHex(text);
    const std::string_view digits = hex ? text.substr(2) : text;
    const std::from_chars_result result = std::from_chars(
        digits.data(), digits.data() + digits.size(), number,
        hex ? std::chars_format::hex : std::chars_format::general);
    if (result.ec == std::errc::result_out_of_range)
    {
        number = !hex && IsBelowOne(digits) ? 0 : std::numeric_limits<double>::infinity();
    }
    return result.ec != std::errc::invalid_argument && result.ptr == digits.data() + digits.size();
}

} // namespace

template <class Number>
FormulaCompiler<Number>::FormulaCompiler(
    Formula<Number>& result, std::string_view text, const std::vector<std::string_view>& variables)
    : formula(result), text(text), variables(variables), byName(variables.size()), token(NextToken(text, 0))
{
    formula.depth = 0;
    std::iota(byName.begin(), byName.end(), 0u);
    std::stable_sort(byName.begin(), byName.end(), [&](uint32_t left, uint32_t right) {
        return variables[left] < variables[right];
    });
}

template <class Number>
void FormulaCompiler<Number>::Run()
{
    Expression(true);
    if (!Is(TokenKind::End)) throw FormulaError{"syntax error at " + Quoted(token.text)};
}

template <class Number>
void FormulaCompiler<Number>::Expression(bool mayBranch)
{
    if (++nesting > maxNesting) throw FormulaError{"nested too deep"};
    Sum();
    for (;;)
    {
        if (const NamedOperation* const found = FindOperator(logicOperators, token))
        {
            Advance();
            Sum();
            Emit(found->operation);
        }
        else if (Is(TokenKind::Question) && mayBranch)
        {
            Advance();
            Expression(false);
            Expect(TokenKind::Colon, ":");
            Sum();
            Emit(Operation::Select);
        }
        else
        {
            break;
        }
    }
    --nesting;
}

template <class Number>
void FormulaCompiler<Number>::Sum()
{
    Product();
    while (const NamedOperation* const found = FindOperator(sumOperators, token))
    {
        Advance();
        RefuseSign();
        Product();
        Emit(found->operation);
    }
}

template <class Number>
void FormulaCompiler<Number>::Product()
{
    Bits();
    while (const NamedOperation* const found = FindOperator(productOperators, token))
    {
        Advance();
        Bits();
        Emit(found->operation);
    }
}

template <class Number>
void FormulaCompiler<Number>::Bits()
{
    Unary('\0');
    while (const NamedOperation* const found = FindOperator(bitOperators, token))
    {
        Advance();
        Unary('\0');
        Emit(found->operation);
    }
}

template <class Number>
void FormulaCompiler<Number>::RefuseSign() const
{
    if (IsOperator("+") || IsOperator("-")) throw FormulaError{"extra operation " + Quoted(token.text)};
}

// Signs and complements may alternate; two of a kind in a row are none.
template <class Number>
void FormulaCompiler<Number>::Unary(char previousSign)
{
    const bool sign = IsOperator("-") || IsOperator("+");
    if (!sign && !IsOperator("~")) return Primary();
    const char kind = sign ? '-' : '~';
    if (kind == previousSign) throw FormulaError{"extra operation " + Quoted(token.text)};
    if (++nesting > maxNesting) throw FormulaError{"nested too deep"};
    const bool negate = IsOperator("-");
    Advance();
    Unary(kind);
    if (negate) Emit(Operation::Negate);
    if (!sign) Emit(Operation::Complement);
    --nesting;
}

template <class Number>
void FormulaCompiler<Number>::Primary()
{
    switch (token.kind)
    {
    case TokenKind::Number:
        return Literal();
    case TokenKind::Name:
        return Name();
    case TokenKind::Open:
        Advance();
        Expression(true);
        Expect(TokenKind::Close, ")");
        return;
    case TokenKind::End:
        throw FormulaError{"the formula ends too early"};
    default:
        throw FormulaError{"syntax error at " + Quoted(token.text)};
    }
}

template <class Number>
void FormulaCompiler<Number>::Literal()
{
    Number number = 0;
    if (!ReadLiteral(token.text, number)) throw FormulaError{Quoted(token.text) + " is no number here"};
    EmitConstant(number);
    Advance();
}

template <class Number>
void FormulaCompiler<Number>::Name()
{
    const std::string_view name = token.text;
    if (const NamedOperation* const function = FindFunction<Number>(name))
    {
        Advance();
        return Call(function->operation);
    }
    const bool pi = SameLetters(name, "PI");
    if (std::is_same<Number, double>::value && (pi || SameLetters(name, "E")))
    {
        EmitConstant(static_cast<Number>(pi ? 3.14159265358979323846 : 2.71828182845904523536));
        Advance();
        if (!Is(TokenKind::Open)) return;
        Advance();
        return Expect(TokenKind::Close, ")");
    }
    const uint32_t variable = Variable(name);
    if (variable == noVariable) throw FormulaError{"unknown name " + Quoted(name)};
    Emit(Operation::Variable, variable);
    Advance();
}

template <class Number>
uint32_t FormulaCompiler<Number>::Variable(std::string_view name) const
{
    const auto found =
        std::lower_bound(byName.begin(), byName.end(), name, [this](uint32_t position, std::string_view wanted) {
            return variables[position] < wanted;
        });
    return found != byName.end() && variables[*found] == name ? *found : noVariable;
}

// With a bracket after its name the function applies to the contents of the brackets, otherwise to everything that
// follows.
template <class Number>
void FormulaCompiler<Number>::Call(Operation function)
{
    if (!Is(TokenKind::Open))
    {
        RefuseSign();
        Expression(true);
        return Emit(function);
    }
    Advance();
    Expression(true);
    if (function == Operation::Round && Is(TokenKind::Comma))
    {
        Advance();
        Expression(true);
        function = Operation::RoundTo;
    }
    Expect(TokenKind::Close, ")");
    Emit(function);
}

template <class Number>
void FormulaCompiler<Number>::Emit(Operation operation, uint32_t operand)
{
    stack += 1 - OperandsOf(operation);
    formula.depth = std::max(formula.depth, stack);
    formula.steps.push_back({operation, operand});
}

template <class Number>
void FormulaCompiler<Number>::EmitConstant(Number number)
{
    Emit(Operation::Constant, static_cast<uint32_t>(formula.constants.size()));
    formula.constants.push_back(number);
}

template <class Number>
void FormulaCompiler<Number>::Expect(TokenKind kind, const char* what)
{
    if (!Is(kind)) throw FormulaError{std::string("'") + what + "' is missing at " + Quoted(token.text)};
    Advance();
}

template class FormulaCompiler<int64_t>;
template class FormulaCompiler<double>;

} // namespace GENAPI_NAMESPACE::runtime
