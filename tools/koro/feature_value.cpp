#include "tools/koro/feature_value.h"

#include "tools/koro/if_known.h"
#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

namespace koro::tool
{

namespace
{

constexpr size_t maxShown = 60;

ToolError NoValue(const Node& node)
{
    const std::string name = node.Name();
    if (node.Type() == KORO_NODE_TYPE_COMMAND)
        return ToolError(name + " is a command and has no value.", "`koro run` executes it.");
    return ToolError(name + " is of the type " + TypeName(node.Type()) + " and has no value.");
}

ToolError WrongText(const Node& node, const std::string& text, const std::string& wanted)
{
    return ToolError("\"" + PrintableStart(text) + "\" is no value for " + node.Name() + ", which is " + wanted + ".");
}

// Groups of digits between separators, as in 10.0.0.1.
int64_t ParseGroups(const std::string& text, char separator, size_t count, int base)
{
    uint64_t number = 0;
    const char* at = text.data();
    const char* const end = at + text.size();
    for (size_t group = 0; group < count; ++group)
    {
        uint8_t part = 0;
        const auto result = std::from_chars(at, end, part, base);
        if (result.ec != std::errc()) throw std::invalid_argument("no number");
        number = number << 8 | part;
        at = result.ptr;
        if (group + 1 < count && (at == end || *at++ != separator)) throw std::invalid_argument("too short");
    }
    if (at != end) throw std::invalid_argument("too long");
    return static_cast<int64_t>(number);
}

template <typename Number>
Number ParseDigits(const std::string& digits, int base)
{
    Number number = 0;
    const char* const end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, number, base);
    if (result.ec != std::errc() || result.ptr != end) throw std::invalid_argument("no number");
    return number;
}

// A number may have one sign.
std::string WithoutPlus(const std::string& text)
{
    const bool hasPlus = !text.empty() && text.front() == '+';
    if (hasPlus && text.size() > 1 && text[1] == '-') throw std::invalid_argument("two signs");
    return text.substr(hasPlus ? 1 : 0);
}

// The entry that a text names, by name before number. Empty when there is none.
EnumerationEntryNode EntryFor(const EnumerationNode& node, const std::string& text)
{
    const EnumerationEntryNode named = node.TryEntry(text);
    if (named) return named;
    try
    {
        return node.TryEntry(ParseNumber(text));
    }
    catch (const std::invalid_argument&)
    {
        return EnumerationEntryNode();
    }
}

// Calls one of the functions with the parsed value; throws ToolError when it cannot be parsed.
template <
    typename WithNumber, typename WithReal, typename WithFlag, typename WithEntry, typename WithText,
    typename WithBytes>
void Parse(
    const Node& node, const std::string& text, const WithNumber& withNumber, const WithReal& withReal,
    const WithFlag& withFlag, const WithEntry& withEntry, const WithText& withText, const WithBytes& withBytes)
{
    const char* wanted = "";
    try
    {
        switch (node.Type())
        {
        case KORO_NODE_TYPE_INTEGER:
            wanted = "a whole number";
            return withNumber(ParseNumber(text));
        case KORO_NODE_TYPE_FLOAT:
            wanted = "a number";
            return withReal(ParseReal(text));
        case KORO_NODE_TYPE_BOOLEAN:
            if (const auto flag = ParseBoolean(text)) return withFlag(*flag);
            throw WrongText(node, text, "true or false");
        case KORO_NODE_TYPE_ENUMERATION:
            return withEntry(EntryFor(node.ToEnumeration(), text));
        case KORO_NODE_TYPE_STRING:
            return withText(text);
        case KORO_NODE_TYPE_REGISTER:
            wanted = "bytes in hexadecimal";
            return withBytes(ParseHex(text));
        default:
            throw NoValue(node);
        }
    }
    catch (const std::invalid_argument&)
    {
        throw WrongText(node, text, wanted);
    }
}

} // namespace

