#include "tools/koro/picture_saver.h"
#include "tools/koro/report.h"

#include <gtest/gtest.h>

namespace
{

using namespace koro::tool;

TEST(Report, ControlCharactersOfAProducerDoNotReachTheTerminal)
{
    EXPECT_EQ(Printable("a\x1B[2Jb\nc\x7F"), "a?[2Jb?c?");
    EXPECT_EQ(Printable("K\xC3\xB6ro"), "K\xC3\xB6ro");
}

TEST(Report, LongTextsAreCut)
{
    EXPECT_EQ(PrintableStart(std::string(199, 'a') + "\n"), std::string(199, 'a') + "?");
    EXPECT_EQ(PrintableStart(std::string(200, 'a') + "b"), std::string(200, 'a') + "... (201 bytes)");
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

TEST(Report, CellsAreQuotedWhereTheyHaveTo)
{
    EXPECT_EQ(CommaSeparated({}), "");
    EXPECT_EQ(CommaSeparated({"1", "", "a b"}), "1,,a b");
    EXPECT_EQ(
        CommaSeparated({"a,b", "say \"x\"", "two\nlines", "cr\r"}),
        "\"a,b\",\"say \"\"x\"\"\",\"two\nlines\",\"cr\r\"");
}

} // namespace
