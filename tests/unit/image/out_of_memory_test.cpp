// Memory that runs out at any place of a call is reported, and nothing has been written.
#include "tests/unit/image/sample_picture.h"

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <gmock/gmock.h>
#include <new>

namespace
{

// How many allocations still succeed.
size_t allocationsLeft = SIZE_MAX;

void* AllocateIfAllowed(size_t size) noexcept
{
    if (allocationsLeft == 0) return nullptr;
    --allocationsLeft;
    return std::malloc(size ? size : 1);
}

} // namespace

void* operator new(size_t size)
{
    if (void* const memory = AllocateIfAllowed(size)) return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

namespace
{

using Call = std::function<KIMG_ReturnCode(uint8_t* output, size_t* size)>;

KIMG_ReturnCode CallWith(size_t allocations, const Call& call, Bytes& output)
{
    size_t size = output.size();
    allocationsLeft = allocations;
    const KIMG_ReturnCode code = call(output.data(), &size);
    allocationsLeft = SIZE_MAX;
    return code;
}

// Lets the first allocation fail, then the second one, until the call succeeds. Returns how often it failed.
size_t FailuresOf(const Call& call, const Bytes& before)
{
    for (size_t allocations = 0; allocations < 1000; ++allocations)
    {
        Bytes output = before;
        const KIMG_ReturnCode code = CallWith(allocations, call, output);
        if (code == KIMG_RETURN_CODE_SUCCESS) return allocations;
        EXPECT_EQ(code, KIMG_RETURN_CODE_BAD_ALLOC);
        EXPECT_EQ(LastText(), "There is not enough memory for the lines that are being processed.");
        EXPECT_EQ(output, before);
    }
    ADD_FAILURE() << "the call never succeeds";
    return 0;
}

TEST(OutOfMemory, IsReportedByFunctionsThatWritePictures)
{
    const KIMG_IMAGE image = Image("BayerRG12p", 21, 9);
    const Bytes frame = RandomBytes(image);
    const uint32_t rgb = Number("RGB8");
    const Bytes output(21 * 9 * 4, 0xA5);
    for (const int32_t method : {KIMG_DEMOSAIC_BILINEAR, KIMG_DEMOSAIC_EDGE_AWARE})
    {
        const auto convert = [&](uint8_t* pixels, size_t* size) {
            return KIMG_Image_Convert(&image, frame.data(), frame.size(), nullptr, method, rgb, 0, pixels, size);
        };
        EXPECT_GT(FailuresOf(convert, output), 0u);
    }
    const auto unpack = [&](uint8_t* pixels, size_t* size) {
        return KIMG_Image_Unpack8(&image, frame.data(), frame.size(), nullptr, 0, pixels, size);
    };
    EXPECT_GT(FailuresOf(unpack, output), 0u);
    const auto preview = [&](uint8_t* pixels, size_t* size) {
        return KIMG_Image_Downscale(&image, frame.data(), frame.size(), nullptr, rgb, 7, 3, 0, pixels, size);
    };
    EXPECT_GT(FailuresOf(preview, output), 0u);
}

TEST(OutOfMemory, IsReportedByFunctionsThatMeasure)
{
    const KIMG_IMAGE image = Image("Mono10p", 21, 9);
    const Bytes frame = RandomBytes(image);
    const auto count = [&](uint8_t* output, size_t* size) {
        return KIMG_Image_GetHistogram(
            &image, frame.data(), frame.size(), nullptr, 0, reinterpret_cast<uint64_t*>(output), size);
    };
    EXPECT_GT(FailuresOf(count, Bytes(1024 * 8, 0xA5)), 0u);
    const auto measure = [&](uint8_t* output, size_t*) {
        return KIMG_Image_GetStatistics(
            &image, frame.data(), frame.size(), nullptr, 0, reinterpret_cast<KIMG_STATISTICS*>(output));
    };
    EXPECT_GT(FailuresOf(measure, Bytes(sizeof(KIMG_STATISTICS), 0xA5)), 0u);
}

TEST(OutOfMemory, IsReportedByFunctionsThatChangeAPicture)
{
    const KIMG_IMAGE image = Image("BayerRG8", 21, 9);
    const Bytes frame = RandomBytes(image);
    const auto apply = [&](uint8_t* pixels, size_t* size) {
        return KIMG_Image_ApplyGains(&image, pixels, *size, nullptr, 0, 0, 0);
    };
    EXPECT_GT(FailuresOf(apply, frame), 0u);
    const std::vector<uint16_t> black(256);
    const auto replace = [&](uint8_t* pixels, size_t* size) {
        return KIMG_Image_ApplyTable(&image, pixels, *size, nullptr, black.data(), 512);
    };
    EXPECT_GT(FailuresOf(replace, frame), 0u);
}

} // namespace
