#include "producers/kit/failure.h"
#include "producers/kit/info_value.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>

namespace
{
using namespace koro::kit;

GC_ERROR CodeOf(const std::function<void()>& act)
{
    try
    {
        act();
        return GC_ERR_SUCCESS;
    }
    catch (const Failure& failure)
    {
        return failure.Code();
    }
}

TEST(KitInfoValue, AnswersASizeQueryWithTheSizeOnly)
{
    std::size_t size = 77;
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    InfoOutput{&type, nullptr, &size}.Write(InfoValue::Text("abc"));
    EXPECT_EQ(size, 4U);
    EXPECT_EQ(type, INFO_DATATYPE_STRING);
}

TEST(KitInfoValue, CopiesIntoABufferThatIsLargeEnough)
{
    char buffer[8] = "xxxxxxx";
    std::size_t size = sizeof buffer;
    CopyOut("abc", buffer, &size);
    EXPECT_EQ(size, 3U);
    EXPECT_EQ(std::string(buffer), "abcxxxx");
    CopyOut("abc", buffer, &size);
    EXPECT_EQ(size, 3U);
}

TEST(KitInfoValue, LeavesABufferThatIsTooSmallAndItsSizeAlone)
{
    char buffer[2] = {'x', 'y'};
    std::size_t size = sizeof buffer;
    EXPECT_EQ(CodeOf([&] { CopyOut("abc", buffer, &size); }), GC_ERR_BUFFER_TOO_SMALL);
    EXPECT_EQ(size, 2U);
    EXPECT_EQ(buffer[0], 'x');
}

TEST(KitInfoValue, RefusesPointersThatAreNone)
{
    char buffer[2];
    EXPECT_EQ(CodeOf([&] { CopyOut("a", buffer, nullptr); }), GC_ERR_INVALID_PARAMETER);
    std::size_t size = 1;
    EXPECT_EQ(CodeOf([&] { InfoOutput{nullptr, buffer, &size}.Require(); }), GC_ERR_INVALID_PARAMETER);
}

TEST(KitInfoValue, GivesScalarsTheirTypeAndSize)
{
    EXPECT_EQ(InfoValue::Bool(true).bytes.size(), 1U);
    EXPECT_EQ(InfoValue::Int32(-1).type, INFO_DATATYPE_INT32);
    EXPECT_EQ(InfoValue::Size(1).bytes.size(), sizeof(std::size_t));
    EXPECT_EQ(InfoValue::Pointer(nullptr).type, INFO_DATATYPE_PTR);
}

} // namespace
