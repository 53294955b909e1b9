// Converts values to texts and back. The reading functions return false for a text that is not a value.
#pragma once

#include <GenApi/Types.h>
#include <string>
#include <string_view>

namespace GENAPI_NAMESPACE::runtime
{

std::string IntegerText(int64_t value, ERepresentation representation);
// Decimal and 0x hex up to the first other letter; addresses and truth values in their own form only.
bool ReadInteger(std::string_view text, ERepresentation representation, int64_t& value);

// In the notation with so many digits; moved inside the limits when rounding leaves them.
std::string RealText(double value, double min, double max, EDisplayNotation notation, int64_t precision);
bool ReadReal(std::string_view text, double& value);

// As messages show numbers: in decimal, floats with six decimals.
std::string PlainText(int64_t value);
std::string PlainText(double value);

std::string HexText(const uint8_t* bytes, size_t length);
bool ReadHex(std::string_view text, std::string& bytes);

} // namespace GENAPI_NAMESPACE::runtime
