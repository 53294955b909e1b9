#include "tools/koro/commands.h"
#include "tools/koro/failure.h"
#include "tools/koro/feature_session.h"
#include "tools/koro/feature_value.h"
#include "tools/koro/number_option.h"
#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
#include "tools/koro/tool_error.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace koro::tool
{

namespace
{

struct RegisterCommand
{
    FeatureTarget target;
    std::vector<std::string> words; // the address, and how many bytes or which
};

// Decimal, or hexadecimal after 0x.
uint64_t Number(const std::string& text, const char* what)
{
    if (const auto number = ParseUnsigned(text)) return *number;
    throw ToolError(
        "\"" + PrintableStart(text) + "\" is no " + what + ".", "Write it decimal, or hexadecimal after 0x.",
        exitUsage);
}

std::vector<uint8_t> Bytes(const std::string& text)
{
    try
    {
        const std::vector<uint8_t> bytes = ParseHex(text);
        if (!bytes.empty()) return bytes;
    }
    catch (const std::invalid_argument&)
    {}
    throw ToolError(
        "\"" + PrintableStart(text) + "\" is no row of bytes.", "Write two hexadecimal digits for each byte.",
        exitUsage);
}

// A failure names the place, which the library's text does not.
template <typename Access>
void At(const std::string& address, const char* done, const Access& access)
{
    try
    {
        access();
    }
    catch (const Error& error)
    {
        const bool isRefusedAddress = std::string(error.what()).find("GC_ERR_INVALID_ADDRESS") != std::string::npos;
        const char* const hint =
            isRefusedAddress ? "Many cameras refuse addresses that they do not use." : HintFor(error);
        throw ToolError("The registers at " + address + " cannot be " + done + ": " + error.what(), hint);
    }
}

int ReadRegisters(RegisterCommand command)
{
    constexpr uint64_t usualSize = 4;
    constexpr uint64_t maxSize = uint64_t{16} << 20;
    CompleteTarget(command.target, command.words);
    RequireWords(command.words, 1, 2, "address");
    const uint64_t address = Number(command.words.front(), "address");
    const uint64_t size = command.words.size() > 1 ? Number(command.words[1], "number of bytes") : usualSize;
    if (size == 0 || size > maxSize)
        throw ToolError("From 1 to " + std::to_string(maxSize) + " bytes are read at a time.", {}, exitUsage);
    const FeatureSession session(command.target, FeatureSession::Access::Read, FeatureSession::Wants::Port);
    At(command.words.front(), "read",
       [&] { PrintOut("%s\n", Hex(session.Port().Read(address, static_cast<size_t>(size))).c_str()); });
    return exitSuccess;
}

int WriteRegisters(RegisterCommand command)
{
    CompleteTarget(command.target, command.words);
    RequireWords(command.words, 2, 2, command.words.empty() ? "address" : "row of bytes");
    const uint64_t address = Number(command.words.front(), "address");
    const std::vector<uint8_t> bytes = Bytes(command.words[1]);
    const FeatureSession session(command.target, FeatureSession::Access::Write, FeatureSession::Wants::Port);
    At(command.words.front(), "written", [&] { session.Port().Write(address, bytes); });
    PrintOut("%s written\n", CountOf(bytes.size(), "byte").c_str());
    return exitSuccess;
}

} // namespace

Action DefineRead(CLI::App& command)
{
    const auto options = std::make_shared<RegisterCommand>();
    DefineAnyModule(command, options->target, true);
    command.add_option("words", options->words, "The address, decimal or hexadecimal after 0x, and how many bytes (4)")
        ->type_name("ADDRESS [BYTES]");
    return [options] { return ReadRegisters(*options); };
}

Action DefineWrite(CLI::App& command)
{
    const auto options = std::make_shared<RegisterCommand>();
    DefineAnyModule(command, options->target, true);
    command.add_option("words", options->words, "The address, and the bytes in hexadecimal, in the order of addresses")
        ->type_name("ADDRESS BYTES");
    return [options] { return WriteRegisters(*options); };
}

} // namespace koro::tool
