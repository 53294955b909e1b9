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

KIMG_ReturnCode KIMG_Library_GetNumTargets(size_t* numTargets)
{
    return Call([&] {
        RequirePointer(numTargets, "numTargets");
        *numTargets = SupportedKernels().size();
    });
}

KIMG_ReturnCode KIMG_Library_GetTargetName(size_t index, char* name, size_t* nameSize)
{
    return Call([&] {
        const auto supported = SupportedKernels();
        if (index >= supported.size()) throw Failure(KIMG_RETURN_CODE_OUT_OF_RANGE, "index is out of range!");
        WriteText(supported[index]->name, name, "name", nameSize);
    });
}

KIMG_ReturnCode KIMG_Library_UseTarget(const char* name)
{
    return Call([&] {
        if (!name) return ChooseKernels(nullptr);
        for (const Kernels* kernels : SupportedKernels())
        {
            if (std::string_view(name) == kernels->name) return ChooseKernels(kernels);
        }
        throw Failure(
            KIMG_RETURN_CODE_NOT_AVAILABLE, "This processor cannot run the target '" + std::string(name) + "'.");
    });
}
