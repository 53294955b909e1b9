// Converts values to texts and back. The reading functions return false for a text that is not a value.
#pragma once

#include <GenApi/Types.h>
#include <string>
#include <string_view>

namespace GENAPI_NAMESPACE::runtime
{

std::string IntegerText(int64_t value, ERepresentation representation);
// Reads decimal and 0x hexadecimal numbers up to the first other character; addresses and booleans only in their own
// form.
bool ReadInteger(std::string_view text, ERepresentation representation, int64_t& value);

// Writes the value in this notation with this number of digits; moves it inside the limits if rounding leaves them.
std::string RealText(double value, double min, double max, EDisplayNotation notation, int64_t precision);
bool ReadReal(std::string_view text, double& value);

// The form of numbers in messages: decimal, floats with six decimals.
std::string PlainText(int64_t value);
std::string PlainText(double value);

std::string HexText(const uint8_t* bytes, size_t length);
bool ReadHex(std::string_view text, std::string& bytes);

} // namespace GENAPI_NAMESPACE::runtime
