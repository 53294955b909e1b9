// Frames as a producer describes them: format, sizes and bytes that need not be consistent.
//
// Input: format code (4 bytes), width, height, padding, offset (2 bytes each), byte order (1 byte), then the frame.
#include "fuzz/fuzz_target.h"
#include "tools/koro/pixel_conversion.h"
#include "tools/koro/tool_error.h"

#include <cstring>
#include <variant>

namespace
{

using koro::fuzz::Require;

class Reader
{
public:
    Reader(const std::uint8_t* data, std::size_t size) : rest(data), restSize(size) {}

    // Zero after the end of the input.
    template <class Number>
    Number Read()
    {
        Number number = 0;
        if (restSize >= sizeof number)
        {
            std::memcpy(&number, rest, sizeof number);
            rest += sizeof number;
            restSize -= sizeof number;
        }
        return number;
    }
    const std::uint8_t* Rest() const { return rest; }
    std::size_t RestSize() const { return restSize; }

private:
    const std::uint8_t* rest;
    std::size_t restSize;
};

std::size_t NumSamples(const koro::tool::Picture& picture)
{
    return std::visit([](const auto& samples) { return samples.size(); }, picture.samples);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Reader reader(data, size);
    koro::tool::FrameLayout layout;
    layout.pixelFormat = reader.Read<std::uint32_t>();
    layout.width = reader.Read<std::uint16_t>();
    layout.height = reader.Read<std::uint16_t>();
    layout.xPadding = reader.Read<std::uint16_t>();
    layout.imageOffset = reader.Read<std::uint16_t>();
    layout.bigEndian = (reader.Read<std::uint8_t>() & 1) != 0;
    try
    {
        const auto picture = koro::tool::ToPicture(layout, reader.Rest(), reader.RestSize());
        Require(picture.width == layout.width && picture.height == layout.height, "the picture has the frame's size");
        Require(NumSamples(picture) == picture.width * picture.height * picture.channels, "the raster is whole");
    }
    catch (const koro::tool::ToolError&)
    {
        // the only answer for a frame that is not consistent
    }
    return 0;
}
