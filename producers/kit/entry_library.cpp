// GCInitLib, GCCloseLib, GCGetInfo, GCGetLastError.
#include "producers/kit/call.h"
#include "producers/kit/last_error.h"

#include <string_view>

namespace GenTL
{

using namespace koro::kit; // NOLINT(google-build-using-namespace): entry points are thin wrappers over it

// The start shows itself to the watch, which it brings.
GC_ERROR GCInitLib(void)
{
    return CallAnyTime(__func__, [] { Runtime::Instance().Init(); });
}

GC_ERROR GCCloseLib(void)
{
    return Call(__func__, [] { Runtime::Instance().Close(); });
}

GC_ERROR GCGetInfo(TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return Call(__func__, [=, function = __func__] {
        const auto producer = Runtime::Instance().TheProducer();
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, [&] { return producer->Info(iInfoCmd); });
    });
}

// A failure of this function is not stored. It also answers while a failed GCInitLib is all there was.
GC_ERROR GCGetLastError(GC_ERROR* piErrorCode, char* sErrorText, size_t* piSize)
{
    try
    {
        if (!HasLastError()) RequireInitialised();
        Watch(__func__);
        RequirePointer(piErrorCode, "piErrorCode");
        RequirePointer(piSize, "piSize");
        *piErrorCode = LastErrorCode();
        const std::string_view text = LastErrorText();
        CopyOut({text.data(), text.size() + 1}, sErrorText, piSize);
        return GC_ERR_SUCCESS;
    }
    catch (const Failure& failure)
    {
        return failure.Code();
    }
    catch (...)
    {
        return GC_ERR_ERROR;
    }
}

} // namespace GenTL
