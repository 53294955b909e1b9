#include "image/layout.h"

#include "image/call.h"
#include <koro/image.h>

using namespace koro::image;

KIMG_ReturnCode KIMG_Image_GetSize(const KIMG_IMAGE* image, uint64_t* imageSize)
{
    return Call([&] {
        RequirePointer(imageSize, "imageSize");
        *imageSize = CheckedLayout(image).Size();
    });
}

KIMG_ReturnCode KIMG_Image_GetPlane(const KIMG_IMAGE* image, size_t planeIndex, KIMG_PLANE* plane)
{
    return Call([&] {
        RequirePointer(plane, "plane");
        const Layout layout = CheckedLayout(image);
        if (planeIndex >= layout.format->NumPlanes())
            throw Failure(KIMG_RETURN_CODE_OUT_OF_RANGE, "planeIndex is out of range!");
        *plane = layout.Plane(static_cast<unsigned>(planeIndex));
    });
}
