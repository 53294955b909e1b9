// The arguments that functions on pictures share, checked in one order: picture, region, then the frame.
#pragma once

#include "image/call.h"
#include "image/layout.h"

namespace koro::image
{

struct CheckedPicture
{
    Layout layout;
    KIMG_REGION region;
};

inline CheckedPicture CheckPicture(const KIMG_IMAGE* image, const KIMG_REGION* region, uint32_t operation)
{
    const Layout layout = CheckedLayout(image);
    RequireOperation(*layout.format, operation);
    return {layout, CheckedRegion(layout, region)};
}

inline unsigned CheckedComponent(const PixelFormat& format, size_t componentIndex)
{
    if (componentIndex >= format.NumComponents())
        throw Failure(KIMG_RETURN_CODE_OUT_OF_RANGE, "componentIndex is out of range!");
    return static_cast<unsigned>(componentIndex);
}

} // namespace koro::image
