#include "tools/koro/frame_memory.h"

#include "tools/koro/tool_error.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>

namespace koro::tool
{

FrameMemory::FrameMemory(size_t bytes, size_t alignment) : size(bytes)
{
    constexpr size_t maxAlignment = size_t{1} << 20;
    if (alignment > maxAlignment)
    {
        throw ToolError("The producer asks for buffers aligned to " + std::to_string(alignment) + " bytes.");
    }
    void* block = nullptr;
    if (posix_memalign(&block, std::bit_ceil(std::max<size_t>(alignment, 64)), bytes) != 0)
    {
        throw ToolError("No memory for a buffer of " + std::to_string(bytes) + " bytes.");
    }
    memory.reset(static_cast<uint8_t*>(block));
    std::memset(block, 0, bytes);
}

void FrameMemory::Blank(size_t first, size_t end) const noexcept
{
    end = std::min(end, size);
    if (first < end) std::memset(memory.get() + first, 0, end - first);
}

} // namespace koro::tool
