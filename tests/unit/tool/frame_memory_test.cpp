#include "tools/koro/frame_memory.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

namespace
{

using namespace koro::tool;

TEST(FrameMemory, IsAlignedAsAskedAndZeroed)
{
    const std::pair<size_t, size_t> askedAndGiven[] = {{0, 64}, {1, 64}, {48, 64}, {100, 128}, {4096, 4096}};
    for (const auto& [asked, given] : askedAndGiven)
    {
        const FrameMemory memory(100, asked);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(memory.Data()) % given, 0u);
        EXPECT_EQ(memory.Size(), 100u);
        EXPECT_EQ(std::count(memory.Data(), memory.Data() + 100, 0), 100);
    }
}

TEST(FrameMemory, AbsurdAlignmentIsRefused)
{
    EXPECT_THROW(FrameMemory(100, size_t{1} << 40), ToolError);
    EXPECT_THROW(FrameMemory(100, ~size_t{0}), ToolError);
}

} // namespace
