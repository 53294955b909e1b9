// Delivered pixels equal the documented formulas, in every pixel format; folders are played.
#include "producers/simulator/frames/pattern.h"
#include "tests/unit/simulator/producer.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <png.h>

namespace koro::simulator::test
{
namespace
{

constexpr std::size_t width = 40;
constexpr std::size_t height = 6;

// How a format is read, written down here a second time on purpose: nothing of the simulator's packing is used.
struct Format
{
    const char* name;
    std::uint32_t code;
    unsigned depth;
    const char* tile; // M mono; the four Bayer colours of even and odd line; RGB, BGR
    enum
    {
        Plain,
        Packed,
        Bits
    } packing;
};

const Format formats[] = {
    {"Mono8", 0x01080001, 8, "M", Format::Plain},
    {"Mono10", 0x01100003, 10, "M", Format::Plain},
    {"Mono10Packed", 0x010C0004, 10, "M", Format::Packed},
    {"Mono10p", 0x010A0046, 10, "M", Format::Bits},
    {"Mono12", 0x01100005, 12, "M", Format::Plain},
    {"Mono12Packed", 0x010C0006, 12, "M", Format::Packed},
    {"Mono12p", 0x010C0047, 12, "M", Format::Bits},
    {"Mono16", 0x01100007, 16, "M", Format::Plain},
    {"BayerRG8", 0x01080009, 8, "RGGB", Format::Plain},
    {"BayerGR8", 0x01080008, 8, "GRBG", Format::Plain},
    {"BayerGB8", 0x0108000A, 8, "GBRG", Format::Plain},
    {"BayerBG8", 0x0108000B, 8, "BGGR", Format::Plain},
    {"BayerRG10", 0x0110000D, 10, "RGGB", Format::Plain},
    {"BayerGR10", 0x0110000C, 10, "GRBG", Format::Plain},
    {"BayerGB10", 0x0110000E, 10, "GBRG", Format::Plain},
    {"BayerBG10", 0x0110000F, 10, "BGGR", Format::Plain},
    {"BayerRG10Packed", 0x010C0027, 10, "RGGB", Format::Packed},
    {"BayerGR10Packed", 0x010C0026, 10, "GRBG", Format::Packed},
    {"BayerGB10Packed", 0x010C0028, 10, "GBRG", Format::Packed},
    {"BayerBG10Packed", 0x010C0029, 10, "BGGR", Format::Packed},
    {"BayerRG10p", 0x010A0058, 10, "RGGB", Format::Bits},
    {"BayerGR10p", 0x010A0056, 10, "GRBG", Format::Bits},
    {"BayerGB10p", 0x010A0054, 10, "GBRG", Format::Bits},
    {"BayerBG10p", 0x010A0052, 10, "BGGR", Format::Bits},
    {"BayerRG12", 0x01100011, 12, "RGGB", Format::Plain},
    {"BayerGR12", 0x01100010, 12, "GRBG", Format::Plain},
    {"BayerGB12", 0x01100012, 12, "GBRG", Format::Plain},
    {"BayerBG12", 0x01100013, 12, "BGGR", Format::Plain},
    {"BayerRG12Packed", 0x010C002B, 12, "RGGB", Format::Packed},
    {"BayerGR12Packed", 0x010C002A, 12, "GRBG", Format::Packed},
    {"BayerGB12Packed", 0x010C002C, 12, "GBRG", Format::Packed},
    {"BayerBG12Packed", 0x010C002D, 12, "BGGR", Format::Packed},
    {"BayerRG12p", 0x010C0059, 12, "RGGB", Format::Bits},
    {"BayerGR12p", 0x010C0057, 12, "GRBG", Format::Bits},
    {"BayerGB12p", 0x010C0055, 12, "GBRG", Format::Bits},
    {"BayerBG12p", 0x010C0053, 12, "BGGR", Format::Bits},
    {"BayerRG16", 0x0110002F, 16, "RGGB", Format::Plain},
    {"BayerGR16", 0x0110002E, 16, "GRBG", Format::Plain},
    {"BayerGB16", 0x01100030, 16, "GBRG", Format::Plain},
    {"BayerBG16", 0x01100031, 16, "BGGR", Format::Plain},
    {"RGB8", 0x02180014, 8, "RGB", Format::Plain},
    {"BGR8", 0x02180015, 8, "BGR", Format::Plain},
};

void PrintTo(const Format& format, std::ostream* out)
{
    *out << format.name;
}

unsigned SamplesPerPixel(const Format& format)
{
    return std::string(format.tile).size() == 3 ? 3 : 1;
}

// Sample `index` of a payload.
unsigned ReadSample(const Format& format, const std::vector<std::uint8_t>& bytes, std::size_t index)
{
    const auto bit = [&](std::size_t position) {
        return static_cast<unsigned>(bytes.at(position / 8)) >> position % 8 & 1U;
    };
    switch (format.packing)
    {
    case Format::Packed: {
        const std::size_t pair = index / 2 * 3;
        const unsigned extra = format.depth - 8;
        const unsigned middle = bytes.at(pair + 1);
        const unsigned low = middle >> (index % 2 * 4) & ((1U << extra) - 1);
        const unsigned high = bytes.at(pair + index % 2 * 2);
        return high << extra | low;
    }
    case Format::Bits: {
        unsigned value = 0;
        for (unsigned at = 0; at < format.depth; ++at)
            value |= bit(index * format.depth + at) << at;
        return value;
    }
    case Format::Plain:
        break;
    }
    if (format.depth == 8) return bytes.at(index);
    const unsigned low = bytes.at(index * 2);
    const unsigned high = bytes.at(index * 2 + 1);
    return high << 8 | low;
}

Component ComponentAt(const Format& format, std::size_t x, std::size_t y, std::size_t sample)
{
    const std::string tile = format.tile;
    const char colour = tile.size() == 1 ? 'M' : tile.size() == 3 ? tile[sample] : tile[y % 2 * 2 + x % 2];
    switch (colour)
    {
    case 'R':
        return Component::Red;
    case 'G':
        return Component::Green;
    case 'B':
        return Component::Blue;
    default:
        return Component::Mono;
    }
}

std::string CameraOf(const std::string& keys)
{
    return R"({"interfaces": [{"id": "I", "cameras": [{"serial": "A", "startWithStream": true, "rate": 0, )" + keys +
           "}]}]}";
}

std::string ShapeKeys(const std::string& format)
{
    return R"("width": 40, "height": 6, "pixelFormat": ")" + format + "\"";
}

class SimulatorPixelFormat : public testing::TestWithParam<Format>
{};

TEST_P(SimulatorPixelFormat, DeliversThePatternFormula)
{
    const Format& format = GetParam();
    const Producer producer(CameraOf(ShapeKeys(format.name)));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    for (std::uint64_t frame = 1; frame <= 3; ++frame)
    {
        ASSERT_EQ(tree.Next().BufferHandle, buffer);
        EXPECT_EQ(tree.BufferInfo<std::uint64_t>(buffer, BUFFER_INFO_PIXELFORMAT), format.code);
        const auto pixels = tree.Pixels(buffer);
        EXPECT_EQ(pixels.size(), width * height * (format.code >> 16 & 0xFF) / 8);
        std::size_t index = 0;
        for (std::size_t y = 0; y < height; ++y)
            for (std::size_t x = 0; x < width; ++x)
                for (std::size_t sample = 0; sample < SamplesPerPixel(format); ++sample)
                    ASSERT_EQ(
                        ReadSample(format, pixels, index++),
                        Deepen(PatternValue(ComponentAt(format, x, y, sample), x, y, frame), format.depth, x))
                        << "frame " << frame << ", x " << x << ", y " << y;
        ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, SimulatorPixelFormat, testing::ValuesIn(formats),
    [](const testing::TestParamInfo<Format>& tested) { return std::string(tested.param.name); });

TEST(SimulatorPattern, HasTheDocumentedValues)
{
    EXPECT_EQ(PatternValue(Component::Mono, 3, 4, 5), 12);
    EXPECT_EQ(PatternValue(Component::Mono, 200, 100, 1), 45);
    EXPECT_EQ(PatternValue(Component::Red, 3, 4, 5), 8);
    EXPECT_EQ(PatternValue(Component::Green, 3, 4, 5), 9);
    EXPECT_EQ(PatternValue(Component::Blue, 3, 4, 5), 243);
    EXPECT_EQ(Deepen(0xAB, 12, 0x1C), 0xABC);
    EXPECT_EQ(Deepen(0xAB, 8, 0x1C), 0xAB);
    EXPECT_EQ(Deepen(0xAB, 10, 7), 0x2AF);
}

TEST(SimulatorPattern, PlayerWithoutAFolderShowsTheSequence)
{
    const Producer producer(CameraOf(ShapeKeys("Mono8") + R"(, "source": "folder")"));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    for (std::uint64_t frame = 1; frame <= 12; ++frame)
    {
        ASSERT_EQ(tree.Next().BufferHandle, buffer);
        const auto pixels = tree.Pixels(buffer);
        for (std::size_t y = 0; y < height; ++y)
            for (std::size_t x = 0; x < width; ++x)
                ASSERT_EQ(pixels[y * width + x], SequenceValue(Component::Mono, x, y, frame, width, height));
        ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
    }
}

// A folder of its own below the working directory, gone with the test.
class Folder
{
public:
    Folder()
    {
        std::filesystem::remove_all(path);
        std::filesystem::create_directory(path);
    }
    ~Folder() { std::filesystem::remove_all(path); }

    void Write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(path / name, std::ios::binary) << bytes;
    }

    void WritePng(
        const std::string& name, png_uint_32 columns, png_uint_32 lines, const std::vector<png_byte>& rgb) const
    {
        png_image image{};
        image.version = PNG_IMAGE_VERSION;
        image.width = columns;
        image.height = lines;
        image.format = PNG_FORMAT_RGB;
        ASSERT_NE(png_image_write_to_file(&image, (path / name).c_str(), 0, rgb.data(), 0, nullptr), 0);
    }

    const std::filesystem::path path = std::filesystem::absolute("pictures");
};

std::string PlayerOf(const Folder& folder, const std::string& format)
{
    return CameraOf(
        R"("width": 4, "height": 2, "pixelFormat": ")" + format + R"(", "folder": ")" + folder.path.string() + "\"");
}

