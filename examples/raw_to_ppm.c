/* A frame that was saved as it came becomes a picture: raw_to_ppm frame.raw BayerRG12p 1920 1200 > frame.ppm */
#include <koro/image.h>

#include <stdio.h>
#include <stdlib.h>

static void Check(KIMG_ReturnCode code)
{
    char text[512] = "";
    size_t textSize = sizeof text;
    if (code == KIMG_RETURN_CODE_SUCCESS) return;
    KIMG_Library_GetLastError(&code, text, &textSize);
    fprintf(stderr, "%s\n", text);
    exit(EXIT_FAILURE);
}

int main(int argc, char** argv)
{
    FILE* const file = argc == 5 ? fopen(argv[1], "rb") : NULL;
    KIMG_IMAGE image = {0};
    uint64_t frameSize = 0;
    uint32_t rgb8 = 0;
    size_t pixelsSize = 0;
    void* frame;
    void* pixels;

    if (!file)
    {
        fprintf(stderr, "usage: raw_to_ppm FILE PIXELFORMAT WIDTH HEIGHT\n");
        return EXIT_FAILURE;
    }
    Check(KIMG_PixelFormat_FindByName(argv[2], &image.pixelFormat));
    image.width = strtoull(argv[3], NULL, 10);
    image.height = strtoull(argv[4], NULL, 10);
    Check(KIMG_Image_GetSize(&image, &frameSize));
    Check(KIMG_PixelFormat_FindByName("RGB8", &rgb8));
    /* Without memory for the output the function reports its size. */
    Check(KIMG_Image_Convert(&image, NULL, 0, NULL, KIMG_DEMOSAIC_EDGE_AWARE, rgb8, 0, NULL, &pixelsSize));

    frame = malloc(frameSize);
    pixels = malloc(pixelsSize);
    if (!frame || !pixels) return EXIT_FAILURE;
    /* A file that is too short is refused by the library. */
    frameSize = fread(frame, 1, frameSize, file);
    Check(KIMG_Image_Convert(&image, frame, frameSize, NULL, KIMG_DEMOSAIC_EDGE_AWARE, rgb8, 0, pixels, &pixelsSize));
    printf("P6\n%s %s\n255\n", argv[3], argv[4]);
    fwrite(pixels, 1, pixelsSize, stdout);
    free(pixels);
    free(frame);
    return fclose(file);
}
