#include "tools/koro/feature_file.h"
#include "tools/koro/tool_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace koro::tool;
using testing::ElementsAre;
using testing::Pair;

const std::string head = "# {05D8C294-F295-4dfb-9D01-096BD04049F4}\n";

std::string Refusal(const std::string& text)
{
    try
    {
        ParseFeatureFile(text, "f");
        return "none";
    }
    catch (const ToolError& error)
    {
        return error.what();
    }
}

TEST(FeatureFile, RecordsKeepTheirLines)
{
    const auto records =
        ParseFeatureFile(head + "# comment\nWidth\t640\n\nGain\t{GainSelector=All\tOther=2}\t1.5\n", "f");
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].line, 3u);
    EXPECT_EQ(records[0].Title(), "Width");
    EXPECT_EQ(records[0].value, "640");
    EXPECT_EQ(records[1].line, 5u);
    EXPECT_THAT(records[1].selectors, ElementsAre(Pair("GainSelector", "All"), Pair("Other", "2")));
    EXPECT_EQ(records[1].Title(), "Gain[GainSelector=All, Other=2]");
    EXPECT_EQ(records[1].value, "1.5");
}

TEST(FeatureFile, FilesOfOtherSoftwareAreRead)
{
    const auto records = ParseFeatureFile(
        "some text {05D8C294-F295-4dfb-9D01-096BD04049F4} behind\r\n# GenApi persistence file (version 2.1.0)\r\n"
        " Width \t640\r\nName\ta\tb c \r\nLast\t1",
        "f");
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0].name, "Width");
    EXPECT_EQ(records[1].value, "a\tb c ");
    EXPECT_EQ(records[2].value, "1");
}

TEST(FeatureFile, WhatIsWrongIsToldWithItsLine)
{
    EXPECT_EQ(Refusal(""), "f, line 1: this is no file of settings.");
    EXPECT_EQ(Refusal("Width\t640\n"), "f, line 1: this is no file of settings.");
    EXPECT_EQ(Refusal(head + "Width 640\n"), "f, line 2: there is no tab behind the name of the feature.");
    EXPECT_EQ(Refusal(head + "\n \t640\n"), "f, line 3: there is no name in front of the tab.");
    EXPECT_EQ(Refusal(head + "Width\t\n"), "f, line 2: Width has no value.");
    EXPECT_EQ(Refusal(head + "Gain\t{GainSelector=All\t1\n"), "f, line 2: the selectors have no end.");
    EXPECT_EQ(Refusal(head + "Gain\t{GainSelector}\t1\n"), "f, line 2: a selector has no value.");
    EXPECT_EQ(Refusal(head + "Width\t640\n"), "none");
    EXPECT_EQ(Refusal(head), "none");
}

TEST(FeatureFile, ZeroBytesAreTakenAtTheEndAlone)
{
    using namespace std::string_literals;
    EXPECT_EQ(ParseFeatureFile(head + "Width\t640\n\0\0"s, "f").size(), 1u);
    EXPECT_EQ(Refusal(head + "Width\t640\n\0rubbish"s), "f, line 3: there is a zero byte, and text behind it.");
    EXPECT_EQ(Refusal(head + "Width\t64\0\n"s), "f, line 2: there is a zero byte, and text behind it.");
    EXPECT_EQ(Refusal("\0"s + head), "f, line 1: there is a zero byte, and text behind it.");
}

TEST(FeatureFile, LongNameIsNotRepeatedInItsRefusal)
{
    EXPECT_LT(Refusal(head + std::string(1 << 20, 'n') + "\t\n").size(), 1000u);
}

TEST(FeatureFile, TextsOfTheCameraThatNoFileHoldsAreTakenOut)
{
    std::string text = head + "#\t\nA\t1\nText\t\nGain\t{S=1}\t\nName\t{x}\nB\t{S=1}\t2\nTab\t \t\nLast\t";
    EXPECT_EQ(Refusal(text), "f, line 4: Text has no value.");
    auto records = ParseFeatureFile(text, "f", SettingsOf::Camera);
    EXPECT_THAT(TakeOutWhatNoFileHolds(text, records), ElementsAre("Text", "Gain[S=1]", "Name", "Last"));
    EXPECT_EQ(text, head + "#\t\nA\t1\nB\t{S=1}\t2\nTab\t \t\n");
    EXPECT_EQ(records.size(), 3u);
    EXPECT_TRUE(Differences(records, ParseFeatureFile(text, "f")).empty());
}

TEST(FeatureFile, RecordsBecomeAFileWithoutAnythingElse)
{
    const auto records =
        ParseFeatureFile(head + "#\n\n  \nA\t1\nGain \t{S=a=b\tOther=2}\t{1}\t \n" + std::string(9, ' '), "f");
    const std::string text = FeatureFileOf(records);
    EXPECT_EQ(text, head + "A\t1\nGain\t{S=a=b\tOther=2}\t{1}\t \n");
    EXPECT_TRUE(Differences(records, ParseFeatureFile(text, "f")).empty());
    EXPECT_EQ(FeatureFileOf({}), head);
}

TEST(FeatureFile, FileThatCannotBeReadIsAnError)
{
    EXPECT_THROW(ReadFeatureFile("/nonexistent/file"), ToolError);
    EXPECT_THROW(ReadFeatureFile("/"), ToolError);
}

TEST(FeatureFile, DifferencesAreThoseOfTheValues)
{
    const auto left = ParseFeatureFile(head + "A\t1\nB\t{S=1}\t1\nB\t{S=2}\t1\nC\t1\n", "l");
    const auto right = ParseFeatureFile(head + "D\t1\nB\t{S=2}\t2\nB\t{S=1}\t1\nA\t1\n", "r");
    const auto differences = Differences(left, right);
    ASSERT_EQ(differences.size(), 3u);
    EXPECT_EQ(differences[0].title, "B[S=2]");
    EXPECT_EQ(differences[0].left->value, "1");
    EXPECT_EQ(differences[0].right->value, "2");
    EXPECT_EQ(differences[1].title, "C");
    EXPECT_EQ(differences[1].right, nullptr);
    EXPECT_EQ(differences[2].title, "D");
    EXPECT_EQ(differences[2].left, nullptr);
    EXPECT_TRUE(Differences(left, left).empty());
}

} // namespace
