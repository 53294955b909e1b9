#include "image/output.h"

#include <functional>

namespace koro::image
{

namespace
{

constexpr uint64_t maxStride = uint64_t{1} << 40;

bool Overlap(const uint8_t* a, uint64_t aSize, const uint8_t* b, uint64_t bSize)
{
    const std::less<const uint8_t*> before;
    return before(a, b + bSize) && before(b, a + aSize);
}

} // namespace

Output::Output(const KIMG_REGION& region, const OutputForm& form, uint64_t outputStride) : sampleBytes(form.sampleBytes)
{
    const uint64_t lineBytes = region.width * form.pixelBytes;
    stride = outputStride == 0 ? lineBytes : outputStride;
    if (stride < lineBytes || stride > maxStride || stride % sampleBytes != 0)
    {
        ThrowInvalidArgument(
            "outputStride is " + std::to_string(stride) + "; it must be a multiple of " + std::to_string(sampleBytes) +
            " from " + std::to_string(lineBytes) + " to " + std::to_string(maxStride) + " bytes, or 0.");
    }
    needed = (region.height - 1) * stride + lineBytes;
}

bool Output::Takes(void* buffer, size_t* size, const uint8_t* data, uint64_t dataSize)
{
    if (!TakesOutput(buffer, "output", needed, size)) return false;
    if (reinterpret_cast<uintptr_t>(buffer) % sampleBytes != 0)
        ThrowInvalidArgument("output is not aligned to " + std::to_string(sampleBytes) + " bytes.");
    start = static_cast<uint8_t*>(buffer);
    if (Overlap(start, needed, data, dataSize)) ThrowInvalidArgument("data and output overlap.");
    return true;
}

} // namespace koro::image
