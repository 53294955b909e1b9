// GCInitLib, GCCloseLib, GCGetInfo, GCGetLastError.
#include "producers/kit/last_error.h"
#include "producers/simulator/face/call.h"

#include <string_view>

namespace GenTL
{

using namespace koro::simulator; // NOLINT(google-build-using-namespace): entry points are thin wrappers over it

// Init and close look for misbehaviour themselves: the settings come and go with them.
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
        const auto library = Runtime::Instance().TheLibrary();
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, [&] { return library->Info(iInfoCmd); });
    });
}

// A failure of this function is not stored. It also answers while a failed GCInitLib is all there was.
GC_ERROR GCGetLastError(GC_ERROR* piErrorCode, char* sErrorText, size_t* piSize)
{
    try
    {
        if (!HasLastError()) RequireInitialised();
        Misbehave(__func__);
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
