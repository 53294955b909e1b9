#include "capi/output.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace koro::internal
{
namespace
{

using Bytes = std::vector<std::uint8_t>;

void ExpectLastError(KORO_ReturnCode code, const std::string& text)
{
    EXPECT_EQ(LastErrorCode(), code);
    EXPECT_EQ(LastErrorText(), text);
}

TEST(CopyScalarOut, StoresTheValue)
{
    double value = 0;
    EXPECT_EQ(CopyScalarOut(2.5, &value, "value"), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(value, 2.5);
}

TEST(CopyScalarOut, NullPointerIsNamed)
{
    EXPECT_EQ(CopyScalarOut<std::int32_t>(1, nullptr, "value"), KORO_RETURN_CODE_INVALID_ARGUMENT);
    ExpectLastError(KORO_RETURN_CODE_INVALID_ARGUMENT, "value is not a valid pointer!");
}

TEST(CopyStringOut, NullBufferAsksForTheSizeWithTheTerminator)
{
    std::size_t size = 77;
    EXPECT_EQ(CopyStringOut("abc", nullptr, &size, "name"), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(size, 4u);
}

TEST(CopyStringOut, NullSizeIsNamedWithoutABlankAlsoForASizeQuery)
{
    char buffer[8];
    EXPECT_EQ(CopyStringOut("abc", buffer, nullptr, "ctiPath"), KORO_RETURN_CODE_INVALID_ARGUMENT);
    ExpectLastError(KORO_RETURN_CODE_INVALID_ARGUMENT, "ctiPathSize is not a valid pointer!");
    EXPECT_EQ(CopyStringOut("abc", nullptr, nullptr, "ctiPath"), KORO_RETURN_CODE_INVALID_ARGUMENT);
}

TEST(CopyStringOut, TooSmallABufferIsLeftAsItWas)
{
    char buffer[3] = {'x', 'y', 'z'};
    std::size_t size = sizeof buffer;
    EXPECT_EQ(CopyStringOut("abc", buffer, &size, "name"), KORO_RETURN_CODE_BUFFER_TOO_SMALL);
    ExpectLastError(KORO_RETURN_CODE_BUFFER_TOO_SMALL, "name is too small!");
    EXPECT_EQ(std::string(buffer, sizeof buffer), "xyz");
    EXPECT_EQ(size, sizeof buffer);
}

TEST(CopyStringOut, ExactAndLargerBuffersGetTextTerminatorAndSize)
{
    char buffer[6] = {'u', 'v', 'w', 'x', 'y', 'z'};
    std::size_t size = 4;
    EXPECT_EQ(CopyStringOut("abc", buffer, &size, "name"), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(std::string(buffer, sizeof buffer), std::string("abc\0yz", 6));
    size = sizeof buffer;
    EXPECT_EQ(CopyStringOut("a", buffer, &size, "name"), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(size, 2u);
    EXPECT_EQ(std::string(buffer, sizeof buffer), std::string("a\0c\0yz", 6));
}

TEST(CopyStringOut, ZeroInsideATextIsCopiedLikeAnyOther)
{
    char buffer[4] = {};
    std::size_t size = sizeof buffer;
    EXPECT_EQ(CopyStringOut(std::string("a\0b", 3), buffer, &size, "name"), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(size, 4u);
    EXPECT_EQ(buffer[2], 'b');
}

TEST(CopyBytesOut, CountsNoTerminator)
{
    std::uint8_t buffer[2] = {};
    std::size_t size = sizeof buffer;
    EXPECT_EQ(CopyBytesOut(Bytes{1, 2}, buffer, &size, "data"), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(size, 2u);
    EXPECT_EQ(buffer[1], 2);
}

TEST(CopyBytesOut, EmptyArrayWithSizeZeroIsASuccess)
{
    std::uint8_t buffer[1] = {0x5a};
    std::size_t size = 0;
    EXPECT_EQ(CopyBytesOut(Bytes{}, buffer, &size, "data"), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(buffer[0], 0x5a);
}

TEST(CopyBytesOut, TooSmallABufferIsLeftAsItWas)
{
    std::uint8_t buffer[1] = {0x5a};
    std::size_t size = sizeof buffer;
    EXPECT_EQ(CopyBytesOut(Bytes{1, 2}, buffer, &size, "data"), KORO_RETURN_CODE_BUFFER_TOO_SMALL);
    ExpectLastError(KORO_RETURN_CODE_BUFFER_TOO_SMALL, "data is too small!");
    EXPECT_EQ(buffer[0], 0x5a);
    EXPECT_EQ(size, sizeof buffer);
}

TEST(CopyInfoOut, CopiesTheBytesOfTheAnswer)
{
    const RawInfo information{GenTL::INFO_DATATYPE_BUFFER, {3, 4}};
    std::uint8_t buffer[2] = {};
    std::size_t size = sizeof buffer;
    EXPECT_EQ(CopyInfoOut(information, buffer, &size, "info"), KORO_RETURN_CODE_SUCCESS);
    EXPECT_EQ(buffer[0], 3);
    EXPECT_EQ(CopyInfoOut(information, buffer, nullptr, "info"), KORO_RETURN_CODE_INVALID_ARGUMENT);
    ExpectLastError(KORO_RETURN_CODE_INVALID_ARGUMENT, "infoSize is not a valid pointer!");
}

} // namespace
} // namespace koro::internal
