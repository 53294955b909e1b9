// Every version of the inner loops gives the results of the plain one, bit for bit.
#include "image/kernels.h"
#include "tests/unit/image/sample_picture.h"

#include <cstring>

namespace
{

using koro::image::ChooseKernels;
using koro::image::Kernels;
using koro::image::SupportedKernels;

class InnerLoops : public testing::Test
{
protected:
    void TearDown() override { ChooseKernels(nullptr); }
};

template <class Produce>
void ExpectEqualOnAllTargets(const std::string& what, const Produce& produce)
{
    ChooseKernels(&koro::image::PlainKernels());
    const auto plain = produce();
    for (const Kernels* kernels : SupportedKernels())
    {
        ChooseKernels(kernels);
        const auto other = produce();
        ASSERT_EQ(other.size(), plain.size());
        ASSERT_EQ(std::memcmp(other.data(), plain.data(), plain.size() * sizeof plain[0]), 0)
            << kernels->name << ' ' << what;
    }
}

std::string Target()
{
    char name[16] = {};
    size_t size = sizeof name;
    EXPECT_EQ(KIMG_Library_GetTarget(name, &size), KIMG_RETURN_CODE_SUCCESS);
    EXPECT_EQ(size, std::string(name).size() + 1);
    return name;
}

TEST_F(InnerLoops, AreTheFastestOfTheProcessorAndKnownByName)
{
    const auto supported = SupportedKernels();
    ASSERT_FALSE(supported.empty());
    EXPECT_STREQ(supported.back()->name, "plain");
    EXPECT_EQ(Target(), supported.front()->name);
    ChooseKernels(supported.back());
    EXPECT_EQ(Target(), "plain");
}

TEST_F(InnerLoops, UnpackEqually)
{
    for (const std::string& name : FormatsFor(KIMG_OPERATION_UNPACK))
    {
        for (const uint64_t width : {3u, 33u, 150u})
        {
            KIMG_IMAGE image = Image(name.c_str(), width, 2, 1);
            image.bigEndian = width % 2;
            const Bytes bytes = RandomBytes(image);
            ExpectEqualOnAllTargets(name, [&] { return Unpacked16(image, bytes); });
            ExpectEqualOnAllTargets(name, [&] { return Unpacked8(image, bytes); });
        }
    }
}

TEST_F(InnerLoops, UnpackLinesOfEveryLengthEqually)
{
    for (const char* name : {"Mono10p", "Mono12p", "Mono10Packed", "Mono12Packed", "RGB8", "BGRa8", "RGB12"})
    {
        for (uint64_t width = 1; width < 140; ++width)
        {
            const KIMG_IMAGE image = Image(name, width, 1);
            const Bytes bytes = RandomBytes(image);
            ExpectEqualOnAllTargets(name, [&] { return Unpacked16(image, bytes); });
            ExpectEqualOnAllTargets(name, [&] { return Unpacked8(image, bytes); });
        }
    }
}

TEST_F(InnerLoops, ConvertEqually)
{
    for (const std::string& name : FormatsFor(KIMG_OPERATION_CONVERT))
    {
        const KIMG_IMAGE image = Image(name.c_str(), 91, 5);
        const Bytes bytes = RandomBytes(image);
        for (const int32_t method : {KIMG_DEMOSAIC_BILINEAR, KIMG_DEMOSAIC_EDGE_AWARE})
        {
            for (const char* target : {"Mono8", "RGB8", "BGR8", "RGBa8", "BGRa8"})
                ExpectEqualOnAllTargets(
                    name, [&] { return Converted<uint8_t>(image, bytes, target, nullptr, 0, method); });
            for (const char* target : {"Mono16", "RGB16", "BGRa16"})
                ExpectEqualOnAllTargets(
                    name, [&] { return Converted<uint16_t>(image, bytes, target, nullptr, 0, method); });
        }
    }
}

TEST_F(InnerLoops, DemosaicLinesOfEveryLengthEqually)
{
    for (const int32_t method : {KIMG_DEMOSAIC_BILINEAR, KIMG_DEMOSAIC_EDGE_AWARE})
    {
        for (uint64_t width = 1; width < 140; ++width)
        {
            const KIMG_IMAGE image = Image(width % 2 == 0 ? "BayerGR8" : "BayerBG8", width, 3);
            const Bytes bytes = RandomBytes(image);
            ExpectEqualOnAllTargets(
                "8 bits", [&] { return Converted<uint8_t>(image, bytes, "RGB8", nullptr, 0, method); });
            ExpectEqualOnAllTargets(
                "16 bits", [&] { return Converted<uint16_t>(image, bytes, "RGB16", nullptr, 0, method); });
        }
    }
}

} // namespace
