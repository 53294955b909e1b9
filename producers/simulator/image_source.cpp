#include "producers/simulator/image_source.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace koro::simulator
{
namespace
{

// Draws line by line from a function (component, x, y) -> sample.
template <typename SampleAt>
void DrawLines(const ImageShape& shape, std::span<std::byte> memory, const SampleAt& sampleAt)
{
    const std::size_t perPixel = shape.format->SamplesPerPixel();
    std::vector<std::uint16_t> samples(shape.width * perPixel);
    const std::size_t lines = std::min(shape.height, memory.size() / shape.LineBytes());
    for (std::size_t y = 0; y < lines; ++y)
    {
        for (std::size_t x = 0, at = 0; x < shape.width; ++x)
            for (std::size_t index = 0; index < perPixel; ++index)
                samples[at++] = sampleAt(shape.format->ComponentAt(index, x, y), x, y);
        PackLine(*shape.format, samples, memory.subspan(y * shape.LineBytes(), shape.LineBytes()));
    }
}

class PatternSource final : public ImageSource
{
public:
    using ImageSource::ImageSource;

    void Draw(std::uint64_t n, std::span<std::byte> memory) const override
    {
        if (Shape().format->colours == Colours::Mono && Shape().format->packing == Packing::Bytes)
            return DrawMono8(n, memory);
        const unsigned depth = Shape().format->depth;
        DrawLines(Shape(), memory, [n, depth](Component component, std::size_t x, std::size_t y) {
            return Deepen(PatternValue(component, x, y, n), depth, x);
        });
    }

private:
    // The common format of tests and benches, without the detour over samples.
    void DrawMono8(std::uint64_t n, std::span<std::byte> memory) const
    {
        const std::size_t width = Shape().width;
        const std::size_t lines = std::min(Shape().height, memory.size() / width);
        for (std::size_t y = 0; y < lines; ++y)
            for (std::size_t x = 0; x < width; ++x)
                memory[y * width + x] = static_cast<std::byte>(PatternValue(Component::Mono, x, y, n));
    }
};

class SequenceSource final : public ImageSource
{
public:
    using ImageSource::ImageSource;

    void Draw(std::uint64_t n, std::span<std::byte> memory) const override
    {
        const ImageShape& image = Shape();
        DrawLines(image, memory, [n, &image](Component component, std::size_t x, std::size_t y) {
            return Deepen(SequenceValue(component, x, y, n, image.width, image.height), image.format->depth, x);
        });
    }
};

class PictureSource final : public ImageSource
{
public:
    PictureSource(const ImageShape& imageShape, const std::vector<Picture>& pictures) : ImageSource(imageShape)
    {
        for (const Picture& picture : pictures)
            payloads.push_back(Render(picture));
    }

    void Draw(std::uint64_t n, std::span<std::byte> memory) const override
    {
        const std::vector<std::byte>& payload = payloads[(n - 1) % payloads.size()];
        const std::size_t lines = std::min(Shape().height, memory.size() / Shape().LineBytes());
        std::memcpy(memory.data(), payload.data(), lines * Shape().LineBytes());
    }

private:
    std::vector<std::byte> Render(const Picture& picture) const
    {
        std::vector<std::byte> payload(Shape().PayloadBytes());
        const unsigned depth = Shape().format->depth;
        DrawLines(Shape(), payload, [&picture, depth](Component component, std::size_t x, std::size_t y) {
            return static_cast<std::uint16_t>(picture.ValueAt(component, x, y) >> (16 - depth));
        });
        return payload;
    }

    std::vector<std::vector<std::byte>> payloads;
};

} // namespace

std::unique_ptr<ImageSource> MakePatternSource(const ImageShape& shape)
{
    return std::make_unique<PatternSource>(shape);
}

std::unique_ptr<ImageSource> MakeSequenceSource(const ImageShape& shape)
{
    return std::make_unique<SequenceSource>(shape);
}

std::unique_ptr<ImageSource> MakePictureSource(const ImageShape& shape, const std::vector<Picture>& pictures)
{
    return std::make_unique<PictureSource>(shape, pictures);
}

} // namespace koro::simulator
