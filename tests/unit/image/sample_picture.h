// Pictures for tests: random bytes of the right size, and the functions under test with their size queries.
#pragma once

#include "tests/unit/image/named_format.h"

#include <random>
#include <vector>

using Bytes = std::vector<uint8_t>;

inline Bytes RandomBytes(const KIMG_IMAGE& image, unsigned seed = 1)
{
    uint64_t size = 0;
    EXPECT_EQ(KIMG_Image_GetSize(&image, &size), KIMG_RETURN_CODE_SUCCESS) << LastText();
    std::mt19937 random(seed);
    Bytes bytes(size);
    for (uint8_t& byte : bytes)
        byte = static_cast<uint8_t>(random());
    return bytes;
}

// Calls `function(null, &size)` and then with memory that ends at its last byte.
template <class T, class Function>
std::vector<T> Fetched(const Function& function)
{
    size_t size = 0;
    EXPECT_EQ(function(nullptr, &size), KIMG_RETURN_CODE_SUCCESS) << LastText();
    std::vector<T> output(size / sizeof(T), static_cast<T>(0xA5));
    size_t written = size;
    EXPECT_EQ(function(output.data(), &written), KIMG_RETURN_CODE_SUCCESS) << LastText();
    EXPECT_EQ(written, size);
    return output;
}

inline std::vector<uint8_t> Unpacked8(
    const KIMG_IMAGE& image, const Bytes& bytes, const KIMG_REGION* region = nullptr, size_t stride = 0)
{
    return Fetched<uint8_t>([&](uint8_t* output, size_t* size) {
        return KIMG_Image_Unpack8(&image, bytes.data(), bytes.size(), region, stride, output, size);
    });
}

inline std::vector<uint16_t> Unpacked16(
    const KIMG_IMAGE& image, const Bytes& bytes, const KIMG_REGION* region = nullptr, size_t stride = 0)
{
    return Fetched<uint16_t>([&](uint16_t* output, size_t* size) {
        return KIMG_Image_Unpack16(&image, bytes.data(), bytes.size(), region, stride, output, size);
    });
}

inline std::vector<float> UnpackedFloat(
    const KIMG_IMAGE& image, const Bytes& bytes, const KIMG_REGION* region = nullptr, size_t stride = 0)
{
    return Fetched<float>([&](float* output, size_t* size) {
        return KIMG_Image_UnpackFloat(&image, bytes.data(), bytes.size(), region, stride, output, size);
    });
}

template <class T>
std::vector<T> Converted(
    const KIMG_IMAGE& image, const Bytes& bytes, const char* target, const KIMG_REGION* region = nullptr,
    size_t stride = 0, int32_t demosaic = KIMG_DEMOSAIC_BILINEAR)
{
    return Fetched<T>([&](T* output, size_t* size) {
        return KIMG_Image_Convert(
            &image, bytes.data(), bytes.size(), region, demosaic, Number(target), stride, output, size);
    });
}

// Formats that support an operation.
inline std::vector<std::string> FormatsFor(uint32_t operation)
{
    std::vector<std::string> names;
    size_t count = 0;
    EXPECT_EQ(KIMG_PixelFormat_GetNum(&count), KIMG_RETURN_CODE_SUCCESS);
    for (size_t index = 0; index < count; ++index)
    {
        uint32_t number = 0;
        KIMG_PIXEL_FORMAT_INFO info{};
        char name[64];
        size_t size = sizeof name;
        EXPECT_EQ(KIMG_PixelFormat_GetByIndex(index, &number), KIMG_RETURN_CODE_SUCCESS);
        EXPECT_EQ(KIMG_PixelFormat_GetInfo(number, &info), KIMG_RETURN_CODE_SUCCESS);
        EXPECT_EQ(KIMG_PixelFormat_GetName(number, name, &size), KIMG_RETURN_CODE_SUCCESS);
        if ((info.operations & operation) != 0) names.emplace_back(name);
    }
    return names;
}
