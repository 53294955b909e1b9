// The end of a process that leaves its owners behind.
#include "tests/support/scripted_producer.h"
#include "tests/tool/koro_tree.h"
#include <koro/koro.hpp>

#include <cstdlib>
#include <gtest/gtest.h>

namespace
{

using koro::test::ScriptedProducer;
using koro::test::Tree;

class KoroExit : public testing::Test
{
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

// The producer's static objects crash the process if it is open when they end.
TEST_F(KoroExit, ClosesTheLibraryBeforeTheProducerEnds)
{
    EXPECT_EXIT(
        {
            const ScriptedProducer producer("wild_falls_over_at_exit");
            const Tree tree(producer.Path());
            std::exit(3);
        },
        testing::ExitedWithCode(3), "");
}

TEST_F(KoroExit, ClosesAllThatIsLeftOfSeveralInitialisations)
{
    EXPECT_EXIT(
        {
            const ScriptedProducer producer("wild_falls_over_at_exit");
            const Tree tree(producer.Path());
            const koro::Library second = koro::Library::Initialize();
            static const koro::Library ofTheProcess = koro::Library::Initialize();
            std::exit(3);
        },
        testing::ExitedWithCode(3), "");
}

TEST_F(KoroExit, LeavesAloneWhatIsClosedAlready)
{
    EXPECT_EXIT(
        {
            const ScriptedProducer producer("wild_falls_over_at_exit");
            {
                const Tree tree(producer.Path());
            }
            static koro::Library again = koro::Library::Initialize();
            again.Close();
            std::exit(koro::Library::IsInitialized() ? 4 : 3);
        },
        testing::ExitedWithCode(3), "");
}

} // namespace
