// Output: the caller's memory for a picture, checked before the first byte is written.
#pragma once

#include "image/call.h"
#include "image/layout.h"
#include <koro/image.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace koro::image
{

struct OutputForm
{
    uint64_t pixelBytes;
    uint64_t sampleBytes;
};

class Output
{
public:
    // Throws Failure for a stride that does not fit.
    Output(const KIMG_REGION& region, const OutputForm& form, uint64_t outputStride);

    // False for a size query, which is answered. Throws Failure for a buffer that is too small, not aligned to its
    // samples, or that overlaps the frame.
    bool Takes(void* buffer, size_t* size, const uint8_t* data, uint64_t dataSize);
    uint8_t* LineStart(uint64_t y) const { return start + y * stride; }
    uint64_t Size() const { return needed; }

private:
    uint64_t sampleBytes;
    uint64_t stride;
    uint64_t needed;
    uint8_t* start = nullptr;
};

} // namespace koro::image
