// ToolError: a failure that the tool itself finds, with what to try and the exit status. A value.
#pragma once

#include "tools/koro/exit_codes.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace koro::tool
{

class ToolError : public std::runtime_error
{
public:
    explicit ToolError(const std::string& text, std::string hintText = {}, int exitCode = exitFailure)
        : std::runtime_error(text), hint(std::move(hintText)), status(exitCode)
    {}

    const std::string& Hint() const noexcept { return hint; }
    int ExitCode() const noexcept { return status; }

private:
    std::string hint;
    int status;
};

} // namespace koro::tool
