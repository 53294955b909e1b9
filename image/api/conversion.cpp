#include "image/call.h"
#include "image/convert.h"
#include "image/line_reader.h"
#include "image/output.h"
#include <koro/image.h>

using namespace koro::image;

namespace
{

struct Request
{
    const KIMG_IMAGE* image;
    const void* data;
    size_t dataSize;
    const KIMG_REGION* region;
    size_t outputStride;
    void* output;
    size_t* outputSize;
};

// Checks all arguments, answers a size query, else calls `work(layout, data, region, output)`.
template <class FormOf, class Work>
void Produce(const Request& request, uint32_t operation, const FormOf& formOf, const Work& work)
{
    const Layout layout = CheckedLayout(request.image);
    RequireOperation(*layout.format, operation);
    const KIMG_REGION region = CheckedRegion(layout, request.region);
    Output output(region, formOf(*layout.format), request.outputStride);
    const uint8_t* data = nullptr;
    if (request.output) data = CheckedData(layout, request.data, request.dataSize);
    if (!output.Takes(request.output, request.outputSize, data, layout.Size())) return;
    work(layout, data, region, output);
    *request.outputSize = output.Size();
}

void ReadLine(LineReader& reader, uint64_t y, uint64_t x, size_t count, uint8_t* const* components)
{
    reader.ReadFull(y, x, count, components);
}
void ReadLine(LineReader& reader, uint64_t y, uint64_t x, size_t count, uint16_t* const* components)
{
    reader.ReadRaw(y, x, count, components);
}
void ReadLine(LineReader& reader, uint64_t y, uint64_t x, size_t count, float* const* components)
{
    reader.ReadFloat(y, x, count, components);
}

void Interleave(const Kernels& kernels, const uint8_t* const* lines, size_t channels, size_t count, uint8_t* pixels)
{
    (channels == 3 ? kernels.bytes.interleave3 : kernels.bytes.interleave4)(lines, count, pixels);
}
void Interleave(const Kernels& kernels, const uint16_t* const* lines, size_t channels, size_t count, uint16_t* pixels)
{
    (channels == 3 ? kernels.words.interleave3 : kernels.words.interleave4)(lines, count, pixels);
}
void Interleave(const Kernels&, const float* const* lines, size_t channels, size_t count, float* pixels)
{
    for (size_t i = 0; i < count * channels; ++i)
        pixels[i] = lines[i % channels][i / channels];
}

template <class T>
void UnpackLines(const Layout& layout, const uint8_t* data, const KIMG_REGION& region, const Output& output)
{
    const Kernels& kernels = ChosenKernels();
    LineReader reader(layout, data, region.width, kernels);
    const size_t channels = layout.format->NumComponents();
    Line<T> lines[4];
    T* components[4] = {};
    for (size_t channel = 0; channels > 1 && channel < channels; ++channel)
    {
        lines[channel] = Line<T>(region.width);
        components[channel] = lines[channel].Pixels();
    }
    for (uint64_t y = 0; y < region.height; ++y)
    {
        T* const pixels = reinterpret_cast<T*>(output.LineStart(y));
        if (channels == 1) components[0] = pixels;
        ReadLine(reader, region.y + y, region.x, region.width, components);
        if (channels == 2)
        {
            for (size_t i = 0; i < 2 * region.width; ++i)
                pixels[i] = components[i % 2][i / 2];
        }
        if (channels > 2) Interleave(kernels, components, channels, region.width, pixels);
    }
}

template <class T>
KIMG_ReturnCode Unpack(const Request& request, uint32_t operation)
{
    return Call([&] {
        const auto form = [](const PixelFormat& format) {
            return OutputForm{uint64_t{format.NumComponents()} * sizeof(T), sizeof(T)};
        };
        Produce(request, operation, form, UnpackLines<T>);
    });
}

Method CheckedMethod(int32_t demosaic)
{
    if (demosaic == KIMG_DEMOSAIC_BILINEAR || demosaic == KIMG_DEMOSAIC_EDGE_AWARE) return Method{demosaic};
    ThrowInvalidArgument("demosaic is not one of KIMG_DEMOSAIC_....");
}

} // namespace

KIMG_ReturnCode KIMG_Image_Unpack8(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, size_t outputStride,
    uint8_t* output, size_t* outputSize)
{
    return Unpack<uint8_t>({image, data, dataSize, region, outputStride, output, outputSize}, KIMG_OPERATION_UNPACK);
}

KIMG_ReturnCode KIMG_Image_Unpack16(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, size_t outputStride,
    uint16_t* output, size_t* outputSize)
{
    return Unpack<uint16_t>({image, data, dataSize, region, outputStride, output, outputSize}, KIMG_OPERATION_UNPACK);
}

KIMG_ReturnCode KIMG_Image_UnpackFloat(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, size_t outputStride,
    float* output, size_t* outputSize)
{
    return Unpack<float>(
        {image, data, dataSize, region, outputStride, output, outputSize}, KIMG_OPERATION_UNPACK_FLOAT);
}

KIMG_ReturnCode KIMG_Image_Convert(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, int32_t demosaic,
    uint32_t targetFormat, size_t outputStride, void* output, size_t* outputSize)
{
    return Call([&] {
        const Method method = CheckedMethod(demosaic);
        const Target& target = RequireTarget(targetFormat);
        Produce(
            {image, data, dataSize, region, outputStride, output, outputSize}, KIMG_OPERATION_CONVERT,
            [&](const PixelFormat&) { return target.Form(); },
            [&](const Layout& layout, const uint8_t* bytes, const KIMG_REGION& part, const Output& checked) {
                Convert(layout, bytes, part, method, target, checked);
            });
    });
}
