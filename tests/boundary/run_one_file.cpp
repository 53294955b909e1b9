// Runs the tests of one file: boundary_tests <subject> runs those of <subject>_test.cpp, without a name it runs all.
#include <cstdio>
#include <filesystem>
#include <gmock/gmock.h>
#include <string>
#include <string_view>

namespace
{

bool LiesIn(const testing::TestSuite& suite, std::string_view fileName)
{
    return suite.total_test_count() > 0 && std::filesystem::path(suite.GetTestInfo(0)->file()).filename() == fileName;
}

// A filter for the suites of the file, empty when there are none.
std::string SuitesOf(std::string_view fileName)
{
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    std::string filter;
    for (int i = 0; i < all.total_test_suite_count(); ++i)
    {
        const testing::TestSuite& suite = *all.GetTestSuite(i);
        if (LiesIn(suite, fileName)) filter += std::string(suite.name()) + ".*:";
    }
    return filter;
}

// The results of each subject get their own file where the environment names a folder for results: runs at the same
// time would choose one name. To be called before GoogleTest is initialised, which opens the file.
void NameResults(const std::string& subject)
{
    const std::string output = GTEST_FLAG_GET(output);
    if (output.ends_with('/')) GTEST_FLAG_SET(output, output + "boundary_" + subject + ".xml");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc > 1) NameResults(argv[1]);
    testing::InitGoogleMock(&argc, argv);
    if (argc < 2) return RUN_ALL_TESTS();
    const std::string subject = argv[1];
    const std::string filter = SuitesOf(subject + "_test.cpp");
    if (filter.empty())
    {
        std::fprintf(stderr, "no test lies in %s_test.cpp\n", subject.c_str());
        return 1;
    }
    // A filter of the command line stays: a death test starts the program again with one.
    if (GTEST_FLAG_GET(filter) == "*") GTEST_FLAG_SET(filter, filter);
    return RUN_ALL_TESTS();
}
