// What the features make of the pictures: each expected pixel is computed by the documented formula.
#include "producers/simulator/frames/pattern.h"
#include "tests/unit/simulator/feature_map.h"

#include <cmath>
#include <functional>
#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

constexpr std::size_t sensorWidth = 48;
constexpr std::size_t sensorHeight = 32;

std::string CameraOf(const std::string& keys)
{
    return R"({"interfaces": [{"id": "I", "tlType": "U3V", "cameras": [
        {"serial": "A", "width": 48, "height": 32, "startWithStream": true, "rate": 0)" +
           keys + "}]}]}";
}

// An unpaced camera whose pictures are taken one by one.
class Camera
{
public:
    explicit Camera(const std::string& keys = "") : producer(CameraOf(keys)), tree(producer), map(producer, tree.remote)
    {}

    // Features as name and text in turn.
    Camera& With(const std::vector<std::pair<const char*, const char*>>& features)
    {
        for (const auto& [name, text] : features)
            map.Set(name, text);
        return *this;
    }

    // Frame 1 of a start.
    std::vector<std::uint8_t> Take()
    {
        const BUFFER_HANDLE buffer = tree.Announce();
        tree.Start(1);
        EXPECT_EQ(static_cast<void*>(tree.Next().BufferHandle), buffer);
        EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_WIDTH), Number("Width"));
        EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_HEIGHT), Number("Height"));
        EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_XOFFSET), Number("OffsetX"));
        EXPECT_EQ(tree.BufferInfo<std::size_t>(buffer, BUFFER_INFO_YOFFSET), Number("OffsetY"));
        const auto pixels = tree.Pixels(buffer);
        EXPECT_EQ(pixels.size(), Number("PayloadSize"));
        EXPECT_EQ(producer.DSStopAcquisition(tree.stream, ACQ_STOP_FLAGS_DEFAULT), GC_ERR_SUCCESS);
        EXPECT_EQ(producer.DSRevokeBuffer(tree.stream, buffer, nullptr, nullptr), GC_ERR_SUCCESS);
        return pixels;
    }

    std::size_t Number(const char* name) { return static_cast<std::size_t>(map.Integer(name).GetValue()); }

    Producer producer;
    Tree tree;
    FeatureMap map;
};

using PixelAt = std::function<unsigned(std::size_t x, std::size_t y)>;

void ExpectMono8(Camera& camera, const PixelAt& expected)
{
    const auto pixels = camera.Take();
    const std::size_t width = camera.Number("Width");
    const std::size_t height = camera.Number("Height");
    ASSERT_EQ(pixels.size(), width * height);
    for (std::size_t y = 0; y < height; ++y)
        for (std::size_t x = 0; x < width; ++x)
            ASSERT_EQ(pixels[y * width + x], expected(x, y)) << x << ", " << y;
}

unsigned Seen(std::size_t x, std::size_t y)
{
    return PatternValue(Component::Mono, x, y, 1);
}

TEST(SimulatorDrivenImages, RegionShowsItsPartOfTheSensor)
{
    Camera camera;
    camera.With({{"Width", "10"}, {"Height", "5"}, {"OffsetX", "6"}, {"OffsetY", "4"}});
    ExpectMono8(camera, [](std::size_t x, std::size_t y) { return Seen(x + 6, y + 4); });
}

TEST(SimulatorDrivenImages, RegionOfAPackedFormatKeepsItsColours)
{
    Camera camera(R"(, "pixelFormat": "BayerGR8")");
    camera.With({{"Width", "10"}, {"Height", "4"}, {"OffsetX", "2"}, {"OffsetY", "2"}});
    const auto pixels = camera.Take();
    EXPECT_EQ(pixels[0], PatternValue(Component::Green, 2, 2, 1));
    EXPECT_EQ(pixels[1], PatternValue(Component::Red, 3, 2, 1));
    EXPECT_EQ(pixels[10], PatternValue(Component::Blue, 2, 3, 1));
}

TEST(SimulatorDrivenImages, ReversalMirrorsBeforeTheRegionIsCutOut)
{
    Camera camera;
    camera.With({{"ReverseX", "1"}, {"Width", "8"}, {"OffsetX", "4"}});
    ExpectMono8(camera, [](std::size_t x, std::size_t y) { return Seen(sensorWidth - 1 - (x + 4), y); });
    camera.With({{"ReverseX", "0"}, {"ReverseY", "1"}});
    ExpectMono8(camera, [](std::size_t x, std::size_t y) { return Seen(x + 4, sensorHeight - 1 - y); });
}

