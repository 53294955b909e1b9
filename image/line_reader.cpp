#include "image/line_reader.h"

#include "image/plain.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace koro::image
{

namespace
{

static_assert(std::endian::native == std::endian::little, "samples of whole bytes are copied where the orders agree");

// Whole bytes in either order, as an unsigned number.
uint64_t ReadBytes(const uint8_t* bytes, size_t size, bool bigEndian)
{
    uint64_t value = 0;
    for (size_t i = 0; i < size; ++i)
        value |= uint64_t{bytes[bigEndian ? size - 1 - i : i]} << (8 * i);
    return value;
}

// `bits` bits from bit `start` on, at most 16; touches no byte beyond them.
unsigned ReadBits(const uint8_t* bytes, size_t start, unsigned bits)
{
    unsigned value = 0;
    for (unsigned done = 0; done < bits;)
    {
        const unsigned shift = (start + done) % 8;
        const unsigned taken = std::min(8 - shift, bits - done);
        value |= (unsigned{bytes[(start + done) / 8]} >> shift & ((1u << taken) - 1)) << done;
        done += taken;
    }
    return value;
}

struct Field
{
    unsigned start;
    unsigned bits;
};

Field FieldOf(const PixelFormat& format, size_t component)
{
    if (format.samples.bits == 10) return {static_cast<unsigned>(10 * component), 10};
    constexpr Field fields[] = {{0, 5}, {5, 6}, {11, 5}};
    return fields[component];
}

unsigned ReadField(const PixelFormat& format, const uint8_t* line, size_t index)
{
    const size_t pixel = index / 3;
    const Field field = FieldOf(format, index % 3);
    return ReadBits(line, pixel * format.BitsPerPixel() + field.start, field.bits);
}

// Fills `target` bits by repeating the value's bits below itself.
template <class T>
T Repeated(unsigned value, unsigned bits)
{
    constexpr unsigned target = 8 * sizeof(T);
    unsigned result = value << (target - bits);
    for (unsigned filled = bits; filled < target; filled *= 2)
        result |= result >> filled;
    return static_cast<T>(result);
}

template <class T>
void RepeatBits(const uint16_t* values, size_t count, unsigned bits, T* repeated)
{
    const unsigned largest = (1u << bits) - 1;
    for (size_t i = 0; i < count; ++i)
        repeated[i] = Repeated<T>(std::min<unsigned>(values[i], largest), bits);
}

void ToFull(const Kernels& kernels, const uint16_t* values, size_t count, unsigned bits, uint8_t* full)
{
    if (bits < 8) return RepeatBits(values, count, bits, full);
    kernels.narrow(values, count, bits, full);
}

void ToFull(const Kernels& kernels, const uint16_t* values, size_t count, unsigned bits, uint16_t* full)
{
    if (bits < 8) return RepeatBits(values, count, bits, full);
    kernels.stretch(values, count, bits, full);
}

float FloatOfInteger(uint64_t value, unsigned bits, bool isSigned)
{
    if (!isSigned) return static_cast<float>(value);
    const uint64_t sign = uint64_t{1} << (bits - 1);
    return static_cast<float>(static_cast<int64_t>((value ^ sign) - sign));
}

float FloatOfBits(uint64_t value, unsigned bits)
{
    return bits == 32 ? std::bit_cast<float>(static_cast<uint32_t>(value))
                      : static_cast<float>(std::bit_cast<double>(value));
}

// Brightness of the pixels from `x` on, of samples in groups that begin with the group of `x`.
template <size_t groupWidth>
void SpreadBrightness(const uint16_t* samples, std::string_view order, size_t skipped, size_t count, uint16_t* values)
{
    size_t places[groupWidth] = {};
    for (size_t place = 0, found = 0; place < order.size(); ++place)
    {
        if (order[place] == 'Y') places[found++] = place;
    }
    const size_t length = order.size();
    size_t i = 0;
    for (; skipped == 0 && i + groupWidth <= count; i += groupWidth, samples += length)
    {
        for (size_t pixel = 0; pixel < groupWidth; ++pixel)
            values[i + pixel] = samples[places[pixel]];
    }
    // What is left begins with a group, unless the first pixels of a group were skipped.
    const size_t done = i;
    for (; i < count; ++i)
        values[i] = samples[(i - done + skipped) / groupWidth * length + places[(i - done + skipped) % groupWidth]];
}

template <size_t groupWidth>
void SpreadDifference(const uint16_t* samples, size_t length, size_t skipped, size_t count, uint16_t* values)
{
    size_t i = 0;
    for (; skipped == 0 && i + groupWidth <= count; i += groupWidth, samples += length)
        std::fill_n(values + i, groupWidth, *samples);
    const size_t done = i;
    for (; i < count; ++i)
        values[i] = samples[(i - done + skipped) / groupWidth * length];
}

} // namespace

unsigned ComponentOf(const PixelFormat& format, size_t sampleOfPixel)
{
    if (format.content.kind != KIMG_KIND_RGB) return static_cast<unsigned>(sampleOfPixel);
    return static_cast<unsigned>(std::string_view("RGBa").find(format.content.order[sampleOfPixel]));
}

unsigned BitsOfComponent(const PixelFormat& format, unsigned component)
{
    if (format.samples.packing != KIMG_PACKING_PIXEL_FIELDS) return format.samples.bits;
    return FieldOf(format, component).bits; // red and blue have the same number of bits
}

LineReader::LineReader(const Layout& picture, const uint8_t* frame, size_t width, const Kernels& loops)
    : layout(picture), data(frame), kernels(loops), planes{}
{
    for (unsigned plane = 0; plane < layout.format->NumPlanes(); ++plane)
        planes[plane] = layout.Plane(plane);
    // A run of interleaved samples can begin and end within a group of pixels.
    run = Line<uint16_t>((width + 8) * 4);
    for (unsigned component = 0; component < layout.format->NumComponents(); ++component)
        raw[component] = Line<uint16_t>(width);
}

const uint8_t* LineReader::LineStart(unsigned plane, uint64_t y) const
{
    return data + planes[plane].offset + y * planes[plane].stride;
}

uint16_t LineReader::SampleAt(const uint8_t* line, size_t index) const
{
    const PixelFormat& format = *layout.format;
    const unsigned bits = format.samples.bits;
    switch (format.samples.packing)
    {
    case KIMG_PACKING_DENSE:
        return plain::Word(ReadBits(line, index * bits, bits));
    case KIMG_PACKING_GVSP: {
        const uint8_t* const group = line + index / 2 * 3;
        const unsigned low = static_cast<unsigned>(group[1]) >> (index % 2 * 4);
        return plain::Word(
            static_cast<unsigned>(group[index % 2 * 2]) << (bits - 8) | (low & ((1u << (bits - 8)) - 1)));
    }
    case KIMG_PACKING_PIXEL_FIELDS:
        return plain::Word(ReadField(format, line, index));
    default: {
        const size_t size = format.BitsInMemory() / 8;
        const auto value = static_cast<unsigned>(ReadBytes(line + index * size, size, layout.bigEndian));
        const bool isSigned = format.samples.type == KIMG_SAMPLE_TYPE_SIGNED;
        return plain::Word(isSigned ? value ^ (1u << (bits - 1)) : value);
    }
    }
}

// Reads samples that begin on a whole byte; null for packings without such a kernel.
Kernels::Unpack LineReader::Unpacker() const
{
    const Samples& samples = layout.format->samples;
    if (samples.packing == KIMG_PACKING_GVSP) return samples.bits == 10 ? kernels.gvsp10 : kernels.gvsp12;
    if (samples.packing == KIMG_PACKING_DENSE)
    {
        if (samples.bits == 10) return kernels.dense10;
        if (samples.bits == 12) return kernels.dense12;
        return samples.bits == 14 ? plain::UnpackDense<14> : nullptr;
    }
    if (samples.packing != KIMG_PACKING_WHOLE_BYTES || samples.type != KIMG_SAMPLE_TYPE_UNSIGNED) return nullptr;
    if (layout.format->BitsInMemory() == 8) return kernels.bytesToWords;
    if (layout.format->BitsInMemory() != 16) return nullptr;
    return layout.bigEndian ? kernels.swappedWords : plain::CopyWords;
}

void LineReader::ReadRun(const uint8_t* line, size_t first, size_t count, uint16_t* values) const
{
    const Kernels::Unpack unpack = Unpacker();
    // Eight samples of any packing begin on a whole byte, each sample of whole bytes does.
    const size_t period = layout.format->samples.packing == KIMG_PACKING_WHOLE_BYTES ? 1 : 8;
    size_t done = 0;
    for (; done < count && (!unpack || (first + done) % period != 0); ++done)
        values[done] = SampleAt(line, first + done);
    if (done < count) unpack(line + (first + done) * layout.format->BitsInMemory() / 8, count - done, values + done);
}

void LineReader::ReadInterleaved(const uint8_t* line, uint64_t x, size_t count, uint16_t* const* components)
{
    const PixelFormat& format = *layout.format;
    const size_t samples = format.NumComponents();
    uint16_t* const values = run.Pixels();
    ReadRun(line, x * samples, count * samples, values);
    uint16_t* ordered[4] = {};
    for (size_t sample = 0; sample < samples; ++sample)
        ordered[sample] = components[ComponentOf(format, sample)];
    if (samples == 3) return kernels.words.deinterleave3(values, count, ordered);
    if (samples == 4) return kernels.words.deinterleave4(values, count, ordered);
    plain::Deinterleave<2>(values, count, ordered);
}

// Missing at the end of an odd line: that of the group before, or neutral.
uint16_t LineReader::ColorDifferenceAt(const uint8_t* line, size_t group, size_t place, size_t samplesOfLine) const
{
    const size_t length = layout.format->content.order.size();
    const size_t index = group * length + place;
    if (index < samplesOfLine) return SampleAt(line, index);
    return group > 0 ? SampleAt(line, index - length) : plain::Word(1u << (layout.format->samples.bits - 1));
}

void LineReader::ReadColorGroups(const GroupedLine& line, uint64_t x, size_t count, uint16_t* const* components)
{
    const PixelFormat& format = *layout.format;
    const std::string_view order = format.content.order;
    const size_t groupWidth = format.GroupWidth();
    const size_t firstGroup = x / groupWidth;
    const size_t numGroups = (x + count - 1) / groupWidth + 1 - firstGroup;
    uint16_t* const samples = run.Pixels();
    const size_t first = firstGroup * order.size();
    const size_t wanted = numGroups * order.size();
    const size_t available = std::min(wanted, line.numSamples - first);
    ReadRun(line.start, first, available, samples);
    for (size_t missing = available; missing < wanted; ++missing)
        samples[missing] =
            ColorDifferenceAt(line.start, firstGroup + numGroups - 1, missing % order.size(), line.numSamples);
    const size_t skipped = x % groupWidth;
    const auto spread = [&]<size_t width>(std::integral_constant<size_t, width>) {
        if (line.hasBrightness) SpreadBrightness<width>(samples, order, skipped, count, components[0]);
        SpreadDifference<width>(samples + order.find('U'), order.size(), skipped, count, components[1]);
        SpreadDifference<width>(samples + order.find('V'), order.size(), skipped, count, components[2]);
    };
    if (groupWidth == 1) return spread(std::integral_constant<size_t, 1>());
    if (groupWidth == 2) return spread(std::integral_constant<size_t, 2>());
    spread(std::integral_constant<size_t, 4>());
}

void LineReader::ReadYCbCr(uint64_t y, uint64_t x, size_t count, uint16_t* const* components)
{
    const PixelFormat& format = *layout.format;
    const bool semiplanar = format.content.arrangement == KIMG_ARRANGEMENT_SEMIPLANAR;
    if (semiplanar) ReadRun(LineStart(0, y), x, count, components[0]);
    const unsigned plane = semiplanar ? 1 : 0;
    const size_t numSamples = planes[plane].lineBytes * 8 / format.BitsInMemory();
    const uint8_t* const start = LineStart(plane, semiplanar ? y / format.content.groupHeight : y);
    ReadColorGroups({start, numSamples, !semiplanar}, x, count, components);
}

void LineReader::ReadRaw(uint64_t y, uint64_t x, size_t count, uint16_t* const* components)
{
    const PixelFormat& format = *layout.format;
    if (format.content.kind == KIMG_KIND_YCBCR) return ReadYCbCr(y, x, count, components);
    if (format.NumComponents() == 1) return ReadRun(LineStart(0, y), x, count, components[0]);
    if (format.NumPlanes() == 1) return ReadInterleaved(LineStart(0, y), x, count, components);
    for (unsigned plane = 0; plane < format.NumPlanes(); ++plane)
        ReadRun(LineStart(plane, y), x, count, components[ComponentOf(format, plane)]);
}

bool LineReader::HasByteColors() const
{
    const PixelFormat& format = *layout.format;
    return format.samples.packing == KIMG_PACKING_WHOLE_BYTES && format.samples.bits == 8 &&
           format.samples.type == KIMG_SAMPLE_TYPE_UNSIGNED && format.content.kind != KIMG_KIND_YCBCR;
}

void LineReader::ReadFull(uint64_t y, uint64_t x, size_t count, uint8_t* const* components)
{
    const PixelFormat& format = *layout.format;
    const size_t samples = format.NumComponents();
    if (HasByteColors() && format.NumPlanes() == samples)
    {
        for (unsigned plane = 0; plane < samples; ++plane)
            std::memcpy(components[ComponentOf(format, plane)], LineStart(plane, y) + x, count);
        return;
    }
    if (HasByteColors() && samples >= 3)
    {
        uint8_t* ordered[4] = {};
        for (size_t sample = 0; sample < samples; ++sample)
            ordered[sample] = components[ComponentOf(format, sample)];
        const auto deinterleave = samples == 3 ? kernels.bytes.deinterleave3 : kernels.bytes.deinterleave4;
        return deinterleave(LineStart(0, y) + x * samples, count, ordered);
    }
    uint16_t* lines[] = {raw[0].Pixels(), raw[1].Pixels(), raw[2].Pixels(), raw[3].Pixels()};
    ReadRaw(y, x, count, lines);
    for (unsigned component = 0; component < samples; ++component)
        ToFull(kernels, lines[component], count, BitsOfComponent(format, component), components[component]);
}

void LineReader::ReadFull(uint64_t y, uint64_t x, size_t count, uint16_t* const* components)
{
    const PixelFormat& format = *layout.format;
    ReadRaw(y, x, count, components);
    for (unsigned component = 0; component < format.NumComponents(); ++component)
        ToFull(kernels, components[component], count, BitsOfComponent(format, component), components[component]);
}

void LineReader::ReadFloat(uint64_t y, uint64_t x, size_t count, float* const* components)
{
    const PixelFormat& format = *layout.format;
    const bool isSigned = format.samples.type == KIMG_SAMPLE_TYPE_SIGNED;
    const size_t samples = format.NumComponents();
    if (format.samples.bits <= 16)
    {
        uint16_t* lines[] = {raw[0].Pixels(), raw[1].Pixels(), raw[2].Pixels(), raw[3].Pixels()};
        ReadRaw(y, x, count, lines);
        const int shift = isSigned ? 1 << (format.samples.bits - 1) : 0;
        for (size_t component = 0; component < samples; ++component)
        {
            for (size_t i = 0; i < count; ++i)
                components[component][i] = static_cast<float>(lines[component][i] - shift);
        }
        return;
    }
    const size_t size = format.BitsInMemory() / 8;
    const bool planar = format.NumPlanes() > 1;
    for (unsigned component = 0; component < samples; ++component)
    {
        const uint8_t* const line = LineStart(planar ? component : 0, y);
        for (size_t i = 0; i < count; ++i)
        {
            const size_t index = planar ? x + i : (x + i) * samples + component;
            const uint64_t value = ReadBytes(line + index * size, size, layout.bigEndian);
            components[component][i] = format.samples.type == KIMG_SAMPLE_TYPE_FLOAT
                                           ? FloatOfBits(value, format.samples.bits)
                                           : FloatOfInteger(value, format.samples.bits, isSigned);
        }
    }
}

} // namespace koro::image