TEST(SimulatorFolder, PlaysItsPicturesByNameAgainAndAgain)
{
    const Folder folder;
    folder.Write("b.pgm", "P5\n# a comment\n4 2\n255\n" + std::string("\x09\x08\x07\x06\x05\x04\x03\x02", 8));
    folder.WritePng("a.png", 1, 1, {10, 20, 30});
    const Producer producer(PlayerOf(folder, "RGB8"));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    for (int round = 0; round < 2; ++round)
    {
        tree.Next();
        const auto colour = tree.Pixels(buffer);
        EXPECT_EQ(
            (std::vector<std::uint8_t>(colour.begin(), colour.begin() + 4)),
            (std::vector<std::uint8_t>{10, 20, 30, 0}));
        ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
        tree.Next();
        const auto grey = tree.Pixels(buffer);
        EXPECT_EQ(
            (std::vector<std::uint8_t>(grey.begin(), grey.begin() + 6)), (std::vector<std::uint8_t>{9, 9, 9, 8, 8, 8}));
        ASSERT_EQ(producer.DSQueueBuffer(tree.stream, buffer), GC_ERR_SUCCESS);
    }
}

TEST(SimulatorFolder, SixteenBitPicturesKeepTheirUpperBits)
{
    const Folder folder;
    folder.Write("a.pgm", "P5 4 2 65535\n" + std::string("\x12\x34\xFF\xF0\x00\x10\x00\x00", 8) + std::string(8, '\0'));
    const Producer producer(PlayerOf(folder, "Mono12"));
    const Tree tree(producer);
    const BUFFER_HANDLE buffer = tree.Announce();
    tree.Start();
    tree.Next();
    const auto pixels = tree.Pixels(buffer);
    EXPECT_EQ(pixels[0] | pixels[1] << 8, 0x123);
    EXPECT_EQ(pixels[2] | pixels[3] << 8, 0xFFF);
    EXPECT_EQ(pixels[4] | pixels[5] << 8, 0x001);
}

TEST(SimulatorFolder, BadFoldersAndPicturesFailTheInitWithTheFilesName)
{
    const Folder folder;
    const auto textOf = [](const std::string& settings) {
        const Producer producer(settings, false);
        EXPECT_EQ(producer.GCInitLib(), GC_ERR_ERROR);
        return producer.Last().text;
    };
    const std::string settings = PlayerOf(folder, "Mono8");
    EXPECT_NE(textOf(settings).find("holds no .png, .pgm or .ppm file"), std::string::npos);
    for (const char* bytes :
         {"P5 4 2 255\nabc", "P2 4 2 255\n", "P5 0 2 255\n", "P5 4", "P5 4 2 70000\n", "P5 20000 2 255\n"})
    {
        folder.Write("bad.pgm", bytes);
        EXPECT_NE(textOf(settings).find("bad.pgm"), std::string::npos) << bytes;
    }
    std::filesystem::remove(folder.path / "bad.pgm");
    folder.Write("bad.png", "no picture");
    EXPECT_NE(textOf(settings).find("bad.png"), std::string::npos);
}

} // namespace
} // namespace koro::simulator::test