TEST(SimulatorDrivenImages, BinningShowsTheMeanOfTheSensorsPixels)
{
    Camera camera;
    camera.With({{"BinningHorizontal", "3"}, {"BinningVertical", "2"}, {"Width", "10"}, {"OffsetX", "2"}});
    ExpectMono8(camera, [](std::size_t x, std::size_t y) {
        unsigned sum = 0;
        for (std::size_t line = 0; line < 2; ++line)
            for (std::size_t column = 0; column < 3; ++column)
                sum += Seen((x + 2) * 3 + column, y * 2 + line);
        return sum / 6;
    });
    camera.With({{"OffsetX", "0"}, {"ReverseX", "1"}});
    EXPECT_EQ(camera.Take()[0], (45U + 46 + 47 + 46 + 47 + 48) / 6 + 1) << "columns 45 to 47 of lines 0 and 1";
}

TEST(SimulatorDrivenImages, ExposureAndGainMultiply)
{
    Camera camera;
    camera.With({{"ExposureTime", "15000"}});
    ExpectMono8(
        camera, [](std::size_t x, std::size_t y) { return static_cast<unsigned>(std::floor(Seen(x, y) * 1.5 + 0.5)); });
    EXPECT_EQ(camera.Take()[2], 5) << "3 times 1.5 is 4.5";
    camera.With({{"ExposureTime", "10000"}, {"Gain", "20"}});
    ExpectMono8(camera, [](std::size_t x, std::size_t y) { return std::min(Seen(x, y) * 10, 255U); });
    camera.With({{"GainSelector", "DigitalAll"}, {"Gain", "-6"}});
    ExpectMono8(camera, [](std::size_t x, std::size_t y) {
        return static_cast<unsigned>(std::floor(std::min(Seen(x, y) * std::pow(10, 0.7), 255.0) + 0.5));
    });
}

TEST(SimulatorDrivenImages, BlackLevelIsAdded)
{
    Camera camera;
    camera.With({{"BlackLevel", "16.5"}});
    ExpectMono8(camera, [](std::size_t x, std::size_t y) { return Seen(x, y) + 17; });
}

TEST(SimulatorDrivenImages, GammaBendsTheRange)
{
    Camera camera;
    camera.With({{"Gamma", "0.5"}});
    ExpectMono8(camera, [](std::size_t x, std::size_t y) {
        return static_cast<unsigned>(std::floor(std::sqrt(Seen(x, y) * 255.0) + 0.5));
    });
}

TEST(SimulatorDrivenImages, TableReplacesTheUpperBits)
{
    Camera camera;
    std::string table = "0x";
    for (int entry = 0; entry < 256; ++entry)
    {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02x", 255 - entry);
        table += digits;
    }
    camera.With({{"LUTValueAll", table.c_str()}});
    ExpectMono8(camera, Seen);
    camera.With({{"LUTEnable", "1"}});
    ExpectMono8(camera, [](std::size_t x, std::size_t y) { return 255 - Seen(x, y); });
    camera.With({{"PixelFormat", "Mono16"}});
    const auto pixels = camera.Take();
    EXPECT_EQ(pixels[2 * 5 + 1], 255 - Seen(5, 0));
    EXPECT_EQ(pixels[2 * 5], 5) << "the low bits stay";
}

TEST(SimulatorDrivenImages, AutomaticExposureTakesTheGainBack)
{
    Camera camera;
    camera.With({{"ExposureAuto", "Continuous"}, {"Gain", "12"}});
    ExpectMono8(camera, Seen);
}

TEST(SimulatorDrivenImages, BalanceWeighsEachColour)
{
    Camera camera(R"(, "pixelFormat": "RGB8")");
    camera.With(
        {{"BalanceRatioSelector", "Red"},
         {"BalanceRatio", "2"},
         {"BalanceRatioSelector", "Blue"},
         {"BalanceRatio", "0.5"}});
    const auto pixels = camera.Take();
    for (std::size_t y = 0; y < sensorHeight; ++y)
        for (std::size_t x = 0; x < sensorWidth; ++x)
        {
            const auto* const pixel = &pixels[(y * sensorWidth + x) * 3];
            ASSERT_EQ(pixel[0], std::min(PatternValue(Component::Red, x, y, 1) * 2, 255));
            ASSERT_EQ(pixel[1], PatternValue(Component::Green, x, y, 1));
            ASSERT_EQ(pixel[2], static_cast<unsigned>(std::floor(PatternValue(Component::Blue, x, y, 1) * 0.5 + 0.5)));
        }
}

TEST(SimulatorDrivenImages, DeepFormatsGoThroughTheSameFormula)
{
    Camera camera(R"(, "pixelFormat": "Mono12")");
    camera.With({{"ExposureTime", "20000"}, {"BlackLevel", "2"}, {"Gamma", "2"}});
    const auto pixels = camera.Take();
    for (std::size_t x = 0; x < sensorWidth; ++x)
    {
        const unsigned sample = Seen(x, 0) * 16 + x % 16;
        const double lit = std::min(sample * 2.0 + 2 * 16, 4095.0);
        const auto expected = static_cast<unsigned>(std::floor(4095 * std::pow(lit / 4095, 2) + 0.5));
        const unsigned low = pixels[2 * x];
        const unsigned high = pixels[2 * x + 1];
        ASSERT_EQ(low | high << 8, expected) << x;
    }
}

