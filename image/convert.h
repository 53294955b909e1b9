// Conversion: from any format that becomes a picture to the formats that programs show and store.
#pragma once

#include "image/demosaic.h"
#include "image/output.h"

namespace koro::image
{

struct Target
{
    uint32_t pixelFormat;
    uint8_t sampleBytes;
    uint8_t channels;
    bool blueFirst;

    OutputForm Form() const { return {uint64_t{sampleBytes} * channels, sampleBytes}; }
};

// Throws Failure with KIMG_RETURN_CODE_NOT_IMPLEMENTED for a format that is no target.
const Target& RequireTarget(uint32_t pixelFormat);

// The output has been checked to have room.
void Convert(
    const Layout& layout, const uint8_t* data, const KIMG_REGION& region, Method method, const Target& target,
    const Output& output);

} // namespace koro::image
