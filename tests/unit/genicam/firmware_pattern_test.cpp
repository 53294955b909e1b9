#include "firmware/bounds.h"
#include "firmware/pattern.h"
#include "tests/unit/genicam/firmware_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace koro::test;
using namespace GENAPI_NAMESPACE::runtime;

TEST(Pattern, PartOfTheTextIsEnough)
{
    EXPECT_TRUE(Pattern("me").Matches("Acme Vision"));
    EXPECT_FALSE(Pattern("^me").Matches("Acme Vision"));
    EXPECT_TRUE(Pattern("^Acme Vision$").Matches("Acme Vision"));
}

TEST(Pattern, LettersCountByCase)
{
    EXPECT_FALSE(Pattern("acme").Matches("Acme"));
    EXPECT_TRUE(Pattern("(?i)acme").Matches("Acme"));
}

TEST(Pattern, EmptyPatternMatchesEveryText)
{
    EXPECT_TRUE(Pattern("").Matches(""));
    EXPECT_TRUE(Pattern("").Matches("x"));
}

TEST(Pattern, SpeaksTheDialectOfPerl)
{
    EXPECT_TRUE(Pattern("^\\d+\\.\\d+$").Matches("12.3"));
    EXPECT_TRUE(Pattern("A(?!x)\\w{2}(?:b|c)").Matches("Aaac"));
    EXPECT_FALSE(Pattern("(?<=2\\.)0").Matches("1.0"));
}

TEST(Pattern, TextsMayHoldAnyBytes)
{
    EXPECT_TRUE(Pattern("c.f.").Matches("caf\xe9"));
    EXPECT_TRUE(Pattern("a.b").Matches(std::string_view("a\0b", 3)));
    EXPECT_TRUE(Pattern("caf\xc3\xa9").Matches("caf\xc3\xa9"));
}

TEST(Pattern, BrokenPatternIsRefusedWithItsPlace)
{
    EXPECT_EQ(
        Thrown([] { Pattern("ab(c"); }),
        "RuntimeException: The pattern 'ab(c' is broken at byte 4: missing closing parenthesis");
}

TEST(Pattern, TooLongPatternIsRefused)
{
    EXPECT_NO_THROW(Pattern(std::string(maxPatternSize, 'a')));
    EXPECT_THAT(
        Thrown([] { Pattern(std::string(maxPatternSize + 1, 'a')); }),
        testing::EndsWith("' has 4097 bytes; at most 4096 are taken"));
}

TEST(Pattern, PatternThatExpandsWithoutEndIsRefused)
{
    EXPECT_THAT(
        Thrown([] { Pattern("(((a{1000}){1000}){1000}){1000}"); }),
        testing::HasSubstr("regular expression is too large"));
}

// A million steps: more than are granted, fewer than the engine would take by itself.
TEST(Pattern, ExplodingPatternEndsByItsLimit)
{
    const std::string text = std::string(20, 'a') + "!";
    EXPECT_EQ(
        Thrown([&] { Pattern("^(a+)+$").Matches(text); }),
        "RuntimeException: The pattern '^(a+)+$' cannot be matched: match limit exceeded");
}

TEST(Pattern, RecursionWithoutEndStopsAtALimit)
{
    EXPECT_THAT(
        Thrown([] { Pattern("(?<x>a(?&x)?b?)+$").Matches(std::string(4000, 'a')); }),
        testing::StartsWith("RuntimeException: The pattern '(?<x>a(?&x)?b?)+$' cannot be matched: "));
}

TEST(Pattern, PatternCannotRaiseItsOwnLimit)
{
    const std::string text = std::string(20, 'a') + "!";
    EXPECT_EQ(
        Thrown([&] { Pattern("(*LIMIT_MATCH=4000000000)^(a+)+$").Matches(text); }),
        "RuntimeException: The pattern '(*LIMIT_MATCH=4000000000)^(a+)+$' cannot be matched: match limit exceeded");
}

// Each step keeps the places of all groups.
TEST(Pattern, GroupsAndStepsTogetherEndByTheirMemory)
{
    std::string groups;
    for (int group = 0; group < 1300; ++group)
        groups += "()";
    const std::string text(1200, 'a');
    EXPECT_TRUE(Pattern("^(?:a|b)*$").Matches(text));
    EXPECT_THAT(
        Thrown([&] { Pattern("^" + groups + "(?:a|b)*$").Matches(text); }),
        testing::EndsWith("' cannot be matched: heap limit exceeded"));
}

TEST(Pattern, TooLongTextIsNotMatched)
{
    EXPECT_TRUE(Pattern("a").Matches(std::string(maxMatchedTextSize, 'a')));
    EXPECT_EQ(
        Thrown([] { Pattern("a").Matches(std::string(maxMatchedTextSize + 1, 'a')); }),
        "RuntimeException: A text of 4097 bytes is matched with the pattern 'a'; at most 4096 are taken");
}

TEST(Pattern, ExtractsTheFirstGroup)
{
    EXPECT_EQ(Pattern("V(\\d+\\.\\d+)-(\\w+)").Extract("FW V1.22-beta"), "1.22");
}

TEST(Pattern, ExtractsTheWholeMatchWithoutGroups)
{
    EXPECT_EQ(Pattern("\\d+\\.\\d+").Extract("FW V1.22-beta"), "1.22");
}

TEST(Pattern, ExtractsNothingFromAGroupWithoutPart)
{
    EXPECT_EQ(Pattern("(a)|b").Extract("b"), std::nullopt);
    EXPECT_EQ(Pattern("(a)").Extract("b"), std::nullopt);
}

} // namespace