TEST(SimulatorDrivenImages, FormatChangesTheBytesAndNothingElse)
{
    Camera camera;
    camera.With({{"PixelFormat", "Mono12p"}});
    const auto pixels = camera.Take();
    ASSERT_EQ(pixels.size(), sensorWidth * sensorHeight * 3 / 2);
    const unsigned first = pixels[0] | (pixels[1] & 0xFU) << 8;
    EXPECT_EQ(first, Seen(0, 0) * 16);
}

TEST(SimulatorDrivenImages, TestPatternsReplaceWhatIsSeenButNotTheGeometry)
{
    Camera camera;
    camera.With({{"Gain", "12"}, {"OffsetX", "0"}, {"Width", "40"}, {"OffsetX", "8"}});
    const std::pair<const char*, PixelAt> patterns[] = {
        {"Black", [](std::size_t, std::size_t) { return 0U; }},
        {"White", [](std::size_t, std::size_t) { return 255U; }},
        {"GreyHorizontalRamp", [](std::size_t x, std::size_t) { return static_cast<unsigned>(x + 8); }},
        {"GreyVerticalRamp", [](std::size_t, std::size_t y) { return static_cast<unsigned>(y); }},
        {"GreyHorizontalRampMoving", [](std::size_t x, std::size_t) { return static_cast<unsigned>(x + 8 + 1); }},
        {"GreyVerticalRampMoving", [](std::size_t, std::size_t y) { return static_cast<unsigned>(y + 1); }},
        {"ColorBar", [](std::size_t x, std::size_t) { return static_cast<unsigned>((7 - (x + 8) / 6) * 36); }}};
    for (const auto& [name, expected] : patterns)
    {
        SCOPED_TRACE(name);
        camera.With({{"TestPattern", name}});
        ExpectMono8(camera, expected);
    }
}

TEST(SimulatorDrivenImages, ColourBarsHaveTheirColours)
{
    Camera camera(R"(, "pixelFormat": "BGR8")");
    camera.With({{"TestPattern", "ColorBar"}});
    const auto pixels = camera.Take();
    const std::uint8_t colours[8][3] = {{255, 255, 255}, {255, 255, 0}, {0, 255, 255}, {0, 255, 0},
                                        {255, 0, 255},   {255, 0, 0},   {0, 0, 255},   {0, 0, 0}}; // red, green, blue
    for (std::size_t bar = 0; bar < 8; ++bar)
        for (std::size_t index = 0; index < 3; ++index)
            EXPECT_EQ(pixels[bar * 6 * 3 + index], colours[bar][2 - index]) << bar << " " << index;
}

TEST(SimulatorDrivenImages, PlayersAreDrivenToo)
{
    Camera camera(R"(, "source": "sequence")");
    const auto seen = [](std::size_t x, std::size_t y) {
        return unsigned{SequenceValue(Component::Mono, x, y, 1, sensorWidth, sensorHeight)};
    };
    camera.With({{"Width", "20"}, {"OffsetX", "2"}, {"ExposureTime", "20000"}});
    ExpectMono8(camera, [&](std::size_t x, std::size_t y) { return std::min(seen(x + 2, y) * 2, 255U); });
    camera.With({{"ExposureTime", "10000"}});
    ExpectMono8(camera, [&](std::size_t x, std::size_t y) { return seen(x + 2, y); });
}

TEST(SimulatorDrivenImages, ChangesWhileImagesComeShowFromThenOnAndBuffersTellTheirOwnForm)
{
    Camera camera;
    camera.With({{"Width", "16"}});
    const BUFFER_HANDLE first = camera.tree.Announce();
    const BUFFER_HANDLE second = camera.tree.Announce(false);
    camera.tree.Start();
    camera.tree.Next();
    camera.With({{"OffsetX", "8"}, {"BlackLevel", "10"}});
    ASSERT_EQ(camera.producer.DSQueueBuffer(camera.tree.stream, second), GC_ERR_SUCCESS);
    camera.tree.Next();
    EXPECT_EQ(camera.tree.Pixels(first)[0], Seen(0, 0));
    EXPECT_EQ(camera.tree.BufferInfo<std::size_t>(first, BUFFER_INFO_XOFFSET), 0U);
    EXPECT_EQ(camera.tree.Pixels(second)[0], PatternValue(Component::Mono, 8, 0, 2) + 10);
    EXPECT_EQ(camera.tree.BufferInfo<std::size_t>(second, BUFFER_INFO_XOFFSET), 8U);
}

} // namespace
} // namespace koro::simulator::test
