#include "formula/tokens.h"

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

bool IsDigit(char letter)
{
    return letter >= '0' && letter <= '9';
}

bool IsHexDigit(char letter)
{
    return IsDigit(letter) || (letter >= 'a' && letter <= 'f') || (letter >= 'A' && letter <= 'F');
}

bool StartsName(char letter)
{
    return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z') || letter == '_';
}

// The suffix of a variable is part of its name.
bool ContinuesName(char letter)
{
    return StartsName(letter) || IsDigit(letter) || letter == '.';
}

char At(std::string_view text, size_t position)
{
    return position < text.size() ? text[position] : '\0';
}

size_t SkipDigits(std::string_view text, size_t position)
{
    while (IsDigit(At(text, position)))
        ++position;
    return position;
}

size_t EndOfNumber(std::string_view text, size_t position)
{
    if (At(text, position) == '0' && (At(text, position + 1) == 'x' || At(text, position + 1) == 'X'))
    {
        position += 2;
        while (IsHexDigit(At(text, position)))
            ++position;
        return position;
    }
    position = SkipDigits(text, position);
    if (At(text, position) == '.') position = SkipDigits(text, position + 1);
    const char letter = At(text, position);
    if (letter != 'e' && letter != 'E') return position;
    const char sign = At(text, position + 1);
    const size_t digits = position + (sign == '+' || sign == '-' ? 2 : 1);
    return IsDigit(At(text, digits)) ? SkipDigits(text, digits) : position;
}

size_t LengthOfOperator(std::string_view text, size_t position)
{
    for (const std::string_view two : {"**", "<<", ">>", "<>", "<=", ">=", "&&", "||"})
    {
        if (text.substr(position, 2) == two) return 2;
    }
    return std::string_view("+-*/%&|^~=<>").find(text[position]) != std::string_view::npos ? 1 : 0;
}

} // namespace

Token NextToken(std::string_view text, size_t position)
{
    while (position < text.size() && std::string_view(" \t\r\n").find(text[position]) != std::string_view::npos)
        ++position;
    const auto token = [&](TokenKind kind, size_t end) {
        return Token{kind, text.substr(position, end - position), end};
    };
    if (position == text.size()) return token(TokenKind::End, position);

    const char letter = text[position];
    if (IsDigit(letter)) return token(TokenKind::Number, EndOfNumber(text, position));
    if (StartsName(letter))
    {
        size_t end = position + 1;
        while (ContinuesName(At(text, end)))
            ++end;
        return token(TokenKind::Name, end);
    }
    switch (letter)
    {
    case '(':
        return token(TokenKind::Open, position + 1);
    case ')':
        return token(TokenKind::Close, position + 1);
    case ',':
        return token(TokenKind::Comma, position + 1);
    case '?':
        return token(TokenKind::Question, position + 1);
    case ':':
        return token(TokenKind::Colon, position + 1);
    default:
        break;
    }
    const size_t length = LengthOfOperator(text, position);
    if (length == 0) throw FormulaError{"syntax error at '" + std::string(text.substr(position, 20)) + "'"};
    return token(TokenKind::Operator, position + length);
}

} // namespace GENAPI_NAMESPACE::runtime
