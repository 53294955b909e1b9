// Shorthand for tests: formats by name, pictures by format and size, texts of failures.
#pragma once

#include <koro/image.h>

#include <gtest/gtest.h>
#include <string>

inline uint32_t Number(const char* name)
{
    uint32_t number = 0;
    EXPECT_EQ(KIMG_PixelFormat_FindByName(name, &number), KIMG_RETURN_CODE_SUCCESS) << name;
    return number;
}

inline KIMG_PIXEL_FORMAT_INFO InfoOf(const char* name)
{
    KIMG_PIXEL_FORMAT_INFO info{};
    EXPECT_EQ(KIMG_PixelFormat_GetInfo(Number(name), &info), KIMG_RETURN_CODE_SUCCESS) << name;
    return info;
}

inline KIMG_IMAGE Image(const char* format, uint64_t width, uint64_t height, uint64_t xPadding = 0, uint64_t offset = 0)
{
    return {Number(format), 0, {}, width, height, xPadding, offset};
}

inline std::string LastText()
{
    KIMG_ReturnCode code = 0;
    char text[512] = {};
    size_t size = sizeof text;
    EXPECT_EQ(KIMG_Library_GetLastError(&code, text, &size), KIMG_RETURN_CODE_SUCCESS);
    return text;
}
