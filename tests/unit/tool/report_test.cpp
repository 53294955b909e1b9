#include "tools/koro/file_prefix.h"
#include "tools/koro/report.h"

#include <gtest/gtest.h>

namespace
{

using namespace koro::tool;

TEST(Report, ControlCharactersOfAProducerDoNotReachTheTerminal)
{
    EXPECT_EQ(Printable("a\x1B[2Jb\nc\x7F"), "a?[2Jb?c?");
    EXPECT_EQ(Printable("K\xC3\xB6ro \xE2\x82\xAC \xF0\x9F\x93\xB7"), "K\xC3\xB6ro \xE2\x82\xAC \xF0\x9F\x93\xB7");
}

TEST(Report, EightBitControlsDoNotReachTheTerminal)
{
    // CSI and OSC, as UTF-8 and as single bytes.
    EXPECT_EQ(
        Printable("\xC2\x9B"
                  "31m\xC2\x9D"
                  "0;x"),
        "?31m?0;x");
    EXPECT_EQ(
        Printable("a\x9B"
                  "31m"),
        "a?31m");
    EXPECT_EQ(Printable("\xC2\xA0"), "\xC2\xA0");
}

TEST(Report, BytesThatAreNoUTF8AreQuestionMarks)
{
    EXPECT_EQ(Printable("\xC0\x9B"), "??");           // overlong
    EXPECT_EQ(Printable("\xE0\x82\x9B"), "???");      // overlong
    EXPECT_EQ(Printable("\xED\xA0\x80"), "???");      // half of a pair
    EXPECT_EQ(Printable("\xF4\x90\x80\x80"), "????"); // beyond the last character
    EXPECT_EQ(Printable("\xE2\x82"), "??");           // cut off
    EXPECT_EQ(
        Printable("\xE2\x82"
                  "a"),
        "??a");
    EXPECT_EQ(Printable("\xFF\xC3"), "??");
}

TEST(Report, ReplacementsOfSuchBytesAreQuestionMarks)
{
    EXPECT_EQ(Printable("a\xEF\xBF\xBD\xEF\xBF\xBE"), "a?\xEF\xBF\xBE");
}

TEST(Report, PatternsStandForWhatIsNotShown)
{
    EXPECT_EQ(PrintablePattern("D\x1B\x1B[2J\xC2\x9B K\xC3\xB6*?]"), "D*[[]2J* K\xC3\xB6[*][?]]");
    EXPECT_EQ(PrintablePattern(""), "");
}

TEST(Report, MessagesKeepTheirLinesAndNothingElse)
{
    EXPECT_EQ(PrintableLines("one\ntwo\x1B[2J\r"), "one\ntwo?[2J?");
    EXPECT_EQ(PrintableLines(std::string(20000, 'a')), std::string(16384, 'a') + "... (20000 bytes)");
}

TEST(Report, LongTextsAreCut)
{
    EXPECT_EQ(PrintableStart(std::string(199, 'a') + "\n"), std::string(199, 'a') + "?");
    EXPECT_EQ(PrintableStart(std::string(200, 'a') + "b"), std::string(200, 'a') + "... (201 bytes)");
    EXPECT_EQ(PrintableStart("abcdef", 4), "abcd... (6 bytes)");
    EXPECT_EQ(PrintableStart("abc\xC3\xB6", 4), "abc... (5 bytes)"); // no half of a character
    EXPECT_EQ(OrDash(std::string(300, 'a')), std::string(200, 'a') + "... (300 bytes)");
}

TEST(Report, MissingAndEmptyTextsAreDashes)
{
    EXPECT_EQ(OrDash(std::nullopt), "-");
    EXPECT_EQ(OrDash(""), "-");
    EXPECT_EQ(OrDash("x"), "x");
}

TEST(Report, RowsAreAligned)
{
    testing::internal::CaptureStdout();
    PrintRows({{"a", "1"}, {"long", "2"}}, " ");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), " a     1\n long  2\n");
}

TEST(FileNamePrefix, CannotLeaveTheFolder)
{
    EXPECT_EQ(FileNamePrefix("SN-12_3.4"), "SN-12_3.4");
    EXPECT_EQ(FileNamePrefix("../etc/x y"), "camera.._etc_x_y");
    EXPECT_EQ(FileNamePrefix(""), "camera");
    EXPECT_EQ(FileNamePrefix(std::string(300, 'a')), std::string(64, 'a'));
}

TEST(Report, OneOfAThingIsNoneOfMany)
{
    EXPECT_EQ(CountOf(0, "buffer"), "0 buffers");
    EXPECT_EQ(CountOf(1, "buffer"), "1 buffer");
    EXPECT_EQ(CountOf(2, "buffer"), "2 buffers");
    EXPECT_EQ(ThereAre({}), "");
    EXPECT_EQ(ThereAre({"Width"}), "There is Width.");
    EXPECT_EQ(ThereAre({"Width", "He\x1Bight"}), "There are Width, He?ight.");
}

TEST(Report, CellsAreQuotedWhereTheyHaveTo)
{
    EXPECT_EQ(CommaSeparated({}), "");
    EXPECT_EQ(CommaSeparated({"1", "", "a b"}), "1,,a b");
    EXPECT_EQ(
        CommaSeparated({"a,b", "say \"x\"", "two\nlines", "cr\r"}),
        "\"a,b\",\"say \"\"x\"\"\",\"two\nlines\",\"cr\r\"");
}

} // namespace
