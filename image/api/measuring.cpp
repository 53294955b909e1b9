#include "image/histogram.h"
#include "image/request.h"
#include <koro/image.h>

#include <cstring>

using namespace koro::image;

KIMG_ReturnCode KIMG_Image_GetHistogram(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, size_t componentIndex,
    uint64_t* histogram, size_t* histogramSize)
{
    return Call([&] {
        const CheckedPicture picture = CheckPicture(image, region, KIMG_OPERATION_UNPACK);
        const PixelFormat& format = *picture.layout.format;
        const unsigned component = CheckedComponent(format, componentIndex);
        const size_t size = sizeof *histogram << format.samples.bits;
        if (!TakesOutput(histogram, "histogram", size, histogramSize)) return;
        const auto counts =
            HistogramOf(picture.layout, CheckedData(picture.layout, data, dataSize), picture.region, component);
        std::memcpy(histogram, counts.data(), size);
        *histogramSize = size;
    });
}

KIMG_ReturnCode KIMG_Image_GetStatistics(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, size_t componentIndex,
    KIMG_STATISTICS* statistics)
{
    return Call([&] {
        RequirePointer(statistics, "statistics");
        const CheckedPicture picture = CheckPicture(image, region, KIMG_OPERATION_UNPACK_FLOAT);
        const unsigned component = CheckedComponent(*picture.layout.format, componentIndex);
        *statistics =
            StatisticsOf(picture.layout, CheckedData(picture.layout, data, dataSize), picture.region, component);
    });
}
