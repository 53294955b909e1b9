#include "image/request.h"
#include "image/sample_tables.h"
#include <koro/image.h>

#include <algorithm>
#include <cmath>

using namespace koro::image;

namespace
{

constexpr double maxGain = 1000;

CheckedPicture CheckTabled(const KIMG_IMAGE* image, const KIMG_REGION* region)
{
    const CheckedPicture picture = CheckPicture(image, region, KIMG_OPERATION_LAYOUT);
    RequireTables(*picture.layout.format);
    return picture;
}

SampleTable GainTable(double gain, const char* name, unsigned bits)
{
    if (!(gain >= 0 && gain <= maxGain)) ThrowInvalidArgument(std::string(name) + " is not a number from 0 to 1000.");
    SampleTable table(size_t{1} << bits);
    const double largest = static_cast<double>(table.size() - 1);
    for (size_t value = 0; value < table.size(); ++value)
        table[value] = static_cast<uint16_t>(std::min(std::floor(static_cast<double>(value) * gain + 0.5), largest));
    return table;
}

void FillGamma(double gamma, uint16_t* table, size_t numEntries)
{
    const double largest = static_cast<double>(numEntries - 1);
    for (size_t value = 0; value < numEntries; ++value)
    {
        const double curve = std::pow(static_cast<double>(value) / largest, 1 / gamma);
        table[value] = static_cast<uint16_t>(std::floor(largest * curve + 0.5));
    }
}

} // namespace

KIMG_ReturnCode KIMG_Image_EstimateGains(
    const KIMG_IMAGE* image, const void* data, size_t dataSize, const KIMG_REGION* region, double* redGain,
    double* greenGain, double* blueGain)
{
    return Call([&] {
        RequirePointer(redGain, "redGain");
        RequirePointer(greenGain, "greenGain");
        RequirePointer(blueGain, "blueGain");
        const CheckedPicture picture = CheckTabled(image, region);
        const PixelFormat& format = *picture.layout.format;
        if (format.content.kind == KIMG_KIND_MONO)
            throw Failure(KIMG_RETURN_CODE_NOT_IMPLEMENTED, std::string(format.name) + ": The picture has no colours.");
        const ColorMeans means = MeansOf(picture.layout, CheckedData(picture.layout, data, dataSize), picture.region);
        if (std::any_of(std::begin(means.of), std::end(means.of), [](double mean) { return mean == 0; }))
            throw Failure(KIMG_RETURN_CODE_NOT_AVAILABLE, "The region has no red, green or blue light.");
        *redGain = means.of[1] / means.of[0];
        *greenGain = 1;
        *blueGain = means.of[1] / means.of[2];
    });
}

KIMG_ReturnCode KIMG_Image_ApplyGains(
    const KIMG_IMAGE* image, void* data, size_t dataSize, const KIMG_REGION* region, double redGain, double greenGain,
    double blueGain)
{
    return Call([&] {
        const CheckedPicture picture = CheckTabled(image, region);
        const unsigned bits = picture.layout.format->samples.bits;
        const SampleTable red = GainTable(redGain, "redGain", bits);
        const SampleTable green = GainTable(greenGain, "greenGain", bits);
        const SampleTable blue = GainTable(blueGain, "blueGain", bits);
        CheckedData(picture.layout, data, dataSize);
        ApplyTables(picture.layout, static_cast<uint8_t*>(data), picture.region, {&red, &green, &blue});
    });
}

KIMG_ReturnCode KIMG_Image_ApplyTable(
    const KIMG_IMAGE* image, void* data, size_t dataSize, const KIMG_REGION* region, const uint16_t* table,
    size_t tableSize)
{
    return Call([&] {
        const CheckedPicture picture = CheckTabled(image, region);
        RequirePointer(table, "table");
        const size_t numEntries = size_t{1} << picture.layout.format->samples.bits;
        if (tableSize != numEntries * sizeof *table)
        {
            ThrowInvalidArgument(
                "tableSize is " + std::to_string(tableSize) + " bytes, not " +
                std::to_string(numEntries * sizeof *table) + ".");
        }
        if (*std::max_element(table, table + numEntries) >= numEntries)
            ThrowInvalidArgument("An entry of the table is beyond the bits of a sample.");
        CheckedData(picture.layout, data, dataSize);
        const SampleTable entries(table, table + numEntries);
        ApplyTables(picture.layout, static_cast<uint8_t*>(data), picture.region, {&entries, &entries, &entries});
    });
}

KIMG_ReturnCode KIMG_Table_FillGamma(double gamma, uint32_t bits, uint16_t* table, size_t* tableSize)
{
    return Call([&] {
        if (!(gamma >= 0.01 && gamma <= 100)) ThrowInvalidArgument("gamma is not a number from 0.01 to 100.");
        if (bits < 8 || bits > 16) ThrowInvalidArgument("bits is " + std::to_string(bits) + ", not 8 to 16.");
        const size_t numEntries = size_t{1} << bits;
        if (!TakesOutput(table, "table", numEntries * sizeof *table, tableSize)) return;
        FillGamma(gamma, table, numEntries);
        *tableSize = numEntries * sizeof *table;
    });
}
