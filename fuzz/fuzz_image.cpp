// A frame and a request to the image library that need not fit together.
//
// Input: what to do (1 byte), byte order and method (1 byte), format and target (4 bytes each), width, height, padding,
// offset (2 bytes each), region (4 times 2 bytes, no region if all are zero), stride (2 bytes), width and height of a
// preview (1 byte each), then the frame.
#include "fuzz/fuzz_target.h"
#include "image/kernels.h"
#include <koro/image.h>

#include <cstring>
#include <string>
#include <vector>

namespace
{

using koro::fuzz::Require;
using Bytes = std::vector<std::uint8_t>;

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
    // Memory that ends with the frame, so that a read behind it is found.
    Bytes Rest() const { return {rest, rest + restSize}; }

private:
    const std::uint8_t* rest;
    std::size_t restSize;
};

struct Request
{
    std::uint8_t operation;
    std::int32_t method;
    std::uint32_t target;
    KIMG_IMAGE image;
    KIMG_REGION region;
    const KIMG_REGION* part;
    std::size_t stride;
    std::uint8_t smallWidth;
    std::uint8_t smallHeight;
    Bytes frame;
};

Request RequestFrom(Reader& reader)
{
    Request request{};
    request.operation = reader.Read<std::uint8_t>();
    const auto flags = reader.Read<std::uint8_t>();
    request.image.bigEndian = flags & 1;
    request.method = (flags & 2) != 0 ? KIMG_DEMOSAIC_EDGE_AWARE : KIMG_DEMOSAIC_BILINEAR;
    request.image.pixelFormat = reader.Read<std::uint32_t>();
    request.target = reader.Read<std::uint32_t>();
    request.image.width = reader.Read<std::uint16_t>();
    request.image.height = reader.Read<std::uint16_t>();
    request.image.xPadding = reader.Read<std::uint16_t>();
    request.image.imageOffset = reader.Read<std::uint16_t>();
    std::uint64_t* const numbers[] = {
        &request.region.x, &request.region.y, &request.region.width, &request.region.height};
    for (std::uint64_t* number : numbers)
        *number = reader.Read<std::uint16_t>();
    request.stride = reader.Read<std::uint16_t>();
    request.smallWidth = reader.Read<std::uint8_t>();
    request.smallHeight = reader.Read<std::uint8_t>();
    request.frame = reader.Rest();
    return request;
}

// The output for the fastest and for the plain inner loops, which must be equal; empty for a request that is refused.
template <class T, class Function>
void Produce(const Function& function)
{
    std::size_t size = 0;
    if (function(nullptr, &size) != KIMG_RETURN_CODE_SUCCESS || size > (std::size_t{1} << 24)) return;
    std::vector<T> outputs[2];
    KIMG_ReturnCode codes[2] = {};
    const koro::image::Kernels* const targets[] = {nullptr, &koro::image::PlainKernels()};
    for (unsigned i = 0; i < 2; ++i)
    {
        koro::image::ChooseKernels(targets[i]);
        outputs[i].assign(size / sizeof(T), T{77});
        std::size_t written = size;
        codes[i] = function(outputs[i].data(), &written);
        Require(written == size, "the size is that of the query");
    }
    Require(codes[0] == codes[1], "both versions answer alike");
    Require(std::memcmp(outputs[0].data(), outputs[1].data(), size) == 0, "both versions give the same result");
    const bool untouched = outputs[0] == std::vector<T>(size / sizeof(T), T{77});
    Require(codes[0] == KIMG_RETURN_CODE_SUCCESS || untouched, "a failure writes nothing");
}

void ApplyGamma(const Request& r, Bytes& frame)
{
    const std::uint32_t bits = 8 + r.smallHeight % 9;
    std::vector<std::uint16_t> table(std::size_t{1} << bits);
    std::size_t size = 2 * table.size();
    Require(
        KIMG_Table_FillGamma(0.5 + r.smallWidth / 4.0, bits, table.data(), &size) == KIMG_RETURN_CODE_SUCCESS,
        "the table has room");
    KIMG_Image_ApplyTable(&r.image, frame.data(), frame.size(), r.part, table.data(), size);
}

// The planes lie behind each other and end with the picture.
void CheckPlanes(const KIMG_IMAGE& image, std::uint64_t imageSize)
{
    std::uint64_t end = image.imageOffset;
    KIMG_PLANE plane{};
    for (std::size_t index = 0; KIMG_Image_GetPlane(&image, index, &plane) == KIMG_RETURN_CODE_SUCCESS; ++index)
    {
        Require(plane.offset >= end, "a plane begins after the one before");
        Require(plane.stride >= plane.lineBytes && plane.numLines > 0, "the lines of a plane do not overlap");
        end = plane.offset + (plane.numLines - 1) * plane.stride + plane.lineBytes;
    }
    Require(end == imageSize, "the last plane ends with the picture");
}

void Run(const Request& r)
{
    const auto* const data = r.frame.data();
    const std::size_t size = r.frame.size();
    const auto preview = [&](std::uint8_t* output, std::size_t* outputSize) {
        return KIMG_Image_Downscale(
            &r.image, data, size, r.part, r.target, r.smallWidth, r.smallHeight, r.stride, output, outputSize);
    };
    switch (r.operation % 8)
    {
    case 0:
        return Produce<std::uint8_t>([&](std::uint8_t* output, std::size_t* outputSize) {
            return KIMG_Image_Unpack8(&r.image, data, size, r.part, r.stride, output, outputSize);
        });
    case 1:
        return Produce<std::uint16_t>([&](std::uint16_t* output, std::size_t* outputSize) {
            return KIMG_Image_Unpack16(&r.image, data, size, r.part, r.stride, output, outputSize);
        });
    case 2:
        return Produce<float>([&](float* output, std::size_t* outputSize) {
            return KIMG_Image_UnpackFloat(&r.image, data, size, r.part, r.stride, output, outputSize);
        });
    case 3:
    case 4:
        return Produce<std::uint8_t>([&](std::uint8_t* output, std::size_t* outputSize) {
            return KIMG_Image_Convert(&r.image, data, size, r.part, r.method, r.target, r.stride, output, outputSize);
        });
    case 5:
        return Produce<std::uint8_t>(preview);
    case 6:
        return Produce<std::uint64_t>([&](std::uint64_t* output, std::size_t* outputSize) {
            return KIMG_Image_GetHistogram(&r.image, data, size, r.part, r.smallWidth % 5, output, outputSize);
        });
    default: {
        Bytes changed = r.frame;
        KIMG_STATISTICS statistics{};
        double gains[3] = {1, 1, 1};
        KIMG_Image_GetStatistics(&r.image, data, size, r.part, r.smallWidth % 5, &statistics);
        KIMG_Image_EstimateGains(&r.image, data, size, r.part, &gains[0], &gains[1], &gains[2]);
        KIMG_Image_ApplyGains(&r.image, changed.data(), size, r.part, r.smallWidth, gains[1], r.smallHeight);
        ApplyGamma(r, changed);
        return;
    }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Reader reader(data, size);
    Request request = RequestFrom(reader);
    const KIMG_REGION& region = request.region;
    request.part = region.x == 0 && region.y == 0 && region.width == 0 && region.height == 0 ? nullptr : &region;
    std::uint64_t needed = 0;
    if (KIMG_Image_GetSize(&request.image, &needed) == KIMG_RETURN_CODE_SUCCESS) CheckPlanes(request.image, needed);
    Run(request);
    return 0;
}
