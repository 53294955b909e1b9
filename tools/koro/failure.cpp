#include "tools/koro/failure.h"

#include "tools/koro/report.h"
#include "tools/koro/tool_error.h"
#include <koro/koro.hpp>

#include <cstdio>
#include <string>

namespace koro::tool
{

namespace
{

int Fail(const char* text, const std::string& hint, int status)
{
    std::fprintf(stderr, "koro: %s\n", PrintableLines(text).c_str());
    if (!hint.empty()) std::fprintf(stderr, "hint: %s\n", PrintableLines(hint).c_str());
    return status;
}

const char* HintFor(const koro::Error& error)
{
    switch (error.Code())
    {
    case KORO_RETURN_CODE_CTI_LOADING_ERROR:
    case KORO_RETURN_CODE_NOT_FOUND:
        return "`koro doctor` tells which producers are found and why one cannot be loaded.";
    case KORO_RETURN_CODE_BAD_ACCESS:
        // The same code comes from any refusal, such as that of a buffer; no other program is behind those.
        if (std::string(error.what()).find("[Function: IFOpenDevice ") == std::string::npos) break;
        return "Another program may have opened the camera; `koro list` shows its access status.";
    case KORO_RETURN_CODE_TIMEOUT:
        return "Check that the camera is not waiting for a trigger, or raise --timeout.";
    default:
        break;
    }
    return "`koro doctor` checks the producers; the text in brackets is the producer's own.";
}

} // namespace

int ReportFailure(const std::exception_ptr& failure)
{
    try
    {
        std::rethrow_exception(failure);
    }
    catch (const ToolError& error)
    {
        return Fail(error.what(), error.Hint(), error.ExitCode());
    }
    catch (const koro::Error& error)
    {
        return Fail(error.what(), HintFor(error), exitFailure);
    }
    catch (const std::exception& error)
    {
        return Fail(error.what(), {}, exitFailure);
    }
}

} // namespace koro::tool
