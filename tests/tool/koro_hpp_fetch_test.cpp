// The pairs of size query and fetch, against answers that no real object gives on demand.
#include <koro/koro.hpp>

#include <algorithm>
#include <gtest/gtest.h>

namespace
{

using koro::Error;
using Text = std::string;

// Answers as an export does, from a list of values: one for each call, the last one for ever.
class Answers
{
public:
    explicit Answers(std::vector<Text> texts) : values(std::move(texts)) {}

    KORO_ReturnCode operator()(char* buffer, size_t* size) const
    {
        const Text& value = values[std::min(numCalls++, values.size() - 1)];
        if (buffer && *size < value.size() + 1) return KORO_RETURN_CODE_BUFFER_TOO_SMALL;
        if (buffer) std::copy_n(value.c_str(), value.size() + 1, buffer);
        *size = value.size() + 1;
        return KORO_RETURN_CODE_SUCCESS;
    }

    mutable size_t numCalls = 0;

private:
    std::vector<Text> values;
};

TEST(KoroFetch, TextComesWithoutItsTerminator)
{
    EXPECT_EQ(koro::detail::FetchText(Answers({"camera"})), "camera");
    EXPECT_EQ(koro::detail::FetchText(Answers({""})), "");
}

TEST(KoroFetch, ValueThatGrewBetweenTheCallsIsFetchedAnew)
{
    const Answers answers({"a", "longer", "longer", "longer"});
    EXPECT_EQ(koro::detail::FetchText(answers), "longer");
    EXPECT_EQ(answers.numCalls, 4u);
}

TEST(KoroFetch, ValueThatShrankBetweenTheCallsIsNotPadded)
{
    EXPECT_EQ(koro::detail::FetchText(Answers({"longer", "a"})), "a");
}

TEST(KoroFetch, ValueThatGrowsForEverEndsAsTooSmall)
{
    std::vector<Text> growing;
    for (size_t length = 1; length < 100; ++length)
        growing.emplace_back(length, 'x');
    try
    {
        koro::detail::FetchText(Answers(growing));
        FAIL() << "no error";
    }
    catch (const Error& error)
    {
        EXPECT_EQ(error.Code(), KORO_RETURN_CODE_BUFFER_TOO_SMALL);
    }
}

TEST(KoroFetch, TextWithoutTerminatorCountsWhole)
{
    const auto query = [](char* buffer, size_t* size) -> KORO_ReturnCode {
        if (buffer) std::copy_n("abc", 3, buffer);
        *size = 3;
        return KORO_RETURN_CODE_SUCCESS;
    };
    EXPECT_EQ(koro::detail::FetchText(query), "abc");
}

TEST(KoroFetch, AbsurdSizeIsRefusedBeforeMemoryIsAskedFor)
{
    const auto query = [](char*, size_t* size) -> KORO_ReturnCode {
        *size = size_t{1} << 40;
        return KORO_RETURN_CODE_SUCCESS;
    };
    try
    {
        koro::detail::FetchText(query);
        FAIL() << "no error";
    }
    catch (const Error& error)
    {
        EXPECT_EQ(error.Code(), KORO_RETURN_CODE_ERROR);
        EXPECT_STREQ(error.what(), "A value claims a size of 1099511627776 bytes!");
    }
}

TEST(KoroFetch, SizeLargerThanTheBufferAfterTheFetchIsNotBelieved)
{
    const auto query = [](char* buffer, size_t* size) -> KORO_ReturnCode {
        if (buffer) std::copy_n("ab", 3, buffer);
        *size = buffer ? 1000 : 3;
        return KORO_RETURN_CODE_SUCCESS;
    };
    EXPECT_EQ(koro::detail::FetchText(query), "ab");
}

} // namespace
