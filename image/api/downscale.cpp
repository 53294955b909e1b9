#include "image/convert.h"
#include "image/picture_reader.h"
#include "image/request.h"
#include <koro/image.h>

#include <algorithm>
#include <vector>

using namespace koro::image;

namespace
{

// First source pixel of each output pixel, and one entry behind the last.
std::vector<uint64_t> Bounds(uint64_t source, uint64_t output)
{
    std::vector<uint64_t> bounds(output + 1);
    for (uint64_t i = 0; i <= output; ++i)
        bounds[i] = i * source / output;
    return bounds;
}

class Downscaler
{
public:
    Downscaler(const Layout& layout, const uint8_t* data, const KIMG_REGION& region, const Target& to, uint64_t width)
        : target(to), columns(Bounds(region.width, width)),
          reader(layout, data, region, Method::Bilinear, ChosenKernels()), grey(region.width), sums(width * to.channels)
    {}

    void WriteLine(uint64_t firstLine, uint64_t endLine, uint8_t* output)
    {
        std::fill(sums.begin(), sums.end(), 0);
        for (uint64_t y = firstLine; y < endLine; ++y)
            AddLine(y);
        for (size_t i = 0; i < sums.size(); ++i)
        {
            const size_t pixel = i / target.channels;
            const uint64_t count = (columns[pixel + 1] - columns[pixel]) * (endLine - firstLine);
            output[i] = static_cast<uint8_t>((sums[i] + count / 2) / count);
        }
    }

private:
    void AddLine(uint64_t y)
    {
        if (target.channels == 1)
        {
            reader.ReadBrightness(y, grey.Pixels());
            return AddChannel(0, grey.Pixels());
        }
        const uint8_t* const* const colors = reader.ReadColors(y);
        for (unsigned channel = 0; channel < target.channels; ++channel)
            AddChannel(channel, colors[target.blueFirst && channel < 3 ? 2 - channel : channel]);
    }
    void AddChannel(unsigned channel, const uint8_t* samples)
    {
        for (size_t pixel = 0; pixel + 1 < columns.size(); ++pixel)
        {
            uint64_t sum = 0;
            for (uint64_t x = columns[pixel]; x < columns[pixel + 1]; ++x)
                sum += samples[x];
            sums[pixel * target.channels + channel] += sum;
        }
    }

    Target target;
    std::vector<uint64_t> columns;
    PictureReader<uint8_t> reader;
    Line<uint8_t> grey;
    std::vector<uint64_t> sums;
};

void CheckSize(const char* name, uint64_t size, uint64_t largest)
{
    if (size >= 1 && size <= largest) return;
    throw Failure(
        KIMG_RETURN_CODE_OUT_OF_RANGE, std::string(name) + " is " + std::to_string(size) + ", not 1 to " +
                                           std::to_string(largest) + ", the size of the region.");
}

} // namespace

KIMG_ReturnCode KIMG_Image_Downscale(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, uint32_t targetFormat,
    uint64_t outputWidth, uint64_t outputHeight, size_t outputStride, void* output, size_t* outputSize)
{
    return Call([&] {
        const CheckedPicture picture = CheckPicture(image, region, KIMG_OPERATION_CONVERT);
        const Target& target = RequireTarget(targetFormat);
        if (target.sampleBytes != 1)
            throw Failure(KIMG_RETURN_CODE_NOT_IMPLEMENTED, "A preview has 8 bits for each sample.");
        CheckSize("outputWidth", outputWidth, picture.region.width);
        CheckSize("outputHeight", outputHeight, picture.region.height);
        Output checked({0, 0, outputWidth, outputHeight}, target.Form(), outputStride);
        const uint8_t* bytes = nullptr;
        if (output) bytes = CheckedData(picture.layout, data, dataSize);
        if (!checked.Takes(output, outputSize, bytes, picture.layout.Size())) return;
        Downscaler downscaler(picture.layout, bytes, picture.region, target, outputWidth);
        const auto lines = Bounds(picture.region.height, outputHeight);
        for (uint64_t y = 0; y < outputHeight; ++y)
            downscaler.WriteLine(lines[y], lines[y + 1], checked.LineStart(y));
        *outputSize = checked.Size();
    });
}
