#include "tests/unit/image/named_format.h"

#include <cstdint>

namespace
{

uint64_t SizeOf(const KIMG_IMAGE& image)
{
    uint64_t size = 0;
    EXPECT_EQ(KIMG_Image_GetSize(&image, &size), KIMG_RETURN_CODE_SUCCESS) << LastText();
    return size;
}

KIMG_PLANE PlaneOf(const KIMG_IMAGE& image, size_t index)
{
    KIMG_PLANE plane{};
    EXPECT_EQ(KIMG_Image_GetPlane(&image, index, &plane), KIMG_RETURN_CODE_SUCCESS) << LastText();
    return plane;
}

void ExpectPlane(const KIMG_PLANE& plane, uint64_t offset, uint64_t lineBytes, uint64_t stride, uint64_t numLines)
{
    EXPECT_EQ(plane.offset, offset);
    EXPECT_EQ(plane.lineBytes, lineBytes);
    EXPECT_EQ(plane.stride, stride);
    EXPECT_EQ(plane.numLines, numLines);
}

void ExpectRefused(const KIMG_IMAGE& image, KIMG_ReturnCode code, const char* text)
{
    uint64_t size = 77;
    EXPECT_EQ(KIMG_Image_GetSize(&image, &size), code);
    EXPECT_EQ(LastText(), text);
    EXPECT_EQ(size, 77u);
}

TEST(Layout, RoundsALineUpToWholeBytes)
{
    EXPECT_EQ(SizeOf(Image("Mono8", 5, 3)), 15u);
    EXPECT_EQ(SizeOf(Image("Mono16", 5, 3)), 30u);
    EXPECT_EQ(SizeOf(Image("Mono1p", 9, 3)), 6u);
    EXPECT_EQ(SizeOf(Image("Mono10p", 5, 3)), 21u);      // 50 bits: 7 bytes
    EXPECT_EQ(SizeOf(Image("Mono12p", 5, 3)), 24u);      // 60 bits: 8 bytes
    EXPECT_EQ(SizeOf(Image("Mono10Packed", 5, 3)), 24u); // two pairs and 2 bytes
    EXPECT_EQ(SizeOf(Image("Mono14p", 3, 3)), 18u);      // 42 bits: 6 bytes
    EXPECT_EQ(SizeOf(Image("RGB10p", 3, 1)), 12u);       // 90 bits
    EXPECT_EQ(SizeOf(Image("RGB10p32", 3, 1)), 12u);
    EXPECT_EQ(SizeOf(Image("BGR565p", 3, 1)), 6u);
    EXPECT_EQ(SizeOf(Image("Confidence1", 9, 1)), 9u);
    EXPECT_EQ(SizeOf(Image("YUV411_8_UYYVYY", 7, 1)), 11u); // 84 bits
    EXPECT_EQ(SizeOf(Image("BiColorRGBG10p", 3, 1)), 8u);   // 60 bits
}

TEST(Layout, CountsPaddingBetweenLinesAndTheOffsetInFront)
{
    EXPECT_EQ(SizeOf(Image("Mono8", 5, 3, 3, 0)), 8u + 8u + 5u);
    EXPECT_EQ(SizeOf(Image("Mono8", 5, 3, 3, 100)), 121u);
    ExpectPlane(PlaneOf(Image("Mono8", 5, 3, 3, 100), 0), 100, 5, 8, 3);
}

TEST(Layout, PutsPlanesOneAfterTheOther)
{
    const KIMG_IMAGE image = Image("RGB10_Planar", 5, 3, 2, 7);
    ExpectPlane(PlaneOf(image, 0), 7, 10, 12, 3);
    ExpectPlane(PlaneOf(image, 1), 7 + 36, 10, 12, 3);
    ExpectPlane(PlaneOf(image, 2), 7 + 72, 10, 12, 3);
    EXPECT_EQ(SizeOf(image), 7u + 72 + 12 + 12 + 10);
}

TEST(Layout, RoundsThePlaneOfColourDifferencesUp)
{
    const KIMG_IMAGE image = Image("YCbCr420_8_YY_CbCr_Semiplanar", 5, 3, 1);
    ExpectPlane(PlaneOf(image, 0), 0, 5, 6, 3);
    ExpectPlane(PlaneOf(image, 1), 18, 6, 7, 2);
    EXPECT_EQ(SizeOf(image), 18u + 7 + 6);
    ExpectPlane(PlaneOf(Image("YCbCr422_8_YY_CbCr_Semiplanar", 5, 3), 1), 15, 6, 6, 3);
}

TEST(Layout, HasThreePlanesAtMost)
{
    KIMG_PLANE plane{77, 77, 77, 77};
    const KIMG_IMAGE image = Image("Mono8", 5, 3);
    EXPECT_EQ(KIMG_Image_GetPlane(&image, 1, &plane), KIMG_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_EQ(LastText(), "planeIndex is out of range!");
    EXPECT_EQ(plane.offset, 77u);
}

TEST(Layout, HoldsTheLargestPictureWithoutOverflow)
{
    const uint64_t offset = uint64_t{1} << 40;
    EXPECT_EQ(
        SizeOf(Image("Coord3D_ABC32f_Planar", 1000000, 1000000, 1000000, offset)),
        offset + uint64_t{3000000} * 5000000 - 1000000);
}

TEST(Layout, RefusesSizesBeyondItsLimits)
{
    ExpectRefused(
        Image("Mono8", 0, 3), KIMG_RETURN_CODE_OUT_OF_RANGE, "The width of the image is 0, not 1 to 1000000.");
    ExpectRefused(
        Image("Mono8", 5, 1000001), KIMG_RETURN_CODE_OUT_OF_RANGE,
        "The height of the image is 1000001, not 1 to 1000000.");
    ExpectRefused(
        Image("Mono8", 5, 5, 1000001), KIMG_RETURN_CODE_OUT_OF_RANGE,
        "The padding behind a line is 1000001 bytes, more than 1000000.");
    ExpectRefused(
        Image("Mono8", 5, 5, 0, UINT64_MAX), KIMG_RETURN_CODE_OUT_OF_RANGE,
        "The offset of the image is 18446744073709551615 bytes, more than 1099511627776.");
}

TEST(Layout, RefusesWhatTheRecordMustNotHold)
{
    KIMG_IMAGE image = Image("Mono8", 5, 5);
    image.bigEndian = 2;
    ExpectRefused(image, KIMG_RETURN_CODE_INVALID_ARGUMENT, "bigEndian of the image is neither 0 nor 1.");
    image.bigEndian = 1;
    image.reserved[2] = 1;
    ExpectRefused(image, KIMG_RETURN_CODE_INVALID_ARGUMENT, "Reserved bytes of the image are not zero.");
    image.reserved[2] = 0;
    image.pixelFormat = 5;
    ExpectRefused(image, KIMG_RETURN_CODE_NOT_FOUND, "The pixel format 0x00000005 is not known.");
    ExpectRefused(
        Image("R10_Deprecated", 5, 5), KIMG_RETURN_CODE_NOT_IMPLEMENTED,
        "R10_Deprecated: The number of this withdrawn format states a size that its data do not have.");
    uint64_t size = 0;
    EXPECT_EQ(KIMG_Image_GetSize(nullptr, &size), KIMG_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(LastText(), "image is not a valid pointer!");
}

} // namespace
