// Tokens of a formula.
#pragma once

#include "formula/formula.h"

namespace GENAPI_NAMESPACE::runtime
{

enum class TokenKind : uint8_t
{
    End,
    Number,
    Name,
    Operator,
    Open,
    Close,
    Comma,
    Question,
    Colon
};

struct Token
{
    TokenKind kind;
    std::string_view text;
    size_t end; // position behind it
};

// The token at or behind `position`. Throws FormulaError for a letter that no formula has.
Token NextToken(std::string_view text, size_t position);

} // namespace GENAPI_NAMESPACE::runtime
