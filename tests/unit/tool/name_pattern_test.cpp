#include "tools/koro/name_pattern.h"

#include <gtest/gtest.h>

namespace
{

using namespace koro::tool;

bool Matches(const std::string& pattern, const std::string& name)
{
    return NamePattern(pattern).Matches(name);
}

TEST(NamePattern, StarsStandForAnyNumberOfCharacters)
{
    EXPECT_TRUE(Matches("*", ""));
    EXPECT_TRUE(Matches("KS*", "KS0001"));
    EXPECT_TRUE(Matches("*00*1", "KS0001"));
    EXPECT_TRUE(Matches("*ab*ab", "abcabdab"));
    EXPECT_FALSE(Matches("*ab*ab", "cabd"));
    EXPECT_FALSE(Matches("KS*", "ks0001"));
    EXPECT_FALSE(Matches("", "K"));
}

TEST(NamePattern, QuestionMarksAndBracketsStandForOneCharacter)
{
    EXPECT_TRUE(Matches("KS?1", "KS01"));
    EXPECT_FALSE(Matches("KS?1", "KS1"));
    EXPECT_TRUE(Matches("cam[0-3]", "cam2"));
    EXPECT_FALSE(Matches("cam[!0-3]", "cam2"));
    EXPECT_TRUE(Matches("cam[]x]", "cam]"));
    EXPECT_TRUE(Matches("cam[1", "cam[1"));
    EXPECT_TRUE(Matches("a\\*", "a\\b"));
}

TEST(NamePattern, ManyStarsOverALongNameComeToAnEnd)
{
    // With a search from the start behind each star this would take the fifth power of the length.
    const std::string name(1 << 20, 'a');
    EXPECT_FALSE(Matches("*a*a*a*a*b", name));
    EXPECT_TRUE(Matches("*a*a*a*a*a", name));
}

} // namespace
