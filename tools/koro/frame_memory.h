// FrameMemory: the memory of one buffer, aligned as the producer asks. Owned by a grab; move-only.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>

namespace koro::tool
{

class FrameMemory
{
public:
    // Zeroed. `alignment` is rounded up to a power of two of at least 64. Throws ToolError when there is no memory or
    // the alignment is beyond 1 MiB.
    FrameMemory(size_t bytes, size_t alignment);

    uint8_t* Data() const noexcept { return memory.get(); }
    size_t Size() const noexcept { return size; }
    // Zeroes what lies from byte `first` to the end, or to byte `end`; nothing beyond the memory.
    void Blank(size_t first) const noexcept { Blank(first, size); }
    void Blank(size_t first, size_t end) const noexcept;

private:
    struct Free
    {
        void operator()(uint8_t* bytes) const { std::free(bytes); }
    };

    size_t size;
    std::unique_ptr<uint8_t, Free> memory;
};

} // namespace koro::tool
