/* The header is C, and a C program can call the library. */
#include <koro/image.h>

int main(void)
{
    KIMG_IMAGE image = {0, 0, {0, 0, 0}, 4, 2, 0, 0};
    uint64_t size = 0;
    if (KIMG_PixelFormat_FindByName("Mono12p", &image.pixelFormat) != KIMG_RETURN_CODE_SUCCESS) return 1;
    if (KIMG_Image_GetSize(&image, &size) != KIMG_RETURN_CODE_SUCCESS) return 2;
    return size == 12 ? 0 : 3;
}
