#include "image/convert.h"

#include "image/picture_reader.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace koro::image
{

namespace
{

constexpr Target targets[] = {
    {0x01080001, 1, 1, false}, // Mono8
    {0x01100007, 2, 1, false}, // Mono16
    {0x02180014, 1, 3, false}, // RGB8
    {0x02180015, 1, 3, true},  // BGR8
    {0x02200016, 1, 4, false}, // RGBa8
    {0x02200017, 1, 4, true},  // BGRa8
    {0x02300033, 2, 3, false}, // RGB16
    {0x0230004B, 2, 3, true},  // BGR16
    {0x02400064, 2, 4, false}, // RGBa16
    {0x02400051, 2, 4, true},  // BGRa16
};

template <class T>
void WriteWithAlpha(const T* const* colors, size_t width, bool blueFirst, T* pixels)
{
    const T* const ordered[] = {colors[blueFirst ? 2 : 0], colors[1], colors[blueFirst ? 0 : 2], colors[3]};
    PixelsOf<T>(ChosenKernels()).interleave4(ordered, width, pixels);
}

template <class T>
void ConvertLines(PictureReader<T>& reader, const KIMG_REGION& region, const Target& target, const Output& output)
{
    for (uint64_t y = 0; y < region.height; ++y)
    {
        T* const line = reinterpret_cast<T*>(output.LineStart(y));
        if (target.channels == 1)
            reader.ReadBrightness(y, line);
        else if (target.channels == 3)
            reader.WriteColors(y, target.blueFirst, line);
        else
            WriteWithAlpha(reader.ReadColors(y), region.width, target.blueFirst, line);
    }
}

template <class T>
void ConvertTo(
    const Layout& layout, const uint8_t* data, const KIMG_REGION& region, Method method, const Target& target,
    const Output& output)
{
    PictureReader<T> reader(layout, data, region, method, ChosenKernels());
    ConvertLines(reader, region, target, output);
}

} // namespace

const Target& RequireTarget(uint32_t pixelFormat)
{
    const auto* const found = std::find_if(std::begin(targets), std::end(targets), [=](const Target& target) {
        return target.pixelFormat == pixelFormat;
    });
    if (found != std::end(targets)) return *found;
    throw Failure(
        KIMG_RETURN_CODE_NOT_IMPLEMENTED,
        std::string(RequirePixelFormat(pixelFormat).name) +
            " is no target of a conversion; Mono, RGB, BGR, RGBa and BGRa of 8 or 16 bits are.");
}

void Convert(
    const Layout& layout, const uint8_t* data, const KIMG_REGION& region, Method method, const Target& target,
    const Output& output)
{
    if (target.sampleBytes == 1) return ConvertTo<uint8_t>(layout, data, region, method, target, output);
    ConvertTo<uint16_t>(layout, data, region, method, target, output);
}

} // namespace koro::image
