#include "tests/unit/image/sample_picture.h"

#include <bit>
#include <cstring>
#include <gmock/gmock.h>

namespace
{

using testing::ElementsAre;

// The bits of a line as one long list, least significant bit of the first byte first.
std::vector<unsigned> BitsOf(const uint8_t* line, size_t bytes)
{
    std::vector<unsigned> bits;
    for (size_t i = 0; i < 8 * bytes; ++i)
        bits.push_back((line[i / 8] >> (i % 8)) & 1u);
    return bits;
}

unsigned NumberOf(const std::vector<unsigned>& bits, size_t start, size_t count)
{
    unsigned number = 0;
    for (size_t i = count; i > 0; --i)
        number = 2 * number + bits.at(start + i - 1);
    return number;
}

TEST(Unpacking, ReadsDenseSamplesFromTheLeastSignificantBitOn)
{
    for (const auto& [name, bits] :
         {std::pair{"Mono1p", 1u},
          {"Mono2p", 2u},
          {"Mono4p", 4u},
          {"BayerRG10p", 10u},
          {"Mono12p", 12u},
          {"Mono14p", 14u},
          {"Coord3D_C10p", 10u}})
    {
        for (const uint64_t width : {1u, 2u, 3u, 5u, 31u, 67u, 200u})
        {
            const KIMG_IMAGE image = Image(name, width, 2, 3, 5);
            const Bytes bytes = RandomBytes(image);
            KIMG_PLANE plane{};
            ASSERT_EQ(KIMG_Image_GetPlane(&image, 0, &plane), KIMG_RETURN_CODE_SUCCESS);
            const auto values = Unpacked16(image, bytes);
            ASSERT_EQ(values.size(), 2 * width);
            for (size_t y = 0; y < 2; ++y)
            {
                const auto line = BitsOf(bytes.data() + plane.offset + y * plane.stride, plane.lineBytes);
                for (size_t x = 0; x < width; ++x)
                    ASSERT_EQ(values[y * width + x], NumberOf(line, x * bits, bits))
                        << name << ' ' << width << ' ' << x;
            }
        }
    }
}

TEST(Unpacking, ReadsTwoSamplesFromThreeBytes)
{
    // First sample 0xAB and low bits 0xD, second 0xEF and low bits 0xC.
    const Bytes twelve = {0xAB, 0xCD, 0xEF, 0x12, 0x34, 0x56, 0x78, 0x0A};
    EXPECT_THAT(Unpacked16(Image("Mono12Packed", 5, 1), twelve), ElementsAre(0xABD, 0xEFC, 0x124, 0x563, 0x78A));
    // Low bits of the first one in bits 0 and 1, of the second one in bits 4 and 5; the others do not count.
    const Bytes ten = {0xFF, 0xDE, 0x01, 0x80, 0x03};
    EXPECT_THAT(Unpacked16(Image("Mono10Packed", 3, 1), ten), ElementsAre(0x3FE, 0x005, 0x203));
}

TEST(Unpacking, ReadsPackedSamplesOfLongLines)
{
    for (const auto& [name, lowBits] : {std::pair{"BayerGR10Packed", 2u}, {"BayerGR12Packed", 4u}})
    {
        const KIMG_IMAGE image = Image(name, 301, 1);
        const Bytes bytes = RandomBytes(image);
        const auto values = Unpacked16(image, bytes);
        for (size_t x = 0; x < 301; ++x)
        {
            const auto bits = BitsOf(bytes.data() + x / 2 * 3, x / 2 * 3 + 2 < bytes.size() ? 3 : 2);
            const unsigned high = NumberOf(bits, x % 2 == 0 ? 0 : 16, 8);
            const unsigned low = NumberOf(bits, x % 2 == 0 ? 8 : 12, lowBits);
            ASSERT_EQ(values[x], (high << lowBits) + low) << name << ' ' << x;
        }
    }
}

TEST(Unpacking, ReadsWholeBytesInBothOrders)
{
    const Bytes bytes = {0x34, 0x12, 0x78, 0x56};
    KIMG_IMAGE image = Image("Mono16", 2, 1);
    EXPECT_THAT(Unpacked16(image, bytes), ElementsAre(0x1234, 0x5678));
    image.bigEndian = 1;
    EXPECT_THAT(Unpacked16(image, bytes), ElementsAre(0x3412, 0x7856));
    image = Image("Coord3D_C32f", 1, 1);
    const Bytes one = {0, 0, 0x80, 0x3F};
    EXPECT_THAT(UnpackedFloat(image, one), ElementsAre(1.0F));
    image.bigEndian = 1;
    EXPECT_THAT(UnpackedFloat(image, {0x3F, 0x80, 0, 0}), ElementsAre(1.0F));
}

TEST(Unpacking, GivesTheUpperEightBitsOrRepeatsFewer)
{
    EXPECT_THAT(Unpacked8(Image("Mono12", 3, 1), {0xFF, 0x0F, 0x34, 0x02, 0xFF, 0x1F}), ElementsAre(255, 0x23, 255));
    EXPECT_THAT(Unpacked8(Image("Mono1p", 3, 1), {0x05}), ElementsAre(255, 0, 255));
    EXPECT_THAT(Unpacked8(Image("Mono2p", 4, 1), {0xE4}), ElementsAre(0, 85, 170, 255));
    EXPECT_THAT(Unpacked8(Image("Mono4p", 2, 1), {0xF3}), ElementsAre(0x33, 0xFF));
    EXPECT_THAT(Unpacked8(Image("Confidence1", 3, 1), {1, 0, 7}), ElementsAre(255, 0, 255));
}

TEST(Unpacking, KeepsTheOrderOfSignedSamples)
{
    EXPECT_THAT(Unpacked8(Image("Mono8s", 3, 1), {0x80, 0x00, 0x7F}), ElementsAre(0, 128, 255));
    EXPECT_THAT(Unpacked16(Image("Data16s", 2, 1), {0x00, 0x80, 0xFF, 0x7F}), ElementsAre(0, 65535));
    EXPECT_THAT(UnpackedFloat(Image("Mono8s", 3, 1), {0x80, 0x00, 0x7F}), ElementsAre(-128, 0, 127));
    EXPECT_THAT(UnpackedFloat(Image("Data32s", 1, 1), {0xFE, 0xFF, 0xFF, 0xFF}), ElementsAre(-2));
    EXPECT_THAT(
        UnpackedFloat(Image("Data64s", 1, 1), {0, 0, 0, 0, 0, 0, 0, 0x80}), ElementsAre(-9223372036854775808.0F));
}

TEST(Unpacking, RoundsWideNumbersToFloats)
{
    const double value = 1.0 / 3;
    Bytes bytes(8);
    std::memcpy(bytes.data(), &value, 8);
    EXPECT_THAT(UnpackedFloat(Image("Data64f", 1, 1), bytes), ElementsAre(1.0F / 3));
    EXPECT_THAT(UnpackedFloat(Image("Mono32", 1, 1), {1, 0, 0, 0x80}), ElementsAre(2147483648.0F));
    EXPECT_THAT(UnpackedFloat(Image("Mono12p", 2, 1), {0xFF, 0x1F, 0x00}), ElementsAre(4095, 1));
}

TEST(Unpacking, PutsComponentsIntoOneOrder)
{
    EXPECT_THAT(Unpacked8(Image("RGB8", 1, 1), {1, 2, 3}), ElementsAre(1, 2, 3));
    EXPECT_THAT(Unpacked8(Image("BGR8", 1, 1), {1, 2, 3}), ElementsAre(3, 2, 1));
    EXPECT_THAT(Unpacked8(Image("BGRa8", 1, 1), {1, 2, 3, 4}), ElementsAre(3, 2, 1, 4));
    EXPECT_THAT(Unpacked8(Image("RGB8_Planar", 2, 1), {1, 2, 3, 4, 5, 6}), ElementsAre(1, 3, 5, 2, 4, 6));
    EXPECT_THAT(Unpacked8(Image("YUV8_UYV", 1, 1), {1, 2, 3}), ElementsAre(2, 1, 3));
    EXPECT_THAT(Unpacked8(Image("YCbCr8", 1, 1), {1, 2, 3}), ElementsAre(1, 2, 3));
    EXPECT_THAT(Unpacked8(Image("Coord3D_AC8_Planar", 2, 1), {1, 2, 3, 4}), ElementsAre(1, 3, 2, 4));
    EXPECT_THAT(Unpacked8(Image("BiColorBGRG8", 2, 1), {1, 2, 3, 4}), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(Unpacked16(Image("BGR10p", 1, 1), {0x01, 0x08, 0x30, 0x00}), ElementsAre(3, 2, 1));
}

TEST(Unpacking, ReadsFieldsOfOnePixel)
{
    // Red 1, green 2, blue 3 from the least significant bit on.
    EXPECT_THAT(Unpacked16(Image("RGB10p32", 1, 1), {0x01, 0x08, 0x30, 0x00}), ElementsAre(1, 2, 3));
    EXPECT_THAT(Unpacked16(Image("RGB565p", 1, 1), {0x41, 0x18}), ElementsAre(1, 2, 3));
    EXPECT_THAT(Unpacked16(Image("BGR565p", 1, 1), {0x41, 0x18}), ElementsAre(3, 2, 1));
    EXPECT_THAT(Unpacked8(Image("RGB565p", 1, 1), {0xFF, 0xFF}), ElementsAre(255, 255, 255));
}

TEST(Unpacking, RepeatsSharedColourDifferences)
{
    EXPECT_THAT(
        Unpacked8(Image("YUV422_8_UYVY", 4, 1), {1, 10, 2, 11, 3, 12, 4, 13}),
        ElementsAre(10, 1, 2, 11, 1, 2, 12, 3, 4, 13, 3, 4));
    EXPECT_THAT(Unpacked8(Image("YCbCr422_8", 2, 1), {10, 1, 11, 2}), ElementsAre(10, 1, 2, 11, 1, 2));
    EXPECT_THAT(
        Unpacked8(Image("YUV411_8_UYYVYY", 4, 1), {1, 10, 11, 2, 12, 13}),
        ElementsAre(10, 1, 2, 11, 1, 2, 12, 1, 2, 13, 1, 2));
    EXPECT_THAT(
        Unpacked8(Image("YCbCr411_8", 4, 1), {10, 11, 1, 12, 13, 2}),
        ElementsAre(10, 1, 2, 11, 1, 2, 12, 1, 2, 13, 1, 2));
    EXPECT_THAT(
        Unpacked8(Image("YCbCr420_8_YY_CrCb_Semiplanar", 2, 2), {10, 11, 12, 13, 1, 2}),
        ElementsAre(10, 2, 1, 11, 2, 1, 12, 2, 1, 13, 2, 1));
}

TEST(Unpacking, FillsColourDifferencesThatAnOddLineLacks)
{
    // The third pixel has Cb only; Cr comes from the group before.
    EXPECT_THAT(Unpacked8(Image("YCbCr422_8", 3, 1), {10, 1, 11, 2, 12, 3}), ElementsAre(10, 1, 2, 11, 1, 2, 12, 3, 2));
    // There is no group before.
    EXPECT_THAT(Unpacked8(Image("YCbCr422_8", 1, 1), {10, 1}), ElementsAre(10, 1, 128));
    EXPECT_THAT(
        Unpacked8(Image("YCbCr422_8_YY_CbCr_Semiplanar", 3, 1), {10, 11, 12, 1, 2, 3, 4}),
        ElementsAre(10, 1, 2, 11, 1, 2, 12, 3, 4));
}

// A region has the samples that the whole picture has there, for every format, at even and odd places.
TEST(Unpacking, ReadsRegionsOfEveryFormat)
{
    for (const std::string& name : FormatsFor(KIMG_OPERATION_UNPACK_FLOAT))
    {
        const KIMG_IMAGE image = Image(name.c_str(), 37, 7, 3, 2);
        const Bytes bytes = RandomBytes(image);
        const size_t channels = InfoOf(name.c_str()).numComponents;
        const auto whole = UnpackedFloat(image, bytes);
        for (const KIMG_REGION& region : {KIMG_REGION{0, 0, 37, 7}, {1, 1, 1, 1}, {5, 3, 13, 4}, {36, 6, 1, 1}})
        {
            const auto part = UnpackedFloat(image, bytes, &region);
            ASSERT_EQ(part.size(), region.width * region.height * channels);
            for (size_t i = 0; i < part.size(); ++i)
            {
                const size_t y = region.y + i / (region.width * channels);
                const size_t x = region.x * channels + i % (region.width * channels);
                ASSERT_EQ(std::bit_cast<uint32_t>(part[i]), std::bit_cast<uint32_t>(whole[y * 37 * channels + x]))
                    << name;
            }
        }
    }
}

TEST(Unpacking, LeavesTheBytesBetweenLinesAlone)
{
    const KIMG_IMAGE image = Image("Mono8", 2, 2);
    EXPECT_THAT(Unpacked8(image, {1, 2, 3, 4}, nullptr, 4), ElementsAre(1, 2, 0xA5, 0xA5, 3, 4));
    EXPECT_THAT(Unpacked16(image, {1, 2, 3, 4}, nullptr, 6), ElementsAre(1, 2, 0xA5, 3, 4));
}

struct RefusedCall
{
    KIMG_IMAGE image = Image("Mono12p", 4, 2);
    Bytes bytes = RandomBytes(image);
    size_t dataSize = bytes.size();
    KIMG_REGION region{0, 0, 4, 2};
    size_t stride = 0;
    std::vector<uint16_t> output = std::vector<uint16_t>(8, 0xA5A5);
    size_t outputSize = 16;

    KIMG_ReturnCode operator()()
    {
        return KIMG_Image_Unpack16(&image, bytes.data(), dataSize, &region, stride, output.data(), &outputSize);
    }
    void ExpectRefused(KIMG_ReturnCode code, const std::string& text)
    {
        const size_t before = outputSize;
        EXPECT_EQ((*this)(), code);
        EXPECT_EQ(LastText(), text);
        EXPECT_THAT(output, testing::Each(0xA5A5));
        EXPECT_EQ(outputSize, before);
    }
};

TEST(Unpacking, WritesNothingWhereAnArgumentIsBad)
{
    EXPECT_EQ(RefusedCall()(), KIMG_RETURN_CODE_SUCCESS);
    RefusedCall call;
    call.dataSize = 11;
    call.ExpectRefused(KIMG_RETURN_CODE_NO_DATA, "The frame is too short: 11 bytes where 12 are needed.");
    call = {};
    call.outputSize = 15;
    call.ExpectRefused(KIMG_RETURN_CODE_BUFFER_TOO_SMALL, "output is too small: 15 bytes where 16 are needed.");
    call = {};
    call.stride = 9;
    call.ExpectRefused(
        KIMG_RETURN_CODE_INVALID_ARGUMENT,
        "outputStride is 9; it must be a multiple of 2 from 8 to 1099511627776 bytes, or 0.");
    call.stride = SIZE_MAX - 1;
    EXPECT_EQ(call(), KIMG_RETURN_CODE_INVALID_ARGUMENT);
    for (const KIMG_REGION& region :
         {KIMG_REGION{0, 0, 0, 1},
          {0, 0, 1, 0},
          {1, 0, 4, 1},
          {0, 2, 1, 1},
          {UINT64_MAX, 0, 2, 1},
          {0, 1, 1, UINT64_MAX}})
    {
        call = {};
        call.region = region;
        call.ExpectRefused(KIMG_RETURN_CODE_OUT_OF_RANGE, "The region is empty or reaches over an edge of the image.");
    }
    call = {};
    call.image = Image("Data32f", 1, 1);
    call.ExpectRefused(
        KIMG_RETURN_CODE_NOT_IMPLEMENTED,
        "Data32f: The samples have more than 16 bits and no fixed range; unpack them to floats instead.");
}

TEST(Unpacking, RefusesOutputThatLiesInTheFrameOrIsNotAligned)
{
    const KIMG_IMAGE image = Image("Mono8", 4, 1);
    alignas(2) uint8_t memory[16] = {};
    size_t size = 4;
    EXPECT_EQ(KIMG_Image_Unpack8(&image, memory, 16, nullptr, 0, memory + 3, &size), KIMG_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(LastText(), "data and output overlap.");
    EXPECT_EQ(KIMG_Image_Unpack8(&image, memory, 16, nullptr, 0, memory + 4, &size), KIMG_RETURN_CODE_SUCCESS);
    size = 8;
    EXPECT_EQ(
        KIMG_Image_Unpack16(&image, memory, 16, nullptr, 0, reinterpret_cast<uint16_t*>(memory + 5), &size),
        KIMG_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(LastText(), "output is not aligned to 2 bytes.");
    EXPECT_EQ(KIMG_Image_Unpack8(&image, nullptr, 16, nullptr, 0, memory, &size), KIMG_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(LastText(), "data is not a valid pointer!");
    EXPECT_EQ(
        KIMG_Image_Unpack8(&image, memory, 16, nullptr, 0, memory + 8, nullptr), KIMG_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(LastText(), "outputSize is not a valid pointer!");
}

} // namespace
