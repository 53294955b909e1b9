#include "image/call.h"
#include "image/kernels.h"
#include <koro/image.h>

using namespace koro::image;

KIMG_ReturnCode KIMG_Library_GetVersion(uint32_t* major, uint32_t* minor, uint32_t* subminor)
{
    return Call([&] {
        RequirePointer(major, "major");
        RequirePointer(minor, "minor");
        RequirePointer(subminor, "subminor");
        *major = KIMG_VERSION_MAJOR;
        *minor = KIMG_VERSION_MINOR;
        *subminor = KIMG_VERSION_PATCH;
    });
}

KIMG_ReturnCode KIMG_Library_GetLastError(
    KIMG_ReturnCode* lastErrorCode, char* lastErrorDescription, size_t* lastErrorDescriptionSize)
{
    return Call([&] {
        RequirePointer(lastErrorCode, "lastErrorCode");
        const LastFailure& last = LastFailureOfThread();
        WriteText(last.text, lastErrorDescription, "lastErrorDescription", lastErrorDescriptionSize);
        *lastErrorCode = last.code;
    });
}

KIMG_ReturnCode KIMG_Library_GetTarget(char* name, size_t* nameSize)
{
    return Call([&] { WriteText(ChosenKernels().name, name, "name", nameSize); });
}
