// What another library makes of the same bytes. Without OpenCV at build time these tests are skipped.
#include "tests/unit/image/sample_picture.h"

#ifdef KORO_HAS_OPENCV

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace
{

constexpr int width = 46;
constexpr int height = 32;

// The bytes of a picture without padding as a matrix of `type`.
template <class T>
cv::Mat MatrixOf(std::vector<T>& samples, int type, int columns = width, int lines = height)
{
    return {lines, columns, type, samples.data()};
}

cv::Mat Recoloured(const cv::Mat& input, int code)
{
    cv::Mat output;
    cv::cvtColor(input, output, code);
    return output;
}

template <class T>
void ExpectNear(const std::vector<T>& ours, const cv::Mat& theirs, int tolerance, const std::string& what)
{
    ASSERT_EQ(ours.size(), theirs.total() * static_cast<size_t>(theirs.channels()));
    ASSERT_TRUE(theirs.isContinuous());
    const T* const samples = theirs.ptr<T>();
    for (size_t i = 0; i < ours.size(); ++i)
        ASSERT_LE(std::abs(int{ours[i]} - int{samples[i]}), tolerance) << what << ", sample " << i;
}

// OpenCV names the second and third pixel of the second line.
struct BayerCode
{
    const char* format;
    int bilinear;
    int edges;
};
constexpr BayerCode bayerCodes[] = {
    {"BayerRG", cv::COLOR_BayerBG2RGB, cv::COLOR_BayerBG2RGB_EA},
    {"BayerGB", cv::COLOR_BayerGR2RGB, cv::COLOR_BayerGR2RGB_EA},
    {"BayerGR", cv::COLOR_BayerGB2RGB, cv::COLOR_BayerGB2RGB_EA},
    {"BayerBG", cv::COLOR_BayerRG2RGB, cv::COLOR_BayerRG2RGB_EA},
};

// OpenCV repeats the pixels beside the edge, this library mirrors: all but the outermost pixels are equal.
template <class T>
void ExpectInnerPixelsEqual(const std::vector<T>& ours, const cv::Mat& theirs, const std::string& what)
{
    for (int y = 1; y < height - 1; ++y)
    {
        for (int i = 3; i < 3 * (width - 1); ++i)
            ASSERT_EQ(ours[static_cast<size_t>(3 * width * y + i)], theirs.ptr<T>(y)[i])
                << what << ' ' << y << ' ' << i;
    }
}

TEST(BesideOpenCV, BilinearDemosaicingIsEqual)
{
    for (const BayerCode& code : bayerCodes)
    {
        const KIMG_IMAGE narrow = Image((std::string(code.format) + "8").c_str(), width, height);
        Bytes bytes = RandomBytes(narrow);
        ExpectInnerPixelsEqual(
            Converted<uint8_t>(narrow, bytes, "RGB8"), Recoloured(MatrixOf(bytes, CV_8UC1), code.bilinear),
            code.format);
        const KIMG_IMAGE wide = Image((std::string(code.format) + "16").c_str(), width, height);
        bytes = RandomBytes(wide);
        ExpectInnerPixelsEqual(
            Converted<uint16_t>(wide, bytes, "RGB16"), Recoloured(MatrixOf(bytes, CV_16UC1), code.bilinear),
            code.format);
    }
}

// A scene with soft slopes and hard edges in several directions.
cv::Vec3b Scene(int x, int y)
{
    const bool bar = (x + 2 * y) % 23 < 7;
    const bool disc = (x - 20) * (x - 20) + (y - 14) * (y - 14) < 90;
    const int light = 40 + 2 * x + y + (bar ? 60 : 0);
    return {
        cv::saturate_cast<uchar>(light + (disc ? 30 : 0)), cv::saturate_cast<uchar>(light),
        cv::saturate_cast<uchar>(light - (disc ? 25 : 0))};
}

double MeanError(const uint8_t* pixels)
{
    double sum = 0;
    for (int i = 0; i < 3 * width * height; ++i)
        sum += std::abs(pixels[i] - Scene(i / 3 % width, i / 3 / width)[i % 3]);
    return sum / (3 * width * height);
}

// The methods differ, so the original decides: ours comes at least as close to it.
TEST(BesideOpenCV, EdgeAwareDemosaicingComesCloserToTheOriginal)
{
    const KIMG_IMAGE image = Image("BayerRG8", width, height);
    Bytes bytes;
    for (int i = 0; i < width * height; ++i)
        bytes.push_back(Scene(i % width, i / width)[i / width % 2 + i % width % 2]);
    const auto ours = Converted<uint8_t>(image, bytes, "RGB8", nullptr, 0, KIMG_DEMOSAIC_EDGE_AWARE);
    const auto bilinear = Converted<uint8_t>(image, bytes, "RGB8");
    const cv::Mat theirs = Recoloured(MatrixOf(bytes, CV_8UC1), cv::COLOR_BayerBG2RGB_EA);
    EXPECT_LT(MeanError(ours.data()), MeanError(theirs.ptr()));
    EXPECT_LT(MeanError(ours.data()), MeanError(bilinear.data()));
}

TEST(BesideOpenCV, OrdersOfColoursAreEqual)
{
    const KIMG_IMAGE image = Image("BGRa8", width, height);
    Bytes bytes = RandomBytes(image);
    const cv::Mat input = MatrixOf(bytes, CV_8UC4);
    ExpectNear(Converted<uint8_t>(image, bytes, "RGB8"), Recoloured(input, cv::COLOR_BGRA2RGB), 0, "RGB8");
    ExpectNear(Converted<uint8_t>(image, bytes, "BGR8"), Recoloured(input, cv::COLOR_BGRA2BGR), 0, "BGR8");
    ExpectNear(Converted<uint8_t>(image, bytes, "RGBa8"), Recoloured(input, cv::COLOR_BGRA2RGBA), 0, "RGBa8");
    const KIMG_IMAGE grey = Image("Mono16", width, height);
    bytes = RandomBytes(grey);
    ExpectNear(
        Converted<uint16_t>(grey, bytes, "RGBa16"), Recoloured(MatrixOf(bytes, CV_16UC1), cv::COLOR_GRAY2RGBA), 0,
        "RGBa16");
}

TEST(BesideOpenCV, PlanesAreMergedEqually)
{
    const KIMG_IMAGE image = Image("RGB8_Planar", width, height);
    Bytes bytes = RandomBytes(image);
    const cv::Mat all = MatrixOf(bytes, CV_8UC1, width, 3 * height);
    cv::Mat merged;
    cv::merge(
        std::vector<cv::Mat>{
            all.rowRange(0, height), all.rowRange(height, 2 * height), all.rowRange(2 * height, 3 * height)},
        merged);
    ExpectNear(Converted<uint8_t>(image, bytes, "RGB8"), merged, 0, "RGB8_Planar");
}

TEST(BesideOpenCV, BrightnessDiffersByRoundingOnly)
{
    const KIMG_IMAGE narrow = Image("RGB8", width, height);
    Bytes bytes = RandomBytes(narrow);
    ExpectNear(
        Converted<uint8_t>(narrow, bytes, "Mono8"), Recoloured(MatrixOf(bytes, CV_8UC3), cv::COLOR_RGB2GRAY), 1,
        "Mono8");
    const KIMG_IMAGE wide = Image("BGR16", width, height);
    bytes = RandomBytes(wide);
    // Their weights have 14 bits.
    ExpectNear(
        Converted<uint16_t>(wide, bytes, "Mono16"), Recoloured(MatrixOf(bytes, CV_16UC3), cv::COLOR_BGR2GRAY), 3,
        "Mono16");
}

// OpenCV has the limited range of BT.601 for YUV 4:2:2 and the full range for YCrCb. It takes brightness below black as
// black, where this library follows the matrix, so the pictures have none.
TEST(BesideOpenCV, ColoursOfYCbCrDifferByRoundingOnly)
{
    struct Code
    {
        const char* format;
        size_t firstBrightness;
        int code;
    };
    for (const Code& code :
         {Code{"YCbCr601_422_8", 0, cv::COLOR_YUV2RGB_YUY2}, {"YCbCr601_422_8_CbYCrY", 1, cv::COLOR_YUV2RGB_UYVY}})
    {
        const KIMG_IMAGE image = Image(code.format, width, height);
        Bytes bytes = RandomBytes(image);
        for (size_t i = code.firstBrightness; i < bytes.size(); i += 2)
            bytes[i] = std::max<uint8_t>(bytes[i], 16);
        ExpectNear(
            Converted<uint8_t>(image, bytes, "RGB8"), Recoloured(MatrixOf(bytes, CV_8UC2), code.code), 1, code.format);
    }
    const KIMG_IMAGE image = Image("YCbCr8", width, height);
    Bytes bytes = RandomBytes(image);
    const auto ours = Converted<uint8_t>(image, bytes, "RGB8");
    for (size_t i = 0; i < bytes.size(); i += 3)
        std::swap(bytes[i + 1], bytes[i + 2]);
    ExpectNear(ours, Recoloured(MatrixOf(bytes, CV_8UC3), cv::COLOR_YCrCb2RGB), 1, "YCbCr8");
}

// Their way to 4:2:0 in the full range: enlarge the colour differences, then convert 4:4:4.
TEST(BesideOpenCV, ColoursOfSemiplanarYCbCrDifferByRoundingOnly)
{
    const KIMG_IMAGE image = Image("YCbCr420_8_YY_CrCb_Semiplanar", width, height);
    Bytes bytes = RandomBytes(image);
    const cv::Mat brightness(height, width, CV_8UC1, bytes.data());
    const cv::Mat differences(height / 2, width / 2, CV_8UC2, bytes.data() + width * height);
    cv::Mat enlarged, whole;
    cv::resize(differences, enlarged, {width, height}, 0, 0, cv::INTER_NEAREST);
    cv::merge(std::vector<cv::Mat>{brightness, enlarged}, whole);
    ExpectNear(Converted<uint8_t>(image, bytes, "RGB8"), Recoloured(whole, cv::COLOR_YCrCb2RGB), 1, "Semiplanar");
}

// OpenCV leaves the low bits of the widened colours zero; the bits that were sent lie in the same places.
TEST(BesideOpenCV, FieldsOf565HaveTheSameBits)
{
    const KIMG_IMAGE image = Image("BGR565p", width, height);
    Bytes bytes = RandomBytes(image);
    auto ours = Converted<uint8_t>(image, bytes, "RGB8");
    for (size_t i = 0; i < ours.size(); ++i)
        ours[i] = static_cast<uint8_t>(ours[i] & (i % 3 == 1 ? 0xFC : 0xF8));
    ExpectNear(ours, Recoloured(MatrixOf(bytes, CV_8UC2), cv::COLOR_BGR5652RGB), 0, "BGR565p");
}

TEST(BesideOpenCV, PreviewsDifferByRoundingOnly)
{
    const KIMG_IMAGE image = Image("RGB8", 48, 30);
    Bytes bytes = RandomBytes(image);
    cv::Mat theirs;
    cv::resize(MatrixOf(bytes, CV_8UC3, 48, 30), theirs, {16, 10}, 0, 0, cv::INTER_AREA);
    const auto ours = Fetched<uint8_t>([&](uint8_t* output, size_t* size) {
        return KIMG_Image_Downscale(
            &image, bytes.data(), bytes.size(), nullptr, Number("RGB8"), 16, 10, 0, output, size);
    });
    ExpectNear(ours, theirs, 1, "16 x 10");
}

TEST(BesideOpenCV, CountsAndStatisticsAreEqual)
{
    const KIMG_IMAGE image = Image("Mono8", width, height);
    Bytes bytes = RandomBytes(image);
    const KIMG_REGION part{5, 3, 31, 17};
    const cv::Mat theirs = MatrixOf(bytes, CV_8UC1)(cv::Rect(5, 3, 31, 17));
    const auto counts = Fetched<uint64_t>([&](uint64_t* output, size_t* size) {
        return KIMG_Image_GetHistogram(&image, bytes.data(), bytes.size(), &part, 0, output, size);
    });
    const int channel = 0, numBins = 256;
    const float range[] = {0, 256};
    const float* ranges[] = {range};
    cv::Mat histogram;
    cv::calcHist(&theirs, 1, &channel, cv::Mat(), histogram, 1, &numBins, ranges);
    for (int value = 0; value < 256; ++value)
        ASSERT_EQ(static_cast<float>(counts[static_cast<size_t>(value)]), histogram.at<float>(value)) << value;

    KIMG_STATISTICS statistics{};
    ASSERT_EQ(
        KIMG_Image_GetStatistics(&image, bytes.data(), bytes.size(), &part, 0, &statistics), KIMG_RETURN_CODE_SUCCESS);
    double minimum = 0, maximum = 0;
    cv::minMaxLoc(theirs, &minimum, &maximum);
    EXPECT_EQ(statistics.minimum, minimum);
    EXPECT_EQ(statistics.maximum, maximum);
    EXPECT_NEAR(statistics.mean, cv::mean(theirs)[0], 1e-9);
}

TEST(BesideOpenCV, TablesAndGainsChangeSamplesEqually)
{
    const KIMG_IMAGE image = Image("BGR8", width, height);
    const Bytes bytes = RandomBytes(image);
    const auto table =
        Fetched<uint16_t>([](uint16_t* output, size_t* size) { return KIMG_Table_FillGamma(2.2, 8, output, size); });
    Bytes ours = bytes, copy = bytes;
    ASSERT_EQ(
        KIMG_Image_ApplyTable(&image, ours.data(), ours.size(), nullptr, table.data(), 2 * table.size()),
        KIMG_RETURN_CODE_SUCCESS);
    const Bytes narrow(table.begin(), table.end());
    cv::Mat theirs;
    cv::LUT(MatrixOf(copy, CV_8UC3), narrow, theirs);
    ExpectNear(ours, theirs, 0, "gamma 2.2");

    ours = bytes;
    ASSERT_EQ(KIMG_Image_ApplyGains(&image, ours.data(), ours.size(), nullptr, 1.7, 1, 0.6), KIMG_RETURN_CODE_SUCCESS);
    cv::multiply(MatrixOf(copy, CV_8UC3), cv::Scalar(0.6, 1, 1.7), theirs);
    ExpectNear(ours, theirs, 1, "gains");
}

} // namespace

#else

TEST(BesideOpenCV, IsInstalled)
{
    GTEST_SKIP() << "OpenCV was not found at build time";
}

#endif
