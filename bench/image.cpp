// What the image library takes for pictures of 2448 x 2048 pixels on one thread, for each version of its inner loops,
// beside memcpy of the bytes written and, where it was found at build time, beside OpenCV on one thread.
//
//   bench_image [--quick] [part of the names of the rows to run]
#include "bench/measure.h"
#include "image/kernels.h"
#include <koro/image.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#ifdef KORO_HAS_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#endif

namespace
{

using koro::bench::Median;
using koro::bench::ProcessorNanosecondsPerCall;
using koro::image::Kernels;
using Bytes = std::vector<uint8_t>;
using Step = std::function<void()>;

constexpr size_t width = 2448;
size_t height = 2048;

void Require(KIMG_ReturnCode code)
{
    if (code == KIMG_RETURN_CODE_SUCCESS) return;
    char text[512] = {};
    size_t size = sizeof text;
    KIMG_Library_GetLastError(&code, text, &size);
    throw std::runtime_error(text);
}

uint32_t Number(const char* name)
{
    uint32_t number = 0;
    Require(KIMG_PixelFormat_FindByName(name, &number));
    return number;
}

// A bright disc on a slope with some noise: neither constant nor random.
uint8_t Scene(size_t x, size_t y, unsigned noise)
{
    const double dx = static_cast<double>(x) - width / 2.0,
                 dy = static_cast<double>(y) - static_cast<double>(height) / 2;
    const double disc = dx * dx + dy * dy < 500000 ? 90 : 0;
    return static_cast<uint8_t>(30 + disc + 100.0 * static_cast<double>(x) / width + noise % 16);
}

struct Frame
{
    KIMG_IMAGE image;
    Bytes bytes;

