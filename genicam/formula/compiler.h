// FormulaCompiler: compiles the text of a formula to bytecode, in one pass. Exists during one compilation.
//
// Precedence, highest first: signs, "~", functions; then ** << >> & | ^ with equal precedence; then * / %; then + -;
// then comparisons, && || and "? :" with equal precedence. Every binary operator associates from the left.
// docs/genicam-runtime.md contains the grammar.
#pragma once

#include "formula/tokens.h"

namespace GENAPI_NAMESPACE::runtime
{

template <class Number>
class FormulaCompiler
{
public:
    FormulaCompiler(Formula<Number>& result, std::string_view text, const std::vector<std::string_view>& variables);
    void Run();

private:
    void Expression(bool mayBranch);
    void Sum();
    void Product();
    void Bits();
    void RefuseSign() const;
    void Unary(char previousSign);
    void Primary();
    void Literal();
    void Name();
    void Call(Operation function);
    // Its position, or noVariable.
    uint32_t Variable(std::string_view name) const;
    void Emit(Operation operation, uint32_t operand = 0);
    void EmitConstant(Number number);

    bool Is(TokenKind kind) const { return token.kind == kind; }
    bool IsOperator(std::string_view text) const { return Is(TokenKind::Operator) && token.text == text; }
    void Advance() { token = NextToken(text, token.end); }
    void Expect(TokenKind kind, const char* what);

    Formula<Number>& formula;
    std::string_view text;
    static constexpr uint32_t noVariable = UINT32_MAX;
    const std::vector<std::string_view>& variables;
    std::vector<uint32_t> byName; // positions of the variables; the first of equal names comes first
    Token token;
    size_t stack = 0;
    unsigned nesting = 0;
};

extern template class FormulaCompiler<int64_t>;
extern template class FormulaCompiler<double>;

} // namespace GENAPI_NAMESPACE::runtime