std::string Hex(const std::vector<uint8_t>& bytes)
{
    constexpr char digits[] = "0123456789abcdef";
    std::string text = "0x";
    for (const uint8_t byte : bytes)
    {
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

std::vector<uint8_t> ParseHex(const std::string& text)
{
    const size_t start = text.rfind("0x", 0) == 0 || text.rfind("0X", 0) == 0 ? 2 : 0;
    if ((text.size() - start) % 2 != 0) throw std::invalid_argument("half a byte");
    std::vector<uint8_t> bytes;
    for (size_t i = start; i < text.size(); i += 2)
    {
        uint8_t byte = 0;
        const auto [end, failure] = std::from_chars(&text[i], &text[i] + 2, byte, 16);
        if (failure != std::errc() || end != &text[i] + 2) throw std::invalid_argument("no hexadecimal digit");
        bytes.push_back(byte);
    }
    return bytes;
}

bool HasValue(KORO_NodeType type)
{
    switch (type)
    {
    case KORO_NODE_TYPE_INTEGER:
    case KORO_NODE_TYPE_FLOAT:
    case KORO_NODE_TYPE_BOOLEAN:
    case KORO_NODE_TYPE_ENUMERATION:
    case KORO_NODE_TYPE_STRING:
    case KORO_NODE_TYPE_REGISTER:
        return true;
    default:
        return false;
    }
}

const char* TypeName(KORO_NodeType type)
{
    constexpr std::array<const char*, 9> names = {"Integer",  "Boolean",  "Command",     "Float",           "String",
                                                  "Register", "Category", "Enumeration", "EnumerationEntry"};
    return type >= 0 && static_cast<size_t>(type) < names.size() ? names[static_cast<size_t>(type)] : "Node";
}

std::string NumberText(int64_t number, KORO_NodeRepresentation representation)
{
    const auto byte = [number](int index) {
        return static_cast<unsigned>(static_cast<uint64_t>(number) >> (8 * index) & 0xFF);
    };
    char text[32];
    switch (representation)
    {
    case KORO_NODE_REPRESENTATION_HEX_NUMBER:
        std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(number));
        return text;
    case KORO_NODE_REPRESENTATION_IPV4_ADDRESS:
        std::snprintf(text, sizeof text, "%u.%u.%u.%u", byte(3), byte(2), byte(1), byte(0));
        return text;
    case KORO_NODE_REPRESENTATION_MAC_ADDRESS:
        std::snprintf(
            text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", byte(5), byte(4), byte(3), byte(2), byte(1), byte(0));
        return text;
    default:
        return std::to_string(number);
    }
}

std::string NumberText(double number)
{
    char text[64];
    const double size = std::abs(number);
    const bool readable = size >= 1e-4 && size < 1e15;
    const auto result = readable ? std::to_chars(text, text + sizeof text, number, std::chars_format::fixed)
                                 : std::to_chars(text, text + sizeof text, number);
    return std::string(text, result.ptr);
}

int64_t ParseNumber(const std::string& text)
{
    if (text.find(':') != text.npos) return ParseGroups(text, ':', 6, 16);
    if (text.find('.') != text.npos) return ParseGroups(text, '.', 4, 10);
    const bool hexadecimal = text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    if (hexadecimal) return static_cast<int64_t>(ParseDigits<uint64_t>(text.substr(2), 16));
    return ParseDigits<int64_t>(WithoutPlus(text), 10);
}

double ParseReal(const std::string& text)
{
    double number = 0;
    const std::string digits = WithoutPlus(text);
    const char* const end = digits.data() + digits.size();
    const auto result = std::from_chars(digits.data(), end, number);
    // What is no number compares with no limit, so no range would keep it from the camera.
    if (result.ec != std::errc() || result.ptr != end || std::isnan(number)) throw std::invalid_argument("no number");
    return number;
}

std::optional<bool> ParseBoolean(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](unsigned char c) { return std::tolower(c); });
    for (const char* const word : {"1", "true", "on", "yes"})
    {
        if (text == word) return true;
    }
    for (const char* const word : {"0", "false", "off", "no"})
    {
        if (text == word) return false;
    }
    return std::nullopt;
}

std::string ReadValue(const Node& node, CachePolicy policy)
{
    switch (node.Type())
    {
    case KORO_NODE_TYPE_INTEGER: {
        const IntegerNode number = node.ToInteger();
        return NumberText(number.Value(policy), number.Representation());
    }
    case KORO_NODE_TYPE_FLOAT:
        return NumberText(node.ToFloat().Value(policy));
    case KORO_NODE_TYPE_BOOLEAN:
        return node.ToBoolean().Value(policy) ? "true" : "false";
    case KORO_NODE_TYPE_ENUMERATION:
        return node.ToEnumeration().CurrentEntry(policy).SymbolicValue();
    case KORO_NODE_TYPE_STRING:
        return node.ToString().Value(policy);
    case KORO_NODE_TYPE_REGISTER:
        return Hex(node.ToRegister().Read(policy));
    default:
        throw NoValue(node);
    }
}

std::string ShowValue(const Node& node)
{
    std::string text;
    if (node.Type() == KORO_NODE_TYPE_FLOAT)
    {
        char digits[32];
        std::snprintf(digits, sizeof digits, "%.6g", node.ToFloat().Value());
        text = NumberText(std::strtod(digits, nullptr));
    }
    else
    {
        text = ReadValue(node);
        const bool isLong = text.size() > maxShown;
        text = isLong ? Printable(text.substr(0, maxShown)) + "..." : Printable(text);
    }
    return node.Type() == KORO_NODE_TYPE_STRING ? "\"" + text + "\"" : text;
}

void CheckValue(const Node& node, const std::string& text)
{
    const auto fine = [](const auto&) {};
    const auto hasEntry = [&](const EnumerationEntryNode& entry) {
        if (entry) return;
        std::string names;
        for (const EnumerationEntryNode& known : node.ToEnumeration().Entries())
        {
            if (known.Node().IsAvailable())
                names += (names.empty() ? "" : ", ") + PrintableStart(known.SymbolicValue());
        }
        throw ToolError(
            "\"" + PrintableStart(text) + "\" is no value for " + node.Name() + ".",
            names.empty() ? "None can be chosen at this time." : "It can be " + names + ".");
    };
    const auto fits = [&](const std::vector<uint8_t>& bytes) {
        const RegisterNode known = node.ToRegister();
        const auto length = IfKnown([&] { return known.Length(); });
        if (!length || bytes.size() == *length) return; // unknown: the write tells why
        throw ToolError(
            node.Name() + " has " + std::to_string(*length) + " bytes; the value has " + std::to_string(bytes.size()) +
            ".");
    };
    Parse(node, text, fine, fine, fine, hasEntry, fine, fits);
}

void WriteValue(const Node& node, const std::string& text)
{
    Parse(
        node, text, [&](int64_t number) { node.ToInteger().SetValue(number); },
        [&](double number) { node.ToFloat().SetValue(number); }, [&](bool flag) { node.ToBoolean().SetValue(flag); },
        [&](const EnumerationEntryNode& entry) { node.ToEnumeration().SetCurrentEntry(entry); },
        [&](const std::string& value) { node.ToString().SetValue(value); },
        [&](const std::vector<uint8_t>& bytes) { node.ToRegister().Write(bytes); });
}

} // namespace koro::tool
