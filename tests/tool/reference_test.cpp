// The manual pages and the completion that the tool writes from the definitions of its command line.
#include "tests/support/temporary_folder.h"
#include "tests/tool/help_text.h"
#include "tests/tool/tool_run.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <string>
#include <vector>

namespace
{

using namespace koro::test;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

std::string TextOf(const std::filesystem::path& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

class Reference : public testing::Test
{
protected:
    Reference() { EXPECT_EQ(RunTool({"reference", folder.Path()}).status, 0); }

    std::string Page(const std::string& name) const { return TextOf(folder.File("man1/" + name + ".1")); }

    // What bash offers for the last of these words.
    std::vector<std::string> Completions(const std::vector<std::string>& words) const
    {
        std::ofstream script(folder.File("complete.sh"));
        script << "source '" << folder.File("completions/koro") << "'\ncd '" << folder.File("") << "'\nCOMP_WORDS=(";
        for (const std::string& word : words)
            script << " '" << word << "'";
        script << " )\nCOMP_CWORD=" << words.size() - 1 << "\n_koro\nprintf '%s\\n' \"${COMPREPLY[@]}\" > '"
               << folder.File("replies") << "'\n";
        script.close();
        EXPECT_EQ(std::system(("bash '" + folder.File("complete.sh") + "'").c_str()), 0);
        auto replies = SplitLines(TextOf(folder.File("replies")));
        std::erase(replies, "");
        return replies;
    }

    TemporaryFolder folder;
};

} // namespace

TEST_F(Reference, EachCommandHasAPageThatThePageOfTheToolNames)
{
    const auto commands = FirstWordsUnder(RunTool({"--help"}).out, "Subcommands:");
    ASSERT_THAT(commands, Contains("grab"));
    for (const std::string& command : commands)
    {
        EXPECT_THAT(Page("koro"), HasSubstr("\\fBkoro\\-" + command + "\\fR(1)"));
        EXPECT_THAT(Page("koro-" + command), HasSubstr(".SH NAME\nkoro\\-" + command + " \\- "));
    }
}

TEST_F(Reference, PageOfACommandHasTheOptionsOfItsHelpWithTheirTexts)
{
    const std::string page = std::regex_replace(Page("koro-grab"), std::regex(R"(\\-)"), "-");
    const auto options = FirstWordsUnder(RunTool({"grab", "--help"}).out, "Options:");
    ASSERT_THAT(options, Contains("--keep-incomplete"));
    for (const std::string& option : options)
        EXPECT_THAT(page, HasSubstr("\\fB" + option.substr(option.rfind(',') + 1) + "\\fR"));
    EXPECT_THAT(page, HasSubstr("Go on when the camera was unplugged and comes back\n"));
    EXPECT_THAT(page, HasSubstr("Exit status: 0 success"));
}

TEST_F(Reference, SubcommandsAreSectionsOfThePageOfTheirCommand)
{
    const std::string page = Page("koro-settings");
    EXPECT_THAT(page, HasSubstr(".SH KORO SETTINGS SAVE\n"));
    EXPECT_THAT(page, HasSubstr("\\fB\\-\\-all\\-writable\\fR"));
    EXPECT_FALSE(std::filesystem::exists(folder.File("man1/koro-settings-save.1")));
}

TEST_F(Reference, CommandsOfTheToolItselfStayHidden)
{
    EXPECT_THAT(Page("koro"), Not(HasSubstr("probe")));
    EXPECT_FALSE(std::filesystem::exists(folder.File("man1/koro-reference.1")));
    EXPECT_THAT(Completions({"koro", "pro"}), IsEmpty());
}

TEST_F(Reference, FormatterFindsNoFaultInAnyPage)
{
    if (std::system("command -v groff >/dev/null") != 0) GTEST_SKIP() << "groff is not installed";
    for (const auto& page : std::filesystem::directory_iterator(folder.File("man1")))
    {
        const std::string warnings = folder.File("warnings");
        const std::string command = "groff -man -Tutf8 -ww -z '" + page.path().string() + "' 2>'" + warnings + "'";
        EXPECT_EQ(std::system(command.c_str()), 0);
        EXPECT_EQ(TextOf(warnings), "") << page.path();
    }
}

TEST_F(Reference, CompletionOffersCommandsAndTheirOptions)
{
    EXPECT_THAT(Completions({"koro", "gr"}), ElementsAre("grab"));
    EXPECT_THAT(Completions({"koro", "settings", ""}), UnorderedElementsAre("save", "load", "check", "diff"));
    EXPECT_THAT(Completions({"koro", "grab", "camera", "--for"}), ElementsAre("--format"));
    EXPECT_THAT(Completions({"koro", "settings", "save", "camera", "--all"}), ElementsAre("--all-writable"));
}

TEST_F(Reference, CompletionOffersTheWordsOfAnOptionThatTakesOneOfAList)
{
    EXPECT_THAT(
        Completions({"koro", "grab", "camera", "--format", ""}), UnorderedElementsAre("none", "png", "raw", "tiff"));
    EXPECT_THAT(Completions({"koro", "grab", "camera", "--format", "r"}), ElementsAre("raw"));
}

TEST_F(Reference, CompletionOffersFilesWhereAnythingMayStand)
{
    folder.MakeFile("my settings.txt", "");
    EXPECT_THAT(Completions({"koro", "settings", "load", "camera", "my"}), ElementsAre("my settings.txt"));
    EXPECT_THAT(Completions({"koro", "grab", "camera", "--output", "my"}), ElementsAre("my settings.txt"));
}
