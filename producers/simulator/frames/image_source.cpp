#include "producers/simulator/frames/image_source.h"

#include "producers/simulator/frames/surface.h"

#include <algorithm>
#include <utility>

namespace koro::simulator
{
namespace
{

// The mean of the sensor pixels behind one pixel of the image; `sampleAt` is a function (sensor column, sensor line).
template <typename SampleAt>
std::uint16_t Mean(const FramePlan& plan, std::size_t left, std::size_t top, const SampleAt& sampleAt)
{
    if (plan.x.binning == 1 && plan.y.binning == 1) return sampleAt(left, top);
    std::uint32_t sum = 0;
    for (std::size_t y = 0; y < plan.y.binning; ++y)
        for (std::size_t x = 0; x < plan.x.binning; ++x)
            sum += sampleAt(left + x, top + y);
    return static_cast<std::uint16_t>(sum / (plan.x.binning * plan.y.binning));
}

// Draws line by line from a function (component, sensor column, sensor line) -> sample. `responds`: the camera's
// electronics take part.
template <typename SampleAt>
void DrawLines(const FramePlan& plan, std::span<std::byte> memory, bool responds, const SampleAt& sampleAt)
{
    const ImageShape& shape = plan.shape;
    const std::size_t perPixel = shape.format->SamplesPerPixel();
    std::vector<std::uint16_t> samples(shape.width * perPixel);
    const std::size_t lines = std::min(shape.height, memory.size() / shape.LineBytes());
    for (std::size_t y = 0; y < lines; ++y)
    {
        const std::size_t top = plan.y.SensorAt(y);
        for (std::size_t x = 0, at = 0; x < shape.width; ++x)
        {
            const std::size_t left = plan.x.SensorAt(x);
            for (std::size_t index = 0; index < perPixel; ++index)
            {
                const Component component = shape.format->ComponentAt(index, x, y);
                const auto sample = Mean(plan, left, top, [&](std::size_t column, std::size_t line) {
                    return sampleAt(component, column, line);
                });
                samples[at++] = responds ? plan.Respond(component, sample) : sample;
            }
        }
        PackLine(*shape.format, samples, memory.subspan(y * shape.LineBytes(), shape.LineBytes()));
    }
}

class PatternSource final : public ImageSource
{
public:
    std::size_t NumPictures() const noexcept override { return 0; }

private:
    void DrawScene(std::uint64_t n, const FramePlan& plan, std::span<std::byte> memory) const override
    {
        const PixelFormat& format = *plan.shape.format;
        if (format.colours == Colours::Mono && format.packing == Packing::Bytes && plan.IsPlain())
            return DrawMono8(n, plan, memory);
        const unsigned depth = format.depth;
        DrawLines(plan, memory, true, [n, depth](Component component, std::size_t x, std::size_t y) {
            return Deepen(PatternValue(component, x, y, n), depth, x);
        });
    }

    // The common format of tests and benches, without the detour over samples.
    static void DrawMono8(std::uint64_t n, const FramePlan& plan, std::span<std::byte> memory)
    {
        const std::size_t width = plan.shape.width;
        const std::size_t lines = std::min(plan.shape.height, memory.size() / width);
        const std::uint64_t first = n + plan.x.offset + plan.y.offset;
        for (std::size_t y = 0; y < lines; ++y)
            for (std::size_t x = 0; x < width; ++x)
                memory[y * width + x] = static_cast<std::byte>(PatternValue(Component::Mono, x, y, first));
    }
};

class SequenceSource final : public ImageSource
{
public:
    std::size_t NumPictures() const noexcept override { return sequenceLength; }

private:
    void DrawScene(std::uint64_t n, const FramePlan& plan, std::span<std::byte> memory) const override
    {
        DrawLines(plan, memory, true, [n, &plan](Component component, std::size_t x, std::size_t y) {
            const auto value = SequenceValue(component, x, y, n, plan.sensorWidth, plan.sensorHeight);
            return Deepen(value, plan.shape.format->depth, x);
        });
    }
};

class SurfaceSource final : public ImageSource
{
public:
    std::size_t NumPictures() const noexcept override { return surfaceLength; }

private:
    void DrawScene(std::uint64_t n, const FramePlan& plan, std::span<std::byte> memory) const override
    {
        DrawLines(plan, memory, true, [n, &plan](Component, std::size_t x, std::size_t y) {
            const auto value = SurfaceValue(x, y, n, plan.sensorWidth, plan.sensorHeight);
            return Deepen(value, plan.shape.format->depth, x);
        });
    }
};

class PictureSource final : public ImageSource
{
public:
    explicit PictureSource(std::vector<Picture> thePictures) : pictures(std::move(thePictures)) {}

    std::size_t NumPictures() const noexcept override { return pictures.size(); }

private:
    void DrawScene(std::uint64_t n, const FramePlan& plan, std::span<std::byte> memory) const override
    {
        const Picture& picture = pictures[(n - 1) % pictures.size()];
        const unsigned depth = plan.shape.format->depth;
        DrawLines(plan, memory, true, [&picture, depth](Component component, std::size_t x, std::size_t y) {
            return static_cast<std::uint16_t>(picture.ValueAt(component, x, y) >> (16 - depth));
        });
    }

    const std::vector<Picture> pictures;
};

} // namespace

void ImageSource::Draw(std::uint64_t n, const FramePlan& plan, std::span<std::byte> memory) const
{
    if (plan.testPattern == TestPattern::Off) return DrawScene(n, plan, memory);
    const unsigned depth = plan.shape.format->depth;
    DrawLines(plan, memory, false, [n, &plan, depth](Component component, std::size_t x, std::size_t y) {
        return Deepen(TestPatternValue(plan.testPattern, component, x, y, n, plan.sensorWidth), depth, x);
    });
}

std::unique_ptr<ImageSource> MakePatternSource()
{
    return std::make_unique<PatternSource>();
}

std::unique_ptr<ImageSource> MakeSequenceSource()
{
    return std::make_unique<SequenceSource>();
}

std::unique_ptr<ImageSource> MakeSurfaceSource()
{
    return std::make_unique<SurfaceSource>();
}

std::unique_ptr<ImageSource> MakePictureSource(std::vector<Picture> pictures)
{
    return std::make_unique<PictureSource>(std::move(pictures));
}

} // namespace koro::simulator
