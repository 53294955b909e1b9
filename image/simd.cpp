// Highway compiles this file once for each target: everything between HWY_BEFORE_NAMESPACE and HWY_AFTER_NAMESPACE
// exists several times. The scalar target, for processors without any other, takes the plain versions.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "image/simd.cpp"
// Every processor with SSSE3 that is still in use has SSE4 too.
#ifndef HWY_DISABLED_TARGETS
#define HWY_DISABLED_TARGETS HWY_SSSE3
#endif

#include "image/kernels.h"
#include "image/plain.h"

// clang-format off: highway.h comes after foreach_target.h
#include <hwy/foreach_target.h>
#include <hwy/highway.h>
// clang-format on

HWY_BEFORE_NAMESPACE();
namespace koro::image
{
namespace HWY_NAMESPACE
{

#if HWY_TARGET == HWY_SCALAR

const Kernels& TargetKernels()
{
    return PlainKernels();
}

#else

namespace hn = hwy::HWY_NAMESPACE;

// Blocks of 16 bytes that begin `step` bytes apart, side by side in one vector.
template <class D>
HWY_INLINE hn::Vec<D> LoadBlocks(D d, const uint8_t* bytes, size_t step)
{
    if constexpr (hn::MaxLanes(D()) <= 16)
    {
        return hn::LoadU(d, bytes);
    }
    else
    {
        const hn::Half<D> half;
        const size_t blocks = hn::Lanes(half) / 16;
        return hn::Combine(d, LoadBlocks(half, bytes + blocks * step, step), LoadBlocks(half, bytes, step));
    }
}

// Eight samples of each block of `blockBytes` bytes, the two bytes that hold each one in a lane of 16 bits.
template <size_t blockBytes>
HWY_INLINE hn::Vec<hn::ScalableTag<uint16_t>> LoadSamples(const uint8_t* bytes, const uint8_t (&places)[16])
{
    const hn::ScalableTag<uint16_t> d;
    const hn::ScalableTag<uint8_t> d8;
    const auto shuffle = hn::LoadDup128(d8, places);
    return hn::BitCast(d, hn::TableLookupBytes(LoadBlocks(d8, bytes, blockBytes), shuffle));
}

// Runs `convert` over vectors as long as a load of 16 bytes stays within the line; the plain version does the rest.
template <size_t blockBytes, class Convert>
HWY_INLINE void UnpackLine(
    const uint8_t* line, size_t count, uint16_t* values, const uint8_t (&places)[16], Kernels::Unpack rest,
    const Convert& convert)
{
    const hn::ScalableTag<uint16_t> d;
    const size_t lanes = hn::Lanes(d);
    const size_t step = lanes / 8 * blockBytes;
    size_t done = 0;
    const uint8_t* bytes = line;
    // The last load reaches 16 - blockBytes bytes beyond its samples.
    const size_t slack = (16 - blockBytes) * 8 / blockBytes + 1;
    for (; done + lanes + slack <= count; done += lanes, bytes += step)
        hn::StoreU(convert(LoadSamples<blockBytes>(bytes, places)), d, values + done);
    rest(bytes, count - done, values + done);
}

// Lane i holds its sample at bit i * (bits - 8) % 8. A product moves it to the top, a shift down again.
template <unsigned bits>
HWY_INLINE void UnpackDense(
    const uint8_t* line, size_t count, uint16_t* values, const uint8_t (&places)[16], const uint16_t (&factors)[8])
{
    const hn::ScalableTag<uint16_t> d;
    const auto factor = hn::LoadDup128(d, factors);
    UnpackLine<bits>(line, count, values, places, plain::UnpackDense<bits>, [&](auto words) HWY_ATTR {
        return hn::ShiftRight<16 - bits>(hn::Mul(words, factor));
    });
}

void UnpackDense10(const uint8_t* line, size_t count, uint16_t* values)
{
    alignas(16) static constexpr uint8_t places[16] = {0, 1, 1, 2, 2, 3, 3, 4, 5, 6, 6, 7, 7, 8, 8, 9};
    alignas(16) static constexpr uint16_t factors[8] = {64, 16, 4, 1, 64, 16, 4, 1};
    UnpackDense<10>(line, count, values, places, factors);
}

void UnpackDense12(const uint8_t* line, size_t count, uint16_t* values)
{
    alignas(16) static constexpr uint8_t places[16] = {0, 1, 1, 2, 3, 4, 4, 5, 6, 7, 7, 8, 9, 10, 10, 11};
    alignas(16) static constexpr uint16_t factors[8] = {16, 1, 16, 1, 16, 1, 16, 1};
    UnpackDense<12>(line, count, values, places, factors);
}

// In each lane the byte with the low bits below the byte with the high ones.
alignas(16) constexpr uint8_t gvspPlaces[16] = {1, 0, 1, 2, 4, 3, 4, 5, 7, 6, 7, 8, 10, 9, 10, 11};

void UnpackGvsp10(const uint8_t* line, size_t count, uint16_t* values)
{
    const hn::ScalableTag<uint16_t> d;
    const auto highMask = hn::Set(d, 0x3FC);
    const auto lowMask = hn::Set(d, 3);
    UnpackLine<12>(line, count, values, gvspPlaces, plain::UnpackGvsp<10>, [&](auto words) HWY_ATTR {
        const auto high = hn::And(hn::ShiftRight<6>(words), highMask);
        const auto low = hn::OddEven(hn::ShiftRight<4>(words), words);
        return hn::Or(high, hn::And(low, lowMask));
    });
}

void UnpackGvsp12(const uint8_t* line, size_t count, uint16_t* values)
{
    const hn::ScalableTag<uint16_t> d;
    const auto highMask = hn::Set(d, 0xFF0);
    const auto lowMask = hn::Set(d, 0xF);
    UnpackLine<12>(line, count, values, gvspPlaces, plain::UnpackGvsp<12>, [&](auto words) HWY_ATTR {
        const auto shifted = hn::ShiftRight<4>(words);
        const auto even = hn::Or(hn::And(shifted, highMask), hn::And(words, lowMask));
        return hn::OddEven(shifted, even);
    });
}

void UnpackSwappedWords(const uint8_t* line, size_t count, uint16_t* values)
{
    const hn::ScalableTag<uint16_t> d;
    const hn::ScalableTag<uint8_t> d8;
    const size_t lanes = hn::Lanes(d);
    size_t done = 0;
    for (; done + lanes <= count; done += lanes)
    {
        const auto words = hn::BitCast(d, hn::LoadU(d8, line + 2 * done));
        hn::StoreU(hn::Or(hn::ShiftLeft<8>(words), hn::ShiftRight<8>(words)), d, values + done);
    }
    plain::UnpackSwappedWords(line + 2 * done, count - done, values + done);
}

void Narrow(const uint16_t* values, size_t count, unsigned bits, uint8_t* narrowed)
{
    const hn::ScalableTag<int16_t> ds;
    const hn::RebindToUnsigned<decltype(ds)> d;
    const hn::Rebind<uint8_t, decltype(ds)> d8;
    const auto largest = hn::Set(d, static_cast<uint16_t>((1u << bits) - 1));
    const int shift = static_cast<int>(bits - 8);
    const size_t lanes = hn::Lanes(d);
    size_t done = 0;
    for (; done + lanes <= count; done += lanes)
    {
        const auto value = hn::ShiftRightSame(hn::Min(hn::LoadU(d, values + done), largest), shift);
        hn::StoreU(hn::DemoteTo(d8, hn::BitCast(ds, value)), d8, narrowed + done);
    }
    plain::Narrow(values + done, count - done, bits, narrowed + done);
}

void Stretch(const uint16_t* values, size_t count, unsigned bits, uint16_t* stretched)
{
    const hn::ScalableTag<uint16_t> d;
    const auto largest = hn::Set(d, static_cast<uint16_t>((1u << bits) - 1));
    const int up = static_cast<int>(16 - bits);
    const int down = static_cast<int>(2 * bits - 16);
    const size_t lanes = hn::Lanes(d);
    size_t done = 0;
    for (; done + lanes <= count; done += lanes)
    {
        const auto value = hn::Min(hn::LoadU(d, values + done), largest);
        hn::StoreU(hn::Or(hn::ShiftLeftSame(value, up), hn::ShiftRightSame(value, down)), d, stretched + done);
    }
    plain::Stretch(values + done, count - done, bits, stretched + done);
}

// The mean of four, rounded half up: the mean of two means, less one where both roundings went up needlessly.
template <class V>
HWY_INLINE V MeanOfFour(V a, V b, V c, V d, V one)
{
    const V first = hn::AverageRound(a, b);
    const V second = hn::AverageRound(c, d);
    const V rounded = hn::Or(hn::Xor(a, b), hn::Xor(c, d));
    const V excess = hn::And(hn::And(rounded, hn::Xor(first, second)), one);
    return hn::Sub(hn::AverageRound(first, second), excess);
}

// Even lanes from `even`, odd lanes from `odd`; vectors begin at even columns.
template <bool greenFirst, class V>
HWY_INLINE V Choose(V atGreen, V atOwn)
{
    return greenFirst ? hn::OddEven(atOwn, atGreen) : hn::OddEven(atGreen, atOwn);
}

template <bool greenFirst, class T>
HWY_INLINE void BilinearLine(const T* above, const T* here, const T* below, size_t width, T* own, T* green, T* other)
{
    const hn::ScalableTag<T> d;
    const auto one = hn::Set(d, T{1});
    for (size_t x = 0; x < width; x += hn::Lanes(d))
    {
        const auto up = hn::LoadU(d, above + x);
        const auto down = hn::LoadU(d, below + x);
        const auto left = hn::LoadU(d, here + x - 1);
        const auto right = hn::LoadU(d, here + x + 1);
        const auto center = hn::LoadU(d, here + x);
        const auto corners = MeanOfFour(
            hn::LoadU(d, above + x - 1), hn::LoadU(d, above + x + 1), hn::LoadU(d, below + x - 1),
            hn::LoadU(d, below + x + 1), one);
        hn::StoreU(Choose<greenFirst>(hn::AverageRound(left, right), center), d, own + x);
        hn::StoreU(Choose<greenFirst>(center, MeanOfFour(left, right, up, down, one)), d, green + x);
        hn::StoreU(Choose<greenFirst>(hn::AverageRound(up, down), corners), d, other + x);
    }
}

template <class T>
void Bilinear(const T* above, const T* here, const T* below, size_t width, bool greenFirst, T* own, T* green, T* other)
{
    if (greenFirst) return BilinearLine<true>(above, here, below, width, own, green, other);
    BilinearLine<false>(above, here, below, width, own, green, other);
}

// Signed numbers twice as wide as a sample.
template <class T>
using WideTag = hn::ScalableTag<hwy::MakeSigned<hwy::MakeWide<T>>>;

template <class T>
HWY_INLINE hn::Vec<WideTag<T>> LoadWide(const T* samples)
{
    const WideTag<T> d;
    const hn::Rebind<T, WideTag<T>> narrow;
    return hn::PromoteTo(d, hn::LoadU(narrow, samples));
}

// Demotion limits a value to the range of a sample.
template <class T>
HWY_INLINE void StoreNarrow(hn::Vec<WideTag<T>> wide, T* samples)
{
    const hn::Rebind<T, WideTag<T>> narrow;
    hn::StoreU(hn::DemoteTo(narrow, wide), narrow, samples);
}

template <bool greenFirst, class T>
HWY_INLINE void EdgeGreenLine(const T* const* rows, size_t width, T* green)
{
    const WideTag<T> d;
    const auto one = hn::Set(d, 1);
    const auto two = hn::Set(d, 2);
    for (size_t x = 0; x < width; x += hn::Lanes(d))
    {
        const T* const h = rows[2] + x;
        const auto center = LoadWide(h);
        const auto left = LoadWide(h - 1);
        const auto right = LoadWide(h + 1);
        const auto up = LoadWide(rows[1] + x);
        const auto down = LoadWide(rows[3] + x);
        const auto twice = hn::Add(center, center);
        const auto curveAcross = hn::Sub(twice, hn::Add(LoadWide(h - 2), LoadWide(h + 2)));
        const auto curveDown = hn::Sub(twice, hn::Add(LoadWide(rows[0] + x), LoadWide(rows[4] + x)));
        const auto changeAcross = hn::Add(hn::Abs(hn::Sub(left, right)), hn::Abs(curveAcross));
        const auto changeDown = hn::Add(hn::Abs(hn::Sub(up, down)), hn::Abs(curveDown));
        const auto sumAcross = hn::Add(left, right);
        const auto sumDown = hn::Add(up, down);
        const auto across = hn::ShiftRight<2>(hn::Add(hn::Add(hn::Add(sumAcross, sumAcross), curveAcross), two));
        const auto downward = hn::ShiftRight<2>(hn::Add(hn::Add(hn::Add(sumDown, sumDown), curveDown), two));
        const auto both = hn::ShiftRight<1>(hn::Add(hn::Add(across, downward), one));
        const auto best = hn::IfThenElse(
            hn::Lt(changeAcross, changeDown), across, hn::IfThenElse(hn::Lt(changeDown, changeAcross), downward, both));
        StoreNarrow<T>(Choose<greenFirst>(center, best), green + x);
    }
}

template <class T>
void EdgeGreen(const T* const* rows, size_t width, bool greenFirst, T* green)
{
    if (greenFirst) return EdgeGreenLine<true>(rows, width, green);
    EdgeGreenLine<false>(rows, width, green);
}

template <bool greenFirst, class T>
HWY_INLINE void EdgeColorsLine(const T* const* rows, const T* const* greens, size_t width, T* own, T* other)
{
    const WideTag<T> d;
    const auto one = hn::Set(d, 1);
    const auto two = hn::Set(d, 2);
    const auto difference = [&](size_t row, size_t x, ptrdiff_t step) HWY_ATTR {
        const ptrdiff_t column = static_cast<ptrdiff_t>(x) + step;
        return hn::Sub(LoadWide(rows[row] + column), LoadWide(greens[row] + column));
    };
    for (size_t x = 0; x < width; x += hn::Lanes(d))
    {
        const auto green = LoadWide(greens[1] + x);
        const auto across = hn::Add(difference(1, x, -1), difference(1, x, 1));
        const auto downward = hn::Add(difference(0, x, 0), difference(2, x, 0));
        const auto corners = hn::Add(
            hn::Add(difference(0, x, -1), difference(0, x, 1)), hn::Add(difference(2, x, -1), difference(2, x, 1)));
        const auto ownAtGreen = hn::Add(green, hn::ShiftRight<1>(hn::Add(across, one)));
        const auto otherAtGreen = hn::Add(green, hn::ShiftRight<1>(hn::Add(downward, one)));
        const auto otherAtOwn = hn::Add(green, hn::ShiftRight<2>(hn::Add(corners, two)));
        StoreNarrow<T>(Choose<greenFirst>(ownAtGreen, LoadWide(rows[1] + x)), own + x);
        StoreNarrow<T>(Choose<greenFirst>(otherAtGreen, otherAtOwn), other + x);
    }
}

template <class T>
void EdgeColors(const T* const* rows, const T* const* greens, size_t width, bool greenFirst, T* own, T* other)
{
    if (greenFirst) return EdgeColorsLine<true>(rows, greens, width, own, other);
    EdgeColorsLine<false>(rows, greens, width, own, other);
}

template <class T>
void Interleave3(const T* const* planes, size_t count, T* pixels)
{
    const hn::ScalableTag<T> d;
    const size_t lanes = hn::Lanes(d);
    size_t x = 0;
    for (; x + lanes <= count; x += lanes)
    {
        hn::StoreInterleaved3(
            hn::LoadU(d, planes[0] + x), hn::LoadU(d, planes[1] + x), hn::LoadU(d, planes[2] + x), d, pixels + 3 * x);
    }
    const T* const rest[] = {planes[0] + x, planes[1] + x, planes[2] + x};
    plain::Interleave<3>(rest, count - x, pixels + 3 * x);
}

template <class T>
void Interleave4(const T* const* planes, size_t count, T* pixels)
{
    const hn::ScalableTag<T> d;
    const size_t lanes = hn::Lanes(d);
    size_t x = 0;
    for (; x + lanes <= count; x += lanes)
    {
        hn::StoreInterleaved4(
            hn::LoadU(d, planes[0] + x), hn::LoadU(d, planes[1] + x), hn::LoadU(d, planes[2] + x),
            hn::LoadU(d, planes[3] + x), d, pixels + 4 * x);
    }
    const T* const rest[] = {planes[0] + x, planes[1] + x, planes[2] + x, planes[3] + x};
    plain::Interleave<4>(rest, count - x, pixels + 4 * x);
}

template <class T>
void Deinterleave3(const T* pixels, size_t count, T* const* planes)
{
    const hn::ScalableTag<T> d;
    const size_t lanes = hn::Lanes(d);
    size_t x = 0;
    for (; x + lanes <= count; x += lanes)
    {
        hn::Vec<decltype(d)> a, b, c;
        hn::LoadInterleaved3(d, pixels + 3 * x, a, b, c);
        hn::StoreU(a, d, planes[0] + x);
        hn::StoreU(b, d, planes[1] + x);
        hn::StoreU(c, d, planes[2] + x);
    }
    T* const rest[] = {planes[0] + x, planes[1] + x, planes[2] + x};
    plain::Deinterleave<3>(pixels + 3 * x, count - x, rest);
}

template <class T>
void Deinterleave4(const T* pixels, size_t count, T* const* planes)
{
    const hn::ScalableTag<T> d;
    const size_t lanes = hn::Lanes(d);
    size_t x = 0;
    for (; x + lanes <= count; x += lanes)
    {
        hn::Vec<decltype(d)> a, b, c, e;
        hn::LoadInterleaved4(d, pixels + 4 * x, a, b, c, e);
        hn::StoreU(a, d, planes[0] + x);
        hn::StoreU(b, d, planes[1] + x);
        hn::StoreU(c, d, planes[2] + x);
        hn::StoreU(e, d, planes[3] + x);
    }
    T* const rest[] = {planes[0] + x, planes[1] + x, planes[2] + x, planes[3] + x};
    plain::Deinterleave<4>(pixels + 4 * x, count - x, rest);
}

// Products of 8-bit samples and weights of 1/256 stay within 16 bits, as their sum does.
void Luma8(const uint8_t* red, const uint8_t* green, const uint8_t* blue, size_t count, uint8_t* brightness)
{
    const hn::ScalableTag<uint16_t> d;
    const hn::ScalableTag<int16_t> ds;
    const hn::Rebind<uint8_t, decltype(d)> d8;
    const auto weighted = [&](const uint8_t* samples, uint16_t weight) HWY_ATTR {
        return hn::Mul(hn::PromoteTo(d, hn::LoadU(d8, samples)), hn::Set(d, weight));
    };
    const size_t lanes = hn::Lanes(d);
    size_t x = 0;
    for (; x + lanes <= count; x += lanes)
    {
        const auto sum = hn::Add(
            hn::Add(weighted(red + x, 77), weighted(green + x, 150)), hn::Add(weighted(blue + x, 29), hn::Set(d, 128)));
        hn::StoreU(hn::DemoteTo(d8, hn::BitCast(ds, hn::ShiftRight<8>(sum))), d8, brightness + x);
    }
    plain::Luma(red + x, green + x, blue + x, count - x, brightness + x);
}

template <class T>
constexpr PixelKernels<T> PixelTable(decltype(PixelKernels<T>::luma) luma)
{
    return {Bilinear<T>,    EdgeGreen<T>,     EdgeColors<T>,    Interleave3<T>,
            Interleave4<T>, Deinterleave3<T>, Deinterleave4<T>, luma};
}

const Kernels& TargetKernels()
{
    static const Kernels kernels = {
        hwy::TargetName(HWY_TARGET),
        UnpackDense10,
        UnpackDense12,
        UnpackGvsp10,
        UnpackGvsp12,
        UnpackSwappedWords,
        Narrow,
        Stretch,
        PixelTable<uint8_t>(Luma8),
        PixelTable<uint16_t>(plain::Luma<uint16_t>),
    };
    return kernels;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace koro::image
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

namespace koro::image
{

namespace
{

struct SupportedList
{
    const Kernels* kernels[8];
    size_t count = 0;
    void Add(int64_t target, const Kernels& (*tableOf)())
    {
        if ((hwy::SupportedTargets() & target) != 0) kernels[count++] = &tableOf();
    }
};

SupportedList FindSupported()
{
    SupportedList list;
#if (HWY_TARGETS & HWY_AVX3) != 0
    list.Add(HWY_AVX3, N_AVX3::TargetKernels);
#endif
#if (HWY_TARGETS & HWY_AVX2) != 0
    list.Add(HWY_AVX2, N_AVX2::TargetKernels);
#endif
#if (HWY_TARGETS & HWY_SSE4) != 0
    list.Add(HWY_SSE4, N_SSE4::TargetKernels);
#endif
#if (HWY_TARGETS & HWY_NEON) != 0
    list.Add(HWY_NEON, N_NEON::TargetKernels);
#endif
    list.kernels[list.count++] = &PlainKernels();
    return list;
}

} // namespace

std::span<const Kernels* const> SupportedKernels()
{
    static const SupportedList list = FindSupported();
    return {list.kernels, list.count};
}

} // namespace koro::image
#endif
