#include "tests/support/temporary_folder.h"
#include "tools/koro/unsearched_places.h"

#include <chrono>
#include <cstdio>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace
{

using namespace koro::tool;
using koro::test::TemporaryFolder;
using testing::HasSubstr;
using testing::Not;

class UnsearchedPlaces : public testing::Test
{
protected:
    // A folder with a producer.
    std::string MakePlace(const std::string& name) const
    {
        const std::string place = folder.MakeFolder(name);
        folder.MakeFile(name + "/camera.cti", "");
        return place;
    }
    std::string Describe(const char* searched = nullptr, const std::vector<std::string>& candidates = {}) const
    {
        return DescribeUnsearchedPlaces({folder.Path().string()}, {}, candidates, searched);
    }

    const TemporaryFolder folder;
};

// What the variable is after a shell has read the last line of the text.
std::string ValueInAShell(const std::string& text)
{
    const std::string begin = "to search them: ";
    const std::string script = text.substr(text.rfind(begin) + begin.size()) + "printf %s \"$GENICAM_GENTL64_PATH\"";
    setenv("KORO_TEST_SCRIPT", script.c_str(), 1);
    std::FILE* const output = popen("eval \"$KORO_TEST_SCRIPT\"", "r");
    char value[4096];
    const size_t size = std::fread(value, 1, sizeof value, output);
    EXPECT_EQ(pclose(output), 0) << script;
    return std::string(value, size);
}

TEST_F(UnsearchedPlaces, AreNamedWithTheLineThatAddsThem)
{
    const std::string one = MakePlace("one");
    const std::string two = MakePlace("two");
    EXPECT_EQ(
        Describe(), one + " holds .cti files and is not searched\n" + two +
                        " holds .cti files and is not searched\n"
                        "to search them: export GENICAM_GENTL64_PATH=" +
                        one + ":" + two + "\n");
}

TEST_F(UnsearchedPlaces, ComeBehindWhatTheVariableHas)
{
    const std::string one = MakePlace("one");
    EXPECT_THAT(Describe("/a:/b"), HasSubstr("export GENICAM_GENTL64_PATH=/a:/b:" + one + "\n"));
    EXPECT_THAT(Describe(""), HasSubstr("export GENICAM_GENTL64_PATH=" + one + "\n"));
}

TEST_F(UnsearchedPlaces, AreNoneOfTheFoldersOfCandidates)
{
    const std::string one = MakePlace("one");
    const std::string two = MakePlace("two");
    const std::string text = Describe(one.c_str(), {one + "/camera.cti"});
    EXPECT_THAT(text, Not(HasSubstr(one + " holds")));
    EXPECT_THAT(text, HasSubstr("=" + one + ":" + two + "\n"));
    EXPECT_EQ(Describe(nullptr, {one + "/camera.cti", two + "/camera.cti"}), "");
}

TEST_F(UnsearchedPlaces, LineSurvivesAShell)
{
    const std::string place = MakePlace("it's \"my\" $HOME `id` \\n !x *");
    EXPECT_EQ(ValueInAShell(Describe()), place);
    EXPECT_EQ(ValueInAShell(Describe("/old place")), "/old place:" + place);
}

TEST_F(UnsearchedPlaces, ThatTheVariableOrATerminalCannotNameAreLeftOut)
{
    for (const char* const name : {"a:b", "a;b", "a\x1b[2Jb", "a\nb", "a\xff"})
        MakePlace(name);
    EXPECT_EQ(Describe(), "");
}

TEST_F(UnsearchedPlaces, RootsThatAreNotSearchedAsAWholeAreNamed)
{
    const std::string one = MakePlace("one");
    const std::string other = folder.File("missing");
    const std::string text =
        DescribeUnsearchedPlaces({one, other, "/x"}, {.time = std::chrono::milliseconds(0)}, {}, nullptr);
    EXPECT_EQ(text, one + ", " + other + " and /x are too large to be searched as a whole\n");
}

} // namespace
