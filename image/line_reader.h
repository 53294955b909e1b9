// LineReader: the components of the pixels of one line, from any layout to one array for each component.
//
// Components come in a fixed order: red, green, blue, alpha; Y, Cb, Cr; the axes in the order of the format's name; of
// BiColor red and blue in turns, then green. Not synchronised: holds line buffers.
#pragma once

#include "image/kernels.h"
#include "image/layout.h"
#include "image/line.h"

namespace koro::image
{

class LineReader
{
public:
    // `data` are the bytes of the frame and must outlive the reader. `width` is the longest run that will be read.
    LineReader(const Layout& picture, const uint8_t* frame, size_t width, const Kernels& loops);

    // As sent; signed samples are moved up by half of their range. Not for samples of more than 16 bits.
    void ReadRaw(uint64_t y, uint64_t x, size_t count, uint16_t* const* components);
    // From 0 to the largest value of 8 or 16 bits.
    void ReadFull(uint64_t y, uint64_t x, size_t count, uint8_t* const* components);
    void ReadFull(uint64_t y, uint64_t x, size_t count, uint16_t* const* components);
    // As sent, rounded to the nearest float. For all sample types.
    void ReadFloat(uint64_t y, uint64_t x, size_t count, float* const* components);

private:
    const uint8_t* LineStart(unsigned plane, uint64_t y) const;
    Kernels::Unpack Unpacker() const;
    void ReadRun(const uint8_t* line, size_t first, size_t count, uint16_t* values) const;
    void ReadInterleaved(const uint8_t* line, uint64_t x, size_t count, uint16_t* const* components);
    struct GroupedLine
    {
        const uint8_t* start;
        size_t numSamples;
        bool hasBrightness;
    };
    void ReadColorGroups(const GroupedLine& line, uint64_t x, size_t count, uint16_t* const* components);
    void ReadYCbCr(uint64_t y, uint64_t x, size_t count, uint16_t* const* components);
    uint16_t SampleAt(const uint8_t* line, size_t index) const;
    uint16_t ColorDifferenceAt(const uint8_t* line, size_t group, size_t place, size_t samplesOfLine) const;
    bool HasByteColors() const;

    Layout layout;
    const uint8_t* data;
    const Kernels& kernels;
    KIMG_PLANE planes[4];
    Line<uint16_t> run;
    Line<uint16_t> raw[4];
};

// Position of each sample of a pixel in the fixed order of components.
unsigned ComponentOf(const PixelFormat& format, size_t sampleOfPixel);
// Significant bits of a component.
unsigned BitsOfComponent(const PixelFormat& format, unsigned component);

} // namespace koro::image
