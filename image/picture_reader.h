// PictureReader: the finished colours of the lines of a region, from any format that becomes a picture.
//
// Not synchronised: holds line buffers.
#pragma once

#include "image/demosaic.h"
#include "image/line_reader.h"

#include <memory>

namespace koro::image
{

template <class T>
class PictureReader
{
public:
    PictureReader(
        const Layout& picture, const uint8_t* frame, const KIMG_REGION& part, Method way, const Kernels& loops);

    // Line `y` of the region. The pointers are red, green, blue and alpha; a grey format gives one line three times,
    // and one without alpha the largest value. They are valid until the next call.
    const T* const* ReadColors(uint64_t y);
    // Line `y` of the region as pixels of three samples, red or blue first.
    void WriteColors(uint64_t y, bool blueFirst, T* pixels);
    // The brightness of the line into `brightness`, which has room for the width of the region.
    void ReadBrightness(uint64_t y, T* brightness);

private:
    void ReadYCbCr(uint64_t y, bool onlyBrightness, T* const* colors);
    void ReadBiColor(uint64_t y, T* const* colors);
    bool IsGrey() const;

    Layout layout;
    KIMG_REGION region;
    const Kernels& kernels;
    LineReader reader;
    std::unique_ptr<Demosaicer<T>> demosaicer;
    Line<T> lines[4];
    Line<uint16_t> raw[3];
    Line<T> alternating; // of BiColor, as the next
    Line<T> green;
    const T* result[4] = {};
};

} // namespace koro::image
