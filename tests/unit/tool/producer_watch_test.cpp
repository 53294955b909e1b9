// Each watch ends its process, so each test has one for itself.
#include "tools/koro/producer_watch.h"

#include <cstdio>
#include <functional>
#include <future>
#include <gtest/gtest.h>

namespace
{

using namespace koro::tool;
using std::chrono::hours;
using std::chrono::milliseconds;

constexpr milliseconds never = hours(1);
constexpr milliseconds soon(1);

// The calling thread hangs for ever.
void Hang()
{
    std::promise<void>().get_future().wait();
}

// A watch lives as long as its process.
void HangIn(const WatchLimits& limits, const std::function<void(ProducerWatch&)>& before)
{
    ProducerWatch& watch = *new ProducerWatch(limits);
    watch.Call("/p/a.cti");
    before(watch);
    Hang();
}

class ProducerWatchDeathTest : public testing::Test
{
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

TEST_F(ProducerWatchDeathTest, CallThatHangsAfterAnInterruptEndsTheProcess)
{
    EXPECT_EXIT(
        HangIn({never, soon, never, never}, [](ProducerWatch& watch) { watch.NoteInterrupt(); }),
        testing::ExitedWithCode(130), "^koro: /p/a.cti does not return from a call");
}

TEST_F(ProducerWatchDeathTest, WaitIsNotNamedButBoundedAfterAnInterrupt)
{
    const auto hang = [] {
        ProducerWatch& watch = *new ProducerWatch({soon, soon, never, never});
        watch.BeginWait(); // before the call, which could be named otherwise
        watch.Call("/p/a.cti");
        watch.NoteInterrupt();
        Hang();
    };
    EXPECT_EXIT(hang(), testing::ExitedWithCode(130), "^koro: /p/a.cti does not");
}

TEST_F(ProducerWatchDeathTest, CloseThatHangsIsNamedAndEndsTheProcess)
{
    EXPECT_EXIT(
        HangIn({soon, never, milliseconds(50), never}, [](ProducerWatch& watch) { watch.BeginClosing(); }),
        testing::ExitedWithCode(1),
        "^koro: closing, the camera does not answer\nkoro: waiting for /p/a.cti\nkoro: /p/a.cti cannot be closed\\.");
}

TEST_F(ProducerWatchDeathTest, LastWordsGiveTheStatus)
{
    const auto speak = [](ProducerWatch& watch) {
        watch.SetLastWords([] { return std::fprintf(stderr, "last words\n") > 0 ? 5 : 0; });
        watch.BeginClosing();
    };
    EXPECT_EXIT(
        HangIn({never, never, soon, never}, speak), testing::ExitedWithCode(5),
        "^last words\nkoro: /p/a.cti cannot be closed\\.");
}

TEST_F(ProducerWatchDeathTest, StatusStaysWhenTheProcessIsNotLetGo)
{
    EXPECT_EXIT(
        HangIn({never, never, never, soon}, [](ProducerWatch& watch) { watch.Leave(7); }), testing::ExitedWithCode(7),
        "^koro: /p/a.cti does not let the process end\\.");
}

TEST_F(ProducerWatchDeathTest, OtherThreadsStayWhereTheyAreWhileTheProcessEnds)
{
    const auto go = [](ProducerWatch& watch) {
        std::promise<void> isEnding;
        watch.SetLastWords([&] {
            isEnding.set_value();
            return 5;
        });
        watch.BeginClosing();
        isEnding.get_future().wait();
        watch.NoteProgress();
        std::fprintf(stderr, "goes on\n");
    };
    EXPECT_EXIT(
        HangIn({never, never, soon, never}, go), testing::ExitedWithCode(5), "^koro: /p/a.cti cannot be closed\\.");
}

} // namespace