    explicit Frame(const char* format) : image{Number(format), 0, {}, width, height, 0, 0}
    {
        uint64_t size = 0;
        Require(KIMG_Image_GetSize(&image, &size));
        std::mt19937 random(1);
        bytes.resize(size);
        const size_t lineBytes = size / height;
        for (size_t i = 0; i < size; ++i)
            bytes[i] = Scene(i % lineBytes * width / lineBytes, i / lineBytes, static_cast<unsigned>(random()));
    }
};

struct Row
{
    std::string name;
    Step step;
    std::string reference; // empty: there is none
    Step referenceStep;
};

// All columns take turns, in processor time of the thread. Milliseconds; below each the share of the reference's time.
void Print(size_t rounds, std::span<const Kernels* const> targets, const Row& row)
{
    std::vector<std::vector<double>> times(targets.size() + 1);
    for (size_t round = 0; round < rounds; ++round)
    {
        for (size_t column = 0; column < targets.size(); ++column)
        {
            koro::image::ChooseKernels(targets[column]);
            times[column].push_back(1e-6 * ProcessorNanosecondsPerCall(1, row.step));
        }
        if (row.referenceStep) times.back().push_back(1e-6 * ProcessorNanosecondsPerCall(1, row.referenceStep));
    }
    const double reference = row.referenceStep ? Median(times.back()) : 0;
    std::printf("%-34s", row.name.c_str());
    for (size_t column = 0; column < targets.size(); ++column)
    {
        const double time = Median(times[column]);
        std::printf(" %7.2f", time);
        if (row.referenceStep)
            std::printf(" (%4.2f)", time / reference);
        else
            std::printf("       ");
    }
    if (row.referenceStep) std::printf(" %8.2f %s", reference, row.reference.c_str());
    std::printf("\n");
    std::fflush(stdout);
}

// Copies into the same memory as the step, so that both find it in the same caches and pages.
Row BesideCopying(const std::string& name, const Step& step, void* output, size_t written)
{
    auto from = std::make_shared<Bytes>(written, uint8_t{1});
    return {name, step, "memcpy", [=] { std::memcpy(output, from->data(), written); }};
}

Row Unpacking(const char* format)
{
    auto frame = std::make_shared<Frame>(format);
    auto output = std::make_shared<std::vector<uint16_t>>(width * height);
    const Step step = [=] {
        size_t size = 2 * output->size();
        Require(KIMG_Image_Unpack16(
            &frame->image, frame->bytes.data(), frame->bytes.size(), nullptr, 0, output->data(), &size));
    };
    return BesideCopying(std::string(format) + " to 16 bits", step, output->data(), 2 * width * height);
}

Row Converting(const char* format, const char* target, size_t pixelBytes, int32_t method, const char* remark)
{
    auto frame = std::make_shared<Frame>(format);
    auto output = std::make_shared<Bytes>(pixelBytes * width * height);
    const uint32_t number = Number(target);
    const Step step = [=] {
        size_t size = output->size();
        Require(KIMG_Image_Convert(
            &frame->image, frame->bytes.data(), frame->bytes.size(), nullptr, method, number, 0, output->data(),
            &size));
    };
    return BesideCopying(std::string(format) + " to " + target + remark, step, output->data(), output->size());
}

Row Counting(const char* format)
{
    auto frame = std::make_shared<Frame>(format);
    auto histogram = std::make_shared<std::vector<uint64_t>>(size_t{1} << 12);
    const Step step = [=] {
        size_t size = 8 * histogram->size();
        Require(KIMG_Image_GetHistogram(
            &frame->image, frame->bytes.data(), frame->bytes.size(), nullptr, 0, histogram->data(), &size));
    };
    return {std::string(format) + " histogram", step, "", {}};
}

Row Shrinking(const char* format)
{
    auto frame = std::make_shared<Frame>(format);
    const uint64_t outputHeight = height / 4;
    auto output = std::make_shared<Bytes>(3 * 612 * outputHeight);
    const uint32_t number = Number("RGB8");
    const Step step = [=] {
        size_t size = output->size();
        Require(KIMG_Image_Downscale(
            &frame->image, frame->bytes.data(), frame->bytes.size(), nullptr, number, 612, outputHeight, 0,
            output->data(), &size));
    };
    return {std::string(format) + " to 612 x 512 RGB8", step, "", {}};
}

#ifdef KORO_HAS_OPENCV
Row BesideOpenCVHistogram(Row row)
{
    auto frame = std::make_shared<Frame>("Mono8");
    row.reference = "OpenCV";
    row.referenceStep = [=] {
        const cv::Mat input(static_cast<int>(height), static_cast<int>(width), CV_8UC1, frame->bytes.data());
        const int channel = 0, numBins = 256;
        const float range[] = {0, 256};
        const float* const ranges[] = {range};
        cv::Mat histogram;
        cv::calcHist(&input, 1, &channel, cv::Mat(), histogram, 1, &numBins, const_cast<const float**>(ranges));
    };
    return row;
}

Row BesideOpenCV(Row row, const char* format, int code, const char* name)
{
    auto frame = std::make_shared<Frame>(format);
    auto output = std::make_shared<cv::Mat>();
    const int channels = static_cast<int>(frame->bytes.size() / (width * height));
    row.reference = name;
    row.referenceStep = [=] {
        const cv::Mat input(static_cast<int>(height), static_cast<int>(width), CV_8UC(channels), frame->bytes.data());
        cv::cvtColor(input, *output, code);
    };
    return row;
}
#endif

std::vector<Row> Rows()
{
    constexpr int32_t bilinear = KIMG_DEMOSAIC_BILINEAR;
    constexpr int32_t edges = KIMG_DEMOSAIC_EDGE_AWARE;
    std::vector<Row> rows;
    for (const char* format : {"Mono12p", "Mono12Packed", "Mono10p", "Mono10Packed", "Mono14p", "Mono16"})
        rows.push_back(Unpacking(format));
    rows.push_back(Converting("Mono12p", "Mono8", 1, bilinear, ""));
    rows.push_back(Converting("BayerRG8", "RGB8", 3, bilinear, ""));
    rows.push_back(Converting("BayerRG8", "RGB8", 3, edges, ", edges"));
    rows.push_back(Converting("BayerRG12p", "RGB8", 3, bilinear, ""));
    rows.push_back(Converting("BayerRG12p", "RGB16", 6, edges, ", edges"));
    rows.push_back(Converting("RGB8", "BGR8", 3, bilinear, ""));
    rows.push_back(Converting("RGB8", "Mono8", 1, bilinear, ""));
    rows.push_back(Converting("YUV422_8_UYVY", "RGB8", 3, bilinear, ""));
    rows.push_back(Counting("Mono12p"));
    rows.push_back(Shrinking("BayerRG8"));
#ifdef KORO_HAS_OPENCV
    rows.push_back(BesideOpenCVHistogram(Counting("Mono8")));
    // OpenCV names the colours of the second line's second and third pixels.
    cv::setNumThreads(1);
    const auto add = [&](const Row& row, const char* format, int code, const char* name) {
        rows.push_back(BesideOpenCV(row, format, code, name));
    };
    add(Converting("BayerRG8", "RGB8", 3, bilinear, ""), "BayerRG8", cv::COLOR_BayerBG2RGB, "OpenCV");
    add(Converting("BayerRG8", "RGB8", 3, edges, ", edges"), "BayerRG8", cv::COLOR_BayerBG2RGB_EA, "OpenCV _EA");
    add(Converting("RGB8", "BGR8", 3, bilinear, ""), "RGB8", cv::COLOR_RGB2BGR, "OpenCV");
    add(Converting("RGB8", "Mono8", 1, bilinear, ""), "RGB8", cv::COLOR_RGB2GRAY, "OpenCV");
    add(Converting("YUV422_8_UYVY", "RGB8", 3, bilinear, ""), "YUV422_8_UYVY", cv::COLOR_YUV2RGB_UYVY, "OpenCV");
#else
    std::printf("OpenCV was not found at build time; the rows beside it are left out.\n");
#endif
    return rows;
}

} // namespace

int main(int argc, char** argv)
{
    const bool quick = argc > 1 && std::string(argv[1]) == "--quick";
    const std::string wanted = !quick && argc > 1 ? argv[1] : "";
    if (quick) height = 64; // the figures mean nothing then
    try
    {
        const auto targets = koro::image::SupportedKernels();
        const auto rows = Rows();
        std::printf("%-34s", "ms (share of reference)");
        for (const Kernels* target : targets)
            std::printf(" %7s       ", target->name);
        std::printf(" reference\n");
        for (const Row& row : rows)
        {
            if (row.name.find(wanted) != std::string::npos) Print(quick ? 1 : 15, targets, row);
        }
    }
    catch (const std::exception& exception)
    {
        std::fprintf(stderr, "bench_image: %s\n", exception.what());
        return 1;
    }
    return 0;
}
