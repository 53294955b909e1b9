#include "tests/unit/image/named_format.h"

#include <cstdio>
#include <gmock/gmock.h>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace
{

std::vector<uint32_t> AllNumbers()
{
    size_t count = 0;
    EXPECT_EQ(KIMG_PixelFormat_GetNum(&count), KIMG_RETURN_CODE_SUCCESS);
    std::vector<uint32_t> numbers(count);
    for (size_t index = 0; index < count; ++index)
        EXPECT_EQ(KIMG_PixelFormat_GetByIndex(index, &numbers[index]), KIMG_RETURN_CODE_SUCCESS);
    return numbers;
}

std::string NameOf(uint32_t number)
{
    char name[64] = {};
    size_t size = sizeof name;
    EXPECT_EQ(KIMG_PixelFormat_GetName(number, name, &size), KIMG_RETURN_CODE_SUCCESS);
    EXPECT_EQ(size, std::string(name).size() + 1);
    return name;
}

std::map<uint32_t, std::string> Table()
{
    std::map<uint32_t, std::string> table;
    for (const uint32_t number : AllNumbers())
        table[number] = NameOf(number);
    return table;
}

struct ClosePipe
{
    void operator()(FILE* pipe) const { pclose(pipe); }
};

// Lines "V<tab>gvsp.pixel<tab>number<tab>name (text)" of the dissector's tables.
std::map<uint32_t, std::string> DissectorTable()
{
    std::map<uint32_t, std::string> table;
    const std::unique_ptr<FILE, ClosePipe> pipe(popen("tshark -G values 2>/dev/null", "r"));
    char line[1024];
    while (pipe && std::fgets(line, sizeof line, pipe.get()))
    {
        unsigned number = 0;
        char name[128] = {};
        if (std::sscanf(line, "V\tgvsp.pixel\t%u\t%127[^ \t\n]", &number, name) == 2) table[number] = name;
    }
    return table;
}

std::string WithoutPrefix(const std::string& name)
{
    return name.rfind("GVSP_", 0) == 0 ? name.substr(5) : name;
}

std::string Refusal(const char* name, uint32_t operation)
{
    char text[256] = {};
    size_t size = sizeof text;
    const KIMG_ReturnCode code = KIMG_PixelFormat_GetRefusal(Number(name), operation, text, &size);
    return code == KIMG_RETURN_CODE_SUCCESS ? text : code == KIMG_RETURN_CODE_NOT_AVAILABLE ? "" : "failed";
}

TEST(FormatTable, HasEveryFormatOfTheDissectorUnderItsName)
{
    const auto dissector = DissectorTable();
    if (dissector.empty()) GTEST_SKIP() << "tshark is not installed or prints no pixel formats";
    ASSERT_GT(dissector.size(), 270u);
    const auto table = Table();
    for (const auto& [number, name] : dissector)
    {
        ASSERT_TRUE(table.count(number)) << name;
        EXPECT_EQ(table.at(number), WithoutPrefix(name));
        EXPECT_EQ(Number(name.c_str()), number) << "found with its prefix too";
    }
}

TEST(FormatTable, HoldsEachNameAndNumberOnce)
{
    std::set<std::string> names;
    for (const auto& [number, name] : Table())
    {
        EXPECT_TRUE(names.insert(name).second) << name;
        EXPECT_EQ(Number(name.c_str()), number);
    }
    EXPECT_EQ(names.size(), AllNumbers().size());
    EXPECT_EQ(names.size(), 276u);
}

// Bits 16 to 23 of a number state the bits of a pixel, bits 24 to 31 whether it is grey or coloured.
TEST(FormatTable, AgreesWithTheBitsThatEachNumberStates)
{
    for (const uint32_t number : AllNumbers())
    {
        KIMG_PIXEL_FORMAT_INFO info{};
        ASSERT_EQ(KIMG_PixelFormat_GetInfo(number, &info), KIMG_RETURN_CODE_SUCCESS);
        if ((info.operations & KIMG_OPERATION_LAYOUT) == 0) continue;
        EXPECT_EQ(info.bitsPerPixel, (number >> 16) & 0xFF) << NameOf(number);
        EXPECT_EQ(info.numComponents > 1 ? 2u : 1u, number >> 24) << NameOf(number);
        EXPECT_EQ(info.pixelFormat, number);
    }
}

TEST(FormatTable, SupportsOrGivesAReasonForEachOperation)
{
    for (const uint32_t number : AllNumbers())
    {
        KIMG_PIXEL_FORMAT_INFO info{};
        ASSERT_EQ(KIMG_PixelFormat_GetInfo(number, &info), KIMG_RETURN_CODE_SUCCESS);
        for (const uint32_t operation :
             {KIMG_OPERATION_LAYOUT, KIMG_OPERATION_UNPACK, KIMG_OPERATION_UNPACK_FLOAT, KIMG_OPERATION_CONVERT})
        {
            const bool supported = (info.operations & operation) != 0;
            const std::string reason = Refusal(NameOf(number).c_str(), operation);
            EXPECT_EQ(reason.empty(), supported) << NameOf(number) << ' ' << operation;
            EXPECT_TRUE(supported || reason.back() == '.') << NameOf(number) << ": " << reason;
        }
    }
}

TEST(FormatTable, RefusesWholeFormatsForStatedReasonsOnly)
{
    std::set<std::string> refused;
    for (const uint32_t number : AllNumbers())
    {
        KIMG_PIXEL_FORMAT_INFO info{};
        ASSERT_EQ(KIMG_PixelFormat_GetInfo(number, &info), KIMG_RETURN_CODE_SUCCESS);
        if ((info.operations & KIMG_OPERATION_UNPACK_FLOAT) == 0) refused.insert(NameOf(number));
    }
    EXPECT_THAT(
        refused, testing::UnorderedElementsAre(
                     "R10_Deprecated", "G10_Deprecated", "B10_Deprecated", "R12_Deprecated", "G12_Deprecated",
                     "B12_Deprecated", "RGB10V1Packed", "RGB12V1Packed"));
    EXPECT_EQ(
        Refusal("R10_Deprecated", KIMG_OPERATION_LAYOUT),
        "The number of this withdrawn format states a size that its data do not have.");
    EXPECT_EQ(
        Refusal("RGB10V1Packed", KIMG_OPERATION_CONVERT),
        "The position of the low bits in this GigE Vision 1 format is not confirmed by any data.");
    EXPECT_EQ(
        Refusal("Coord3D_ABC32f", KIMG_OPERATION_UNPACK),
        "The samples have more than 16 bits and no fixed range; unpack them to floats instead.");
    EXPECT_EQ(Refusal("Mono12p", KIMG_OPERATION_CONVERT), "");
}

TEST(FormatTable, DescribesAPackedBayerFormat)
{
    const KIMG_PIXEL_FORMAT_INFO info = InfoOf("BayerGB12Packed");
    EXPECT_EQ(info.pixelFormat, 0x010C002Cu);
    EXPECT_EQ(info.kind, KIMG_KIND_BAYER);
    EXPECT_EQ(info.packing, KIMG_PACKING_GVSP);
    EXPECT_EQ(info.sampleType, KIMG_SAMPLE_TYPE_UNSIGNED);
    EXPECT_EQ(info.mosaic, KIMG_MOSAIC_GB);
    EXPECT_EQ(info.bitsPerSample, 12u);
    EXPECT_EQ(info.bitsPerPixel, 12u);
    EXPECT_EQ(info.numComponents, 1u);
    EXPECT_EQ(info.numPlanes, 1u);
    EXPECT_EQ(info.groupWidth, 1u);
    EXPECT_EQ(info.groupHeight, 1u);
}

TEST(FormatTable, DescribesASemiplanarFormat)
{
    const KIMG_PIXEL_FORMAT_INFO info = InfoOf("YCbCr420_8_YY_CrCb_Semiplanar");
    EXPECT_EQ(info.kind, KIMG_KIND_YCBCR);
    EXPECT_EQ(info.arrangement, KIMG_ARRANGEMENT_SEMIPLANAR);
    EXPECT_EQ(info.colorSpace, KIMG_COLOR_SPACE_FULL);
    EXPECT_EQ(info.numComponents, 3u);
    EXPECT_EQ(info.numPlanes, 2u);
    EXPECT_EQ(info.groupWidth, 2u);
    EXPECT_EQ(info.groupHeight, 2u);
}

TEST(FormatTable, DescribesSignedAndFloatingPointSamples)
{
    EXPECT_EQ(InfoOf("Data16s").sampleType, KIMG_SAMPLE_TYPE_SIGNED);
    EXPECT_EQ(InfoOf("Mono8s").sampleType, KIMG_SAMPLE_TYPE_SIGNED);
    EXPECT_EQ(InfoOf("Coord3D_C32f").sampleType, KIMG_SAMPLE_TYPE_FLOAT);
    EXPECT_EQ(InfoOf("Data64f").bitsPerSample, 64u);
    EXPECT_EQ(InfoOf("YCbCr709_422_10p").colorSpace, KIMG_COLOR_SPACE_BT709);
    EXPECT_EQ(InfoOf("YCbCr411_8").groupWidth, 4u);
}

TEST(FormatTable, AnswersUnknownNamesAndNumbers)
{
    uint32_t number = 77;
    EXPECT_EQ(KIMG_PixelFormat_FindByName("Mono13", &number), KIMG_RETURN_CODE_NOT_FOUND);
    EXPECT_EQ(LastText(), "No pixel format is called 'Mono13'.");
    EXPECT_EQ(number, 77u);
    KIMG_PIXEL_FORMAT_INFO info{};
    EXPECT_EQ(KIMG_PixelFormat_GetInfo(0x81080001, &info), KIMG_RETURN_CODE_NOT_FOUND);
    EXPECT_EQ(LastText(), "The pixel format 0x81080001 is not known.");
    EXPECT_EQ(KIMG_PixelFormat_GetByIndex(AllNumbers().size(), &number), KIMG_RETURN_CODE_OUT_OF_RANGE);
    size_t size = 0;
    EXPECT_EQ(KIMG_PixelFormat_GetName(0, nullptr, &size), KIMG_RETURN_CODE_NOT_FOUND);
    EXPECT_EQ(KIMG_PixelFormat_GetRefusal(Number("Mono8"), 3, nullptr, &size), KIMG_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_EQ(KIMG_PixelFormat_GetRefusal(Number("Mono8"), 16, nullptr, &size), KIMG_RETURN_CODE_INVALID_ARGUMENT);
}

TEST(FormatTable, LeavesATooSmallBufferAsItWas)
{
    char name[6] = "#####";
    size_t size = 5;
    EXPECT_EQ(KIMG_PixelFormat_GetName(Number("Mono8"), name, &size), KIMG_RETURN_CODE_BUFFER_TOO_SMALL);
    EXPECT_EQ(LastText(), "name is too small: 5 bytes where 6 are needed.");
    EXPECT_STREQ(name, "#####");
    EXPECT_EQ(size, 5u);
    EXPECT_EQ(KIMG_PixelFormat_GetName(Number("Mono8"), nullptr, &size), KIMG_RETURN_CODE_SUCCESS);
    EXPECT_EQ(size, 6u);
    EXPECT_EQ(KIMG_PixelFormat_GetName(Number("Mono8"), name, &size), KIMG_RETURN_CODE_SUCCESS);
    EXPECT_STREQ(name, "Mono8");
}

} // namespace
