#include "gentl/port_url_text.h"

#include <gtest/gtest.h>
#include <limits>
#include <optional>

namespace koro::test
{

using namespace internal;

TEST(PortURLText, SimplestFormHasAllParts)
{
    const std::string url = "local:///tl_system.xml;F0F00000;3BF";
    EXPECT_EQ(ParseURLScheme(url), 0);
    EXPECT_EQ(ParseURLFileName(url), "tl_system.xml");
    EXPECT_EQ(ParseURLRegisterAddress(url), 0xF0F00000u);
    EXPECT_EQ(ParseURLFileSize(url), 0x3BFu);
}

TEST(PortURLText, QueryIsIgnored)
{
    const std::string url = "local:tl_system.xml;F0F00000;3BF?SchemaVersion=1.0.0";
    EXPECT_EQ(ParseURLFileName(url), "tl_system.xml");
    EXPECT_EQ(ParseURLRegisterAddress(url), 0xF0F00000u);
    EXPECT_EQ(ParseURLFileSize(url), 0x3BFu);
}

TEST(PortURLText, SchemesAreThreeInAnyLetterCase)
{
    EXPECT_EQ(ParseURLScheme("LOCAL:a.xml;10;20"), 0);
    EXPECT_EQ(ParseURLScheme("hTtP://a"), 1);
    EXPECT_EQ(ParseURLScheme("File:"), 2);
    EXPECT_EQ(ParseURLScheme("https://a"), std::nullopt);
    EXPECT_EQ(ParseURLScheme("custom:a"), std::nullopt);
    EXPECT_EQ(ParseURLScheme(":a"), std::nullopt);
    EXPECT_EQ(ParseURLScheme(" local:a"), std::nullopt);
    EXPECT_EQ(
        ParseURLScheme("l\xf6"
                       "cal:a"),
        std::nullopt);
    EXPECT_EQ(ParseURLScheme("local"), std::nullopt);
    EXPECT_EQ(ParseURLScheme(""), std::nullopt);
    // The first token of the whole text, wherever the colon stands.
    EXPECT_EQ(ParseURLScheme("local;10;20:x"), std::nullopt);
}

TEST(PortURLText, FileNameLosesSchemeAndLeadingSlashesAlone)
{
    EXPECT_EQ(ParseURLFileName("local:a.xml;1;2"), "a.xml");
    EXPECT_EQ(ParseURLFileName("local:////folder//a.xml;1;2"), "folder//a.xml");
    EXPECT_EQ(ParseURLFileName("a.xml;1;2"), "a.xml");
    EXPECT_EQ(ParseURLFileName("/a.xml;1;2"), "a.xml");
    EXPECT_EQ(ParseURLFileName("file:///C:/a.xml;1;2"), "C:/a.xml");
    EXPECT_EQ(ParseURLFileName("local:;1;2"), "");
    EXPECT_EQ(ParseURLFileName("local:///;1;2"), "");
    EXPECT_EQ(ParseURLFileName(";;"), "");
}

TEST(PortURLText, AllButTheSchemeNeedThreeSections)
{
    for (const auto* url : {"local:a.xml;10", "local:a.xml", "", ";", "local:a.xml;10;20;30", ";;;"})
    {
        EXPECT_EQ(ParseURLFileName(url), std::nullopt) << url;
        EXPECT_EQ(ParseURLRegisterAddress(url), std::nullopt) << url;
        EXPECT_EQ(ParseURLFileSize(url), std::nullopt) << url;
    }
}

TEST(PortURLText, NumbersAreHexadecimalUpToWhatIsNoDigit)
{
    const auto address = [](const std::string& text) { return ParseURLRegisterAddress("local:a;" + text + ";1"); };
    EXPECT_EQ(address("0x1f"), 0x1fu);
    EXPECT_EQ(address("0X1F"), 0x1fu);
    EXPECT_EQ(address(" \t+10"), 0x10u);
    EXPECT_EQ(address("10 and more"), 0x10u);
    EXPECT_EQ(address("-1"), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(address("ffffffffffffffff"), std::numeric_limits<std::uint64_t>::max());
    EXPECT_EQ(address("10000000000000000"), std::nullopt);
    EXPECT_EQ(address(""), std::nullopt);
    EXPECT_EQ(address("x10"), std::nullopt);
    EXPECT_EQ(address("?10"), std::nullopt);
}

TEST(PortURLText, SizeEndsAtTheQuery)
{
    const auto size = [](const std::string& text) { return ParseURLFileSize("local:a;1;" + text); };
    EXPECT_EQ(size("20?a=1?b=2"), 0x20u);
    EXPECT_EQ(size("20?"), 0x20u);
    EXPECT_EQ(size("?20"), std::nullopt);
    EXPECT_EQ(size("10000000000000000"), std::nullopt);
}

TEST(PortURLText, SchemesHaveNames)
{
    EXPECT_EQ(URLSchemeName(0), "Local");
    EXPECT_EQ(URLSchemeName(1), "HTTP");
    EXPECT_EQ(URLSchemeName(2), "File");
    EXPECT_EQ(URLSchemeName(3), "");
    EXPECT_EQ(URLSchemeName(-1), "");
    EXPECT_EQ(URLSchemeName(999), "");
    EXPECT_EQ(URLSchemeName(1000), "Custom");
    EXPECT_EQ(URLSchemeName(std::numeric_limits<std::int32_t>::max()), "Custom");
}

} // namespace koro::test
