#include "tools/koro/failure.h"

#include "tools/koro/report.h"
#include "tools/koro/standard_streams.h"
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
    std::fprintf(Errors(), "koro: %s\n", PrintableLines(text).c_str());
    if (!hint.empty()) std::fprintf(Errors(), "hint: %s\n", PrintableLines(hint).c_str());
    return status;
}

} // namespace

const char* HintFor(const koro::Error& error)
{
    const std::string text = error.what();
    // A frame that does not come is no error: the grab counts it.
    if (error.Code() == KORO_RETURN_CODE_TIMEOUT || text.find("(GC_ERR_TIMEOUT)") != text.npos)
        return "The camera did not answer in time: check its cable, power and network.";
    switch (error.Code())
    {
    case KORO_RETURN_CODE_CTI_LOADING_ERROR:
    case KORO_RETURN_CODE_NOT_FOUND:
        return "`koro doctor` shows which producers are found and why one cannot be loaded.";
    case KORO_RETURN_CODE_BAD_ACCESS:
        // The same code comes from any refusal, such as the refusal of a buffer; no other program is behind those.
        if (text.find("[Function: IFOpenDevice ") == text.npos) break;
        return "Another program may have opened the camera; `koro list` shows its access status.";
    default:
        break;
    }
    return "`koro doctor` checks the producers; the text in brackets is the producer's own.";
}

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
