// The image library from outside, in C++: statistics of a frame with padding, and a refused format.
#include <koro/image.h>

#include <cstdio>
#include <string>
#include <vector>

int main()
{
    KIMG_IMAGE image{};
    if (KIMG_PixelFormat_FindByName("Mono10p", &image.pixelFormat) != KIMG_RETURN_CODE_SUCCESS) return 1;
    image.width = 4;
    image.height = 2;
    image.xPadding = 1;
    const std::vector<unsigned char> frame = {0x01, 0x08, 0x30, 0x00, 0x01, 0xEE, 0x05, 0x18, 0x70, 0x00, 0x02};
    KIMG_STATISTICS statistics{};
    if (KIMG_Image_GetStatistics(&image, frame.data(), frame.size(), nullptr, 0, &statistics) !=
        KIMG_RETURN_CODE_SUCCESS)
        return 2;
    std::printf("%g to %g, mean %g\n", statistics.minimum, statistics.maximum, statistics.mean);

    size_t size = 0;
    if (KIMG_PixelFormat_GetRefusal(0x012000C8, KIMG_OPERATION_CONVERT, nullptr, &size) != KIMG_RETURN_CODE_SUCCESS)
        return 3;
    std::string reason(size, '\0');
    if (KIMG_PixelFormat_GetRefusal(0x012000C8, KIMG_OPERATION_CONVERT, &reason[0], &size) != KIMG_RETURN_CODE_SUCCESS)
        return 4;
    std::printf("%s\n", reason.c_str());
    return 0;
}
