// Highway compiles this file once for each target: everything between HWY_BEFORE_NAMESPACE and HWY_AFTER_NAMESPACE
// exists several times. The scalar target, for processors without any other, takes the plain versions.
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "image/simd.cpp"
// Every processor with SSSE3 that is still in use has SSE4 too. AVX-512 was slower than AVX2 in nearly all loops:
// they wait for memory, and interleaving costs more in wide vectors.
#ifndef HWY_DISABLED_TARGETS
#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3)
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

// Calls `store(x, own, green, other)` for each vector.
template <bool greenFirst, class T, class Store>
HWY_INLINE void BilinearLine(const T* above, const T* here, const T* below, size_t width, const Store& store)
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
        store(
            x, Choose<greenFirst>(hn::AverageRound(left, right), center),
            Choose<greenFirst>(center, MeanOfFour(left, right, up, down, one)),
            Choose<greenFirst>(hn::AverageRound(up, down), corners));
    }
}

template <class T>
void Bilinear(const T* above, const T* here, const T* below, size_t width, bool greenFirst, T* own, T* green, T* other)
{
    const auto store = [=](size_t x, auto atOwn, auto atGreen, auto atOther) HWY_ATTR {
        const hn::ScalableTag<T> d;
        hn::StoreU(atOwn, d, own + x);
        hn::StoreU(atGreen, d, green + x);
        hn::StoreU(atOther, d, other + x);
    };
    if (greenFirst) return BilinearLine<true>(above, here, below, width, store);
    BilinearLine<false>(above, here, below, width, store);
}

template <class V, class T>
HWY_INLINE void StoreColors(V own, V green, V other, bool ownFirst, T* pixels)
{
    const hn::ScalableTag<T> d;
    if (ownFirst) return hn::StoreInterleaved3(own, green, other, d, pixels);
    hn::StoreInterleaved3(other, green, own, d, pixels);
}

// Whole vectors go to the pixels at once, which lets the memory work while the next ones are computed.
template <class T>
void BilinearPixels(
    const T* above, const T* here, const T* below, size_t width, bool greenFirst, bool ownFirst, T* const* scratch,
    T* pixels)
{
    const hn::ScalableTag<T> d;
    const size_t whole = width / hn::Lanes(d) * hn::Lanes(d);
    const auto store = [=](size_t x, auto own, auto green, auto other)
                           HWY_ATTR { StoreColors(own, green, other, ownFirst, pixels + 3 * x); };
    if (greenFirst)
        BilinearLine<true>(above, here, below, whole, store);
    else
        BilinearLine<false>(above, here, below, whole, store);
    plain::BilinearPixels(
        above + whole, here + whole, below + whole, width - whole, greenFirst, ownFirst, scratch, pixels + 3 * whole);
}

template <class T>
using WideTag = hn::ScalableTag<Wide<T>>;

template <class T>
constexpr int bitsOf = 8 * sizeof(T);

// A pair of samples fills a lane of the wide numbers; the even one is the lower half.
template <class T>
void Split(const T* samples, size_t numPairs, Wide<T>* even, Wide<T>* odd)
{
    const WideTag<T> d;
    const hn::RebindToUnsigned<WideTag<T>> pairs;
    const hn::ScalableTag<T> narrow;
    const auto lower = hn::Set(pairs, static_cast<T>(~T{0}));
    for (size_t i = 0; i < numPairs; i += hn::Lanes(d))
    {
        const auto both = hn::BitCast(pairs, hn::LoadU(narrow, samples + 2 * i));
        hn::StoreU(hn::BitCast(d, hn::And(both, lower)), d, even + i);
        hn::StoreU(hn::BitCast(d, hn::ShiftRight<bitsOf<T>>(both)), d, odd + i);
    }
}

// `even` and `odd` are within the range of a sample.
template <class T>
HWY_INLINE hn::Vec<hn::ScalableTag<T>> JoinPairs(hn::Vec<WideTag<T>> even, hn::Vec<WideTag<T>> odd)
{
    const hn::ScalableTag<T> narrow;
    return hn::BitCast(narrow, hn::Or(even, hn::ShiftLeft<bitsOf<T>>(odd)));
}

template <class T>
HWY_INLINE hn::Vec<WideTag<T>> LimitedToSamples(hn::Vec<WideTag<T>> wide)
{
    const WideTag<T> d;
    return hn::Min(hn::Max(wide, hn::Zero(d)), hn::Set(d, static_cast<T>(~T{0})));
}

template <class T>
void EdgeGreen(const EdgeGreenInput<T>& in, size_t count, Wide<T>* green, Wide<T>* difference)
{
    const WideTag<T> d;
    const auto one = hn::Set(d, 1);
    const auto two = hn::Set(d, 2);
    for (size_t i = 0; i < count; i += hn::Lanes(d))
    {
        const auto own = hn::LoadU(d, in.own + i);
        const auto left = hn::LoadU(d, in.left + i);
        const auto right = hn::LoadU(d, in.left + i + 1);
        const auto up = hn::LoadU(d, in.up + i);
        const auto down = hn::LoadU(d, in.down + i);
        const auto twice = hn::Add(own, own);
        const auto curveAcross = hn::Sub(twice, hn::Add(hn::LoadU(d, in.own + i - 1), hn::LoadU(d, in.own + i + 1)));
        const auto curveDown = hn::Sub(twice, hn::Add(hn::LoadU(d, in.up2 + i), hn::LoadU(d, in.down2 + i)));
        const auto changeAcross = hn::Add(hn::Abs(hn::Sub(left, right)), hn::Abs(curveAcross));
        const auto changeDown = hn::Add(hn::Abs(hn::Sub(up, down)), hn::Abs(curveDown));
        const auto sumAcross = hn::Add(left, right);
        const auto sumDown = hn::Add(up, down);
        const auto across = hn::ShiftRight<2>(hn::Add(hn::Add(hn::Add(sumAcross, sumAcross), curveAcross), two));
        const auto downward = hn::ShiftRight<2>(hn::Add(hn::Add(hn::Add(sumDown, sumDown), curveDown), two));
        const auto both = hn::ShiftRight<1>(hn::Add(hn::Add(across, downward), one));
        const auto best = LimitedToSamples<T>(hn::IfThenElse(
            hn::Lt(changeAcross, changeDown), across,
            hn::IfThenElse(hn::Lt(changeDown, changeAcross), downward, both)));
        hn::StoreU(best, d, green + i);
        hn::StoreU(hn::Sub(own, best), d, difference + i);
    }
}

// Calls `store(x, own, green, other)` for each vector of pixels.
template <bool greenFirst, class T, class Store>
HWY_INLINE void EdgeColorsLine(const EdgeColorsInput<T>& in, size_t numPairs, const Store& store)
{
    const WideTag<T> d;
    const auto one = hn::Set(d, 1);
    const auto two = hn::Set(d, 2);
    const auto join = [](auto atOwn, auto atGreen)
                          HWY_ATTR { return greenFirst ? JoinPairs<T>(atGreen, atOwn) : JoinPairs<T>(atOwn, atGreen); };
    const auto neighbours = [](const Wide<T>* entries) HWY_ATTR {
        const WideTag<T> tag;
        return hn::Add(hn::LoadU(tag, entries), hn::LoadU(tag, entries + 1));
    };
    for (size_t i = 0; i < numPairs; i += hn::Lanes(d))
    {
        const auto plainGreen = hn::LoadU(d, in.green + i);
        const auto greenAtOwn = hn::LoadU(d, in.greenAtOwn + i);
        const auto across = neighbours(in.across + i);
        const auto downward = hn::Add(hn::LoadU(d, in.above + i), hn::LoadU(d, in.below + i));
        const auto corners = hn::Add(neighbours(in.cornersAbove + i), neighbours(in.cornersBelow + i));
        const auto ownAtGreen = hn::Add(plainGreen, hn::ShiftRight<1>(hn::Add(across, one)));
        const auto otherAtGreen = hn::Add(plainGreen, hn::ShiftRight<1>(hn::Add(downward, one)));
        const auto otherAtOwn = hn::Add(greenAtOwn, hn::ShiftRight<2>(hn::Add(corners, two)));
        store(
            2 * i, join(hn::LoadU(d, in.own + i), LimitedToSamples<T>(ownAtGreen)), join(greenAtOwn, plainGreen),
            join(LimitedToSamples<T>(otherAtOwn), LimitedToSamples<T>(otherAtGreen)));
    }
}

template <class T>
void EdgeColors(const EdgeColorsInput<T>& in, size_t numPairs, T* own, T* green, T* other)
{
    const auto store = [=](size_t x, auto atOwn, auto atGreen, auto atOther) HWY_ATTR {
        const hn::ScalableTag<T> d;
        hn::StoreU(atOwn, d, own + x);
        hn::StoreU(atGreen, d, green + x);
        hn::StoreU(atOther, d, other + x);
    };
    if (in.greenFirst) return EdgeColorsLine<true>(in, numPairs, store);
    EdgeColorsLine<false>(in, numPairs, store);
}

template <class T>
void EdgePixels(const EdgeColorsInput<T>& in, size_t width, bool ownFirst, T* const* scratch, T* pixels)
{
    const hn::ScalableTag<T> d;
    const size_t whole = width / hn::Lanes(d) * hn::Lanes(d);
    const auto store = [=](size_t x, auto own, auto green, auto other)
                           HWY_ATTR { StoreColors(own, green, other, ownFirst, pixels + 3 * x); };
    if (in.greenFirst)
        EdgeColorsLine<true>(in, whole / 2, store);
    else
        EdgeColorsLine<false>(in, whole / 2, store);
    plain::EdgePixels(From(in, whole / 2), width - whole, ownFirst, scratch, pixels + 3 * whole);
}

// Sums of 32 bits; results of 16 bits need more and take the plain version.
void Colors8(const uint16_t* const* components, size_t width, const ColorMatrix& matrix, uint8_t* const* rgb)
{
    const hn::ScalableTag<int32_t> d;
    const hn::Rebind<uint16_t, decltype(d)> words;
    const hn::Rebind<uint8_t, decltype(d)> bytes;
    const auto factor = [&](int64_t number) HWY_ATTR { return hn::Set(d, static_cast<int32_t>(number)); };
    const auto y = factor(matrix.y), redOfCr = factor(matrix.redOfCr), greenOfCb = factor(matrix.greenOfCb);
    const auto greenOfCr = factor(matrix.greenOfCr), blueOfCb = factor(matrix.blueOfCb);
    const auto offset = hn::Set(d, matrix.offset), neutral = hn::Set(d, matrix.neutral);
    const auto half = hn::Set(d, 1 << (matrixFraction<uint8_t> - 1));
    const auto load = [&](const uint16_t* samples) HWY_ATTR { return hn::PromoteTo(d, hn::LoadU(words, samples)); };
    for (size_t x = 0; x < width; x += hn::Lanes(d))
    {
        const auto base = hn::Add(hn::Mul(hn::Sub(load(components[0] + x), offset), y), half);
        const auto cb = hn::Sub(load(components[1] + x), neutral);
        const auto cr = hn::Sub(load(components[2] + x), neutral);
        const auto store = [&](auto sum, uint8_t* samples) HWY_ATTR {
            hn::StoreU(hn::DemoteTo(bytes, hn::ShiftRight<matrixFraction<uint8_t>>(sum)), bytes, samples);
        };
        store(hn::Add(base, hn::Mul(cr, redOfCr)), rgb[0] + x);
        store(hn::Add(base, hn::Add(hn::Mul(cb, greenOfCb), hn::Mul(cr, greenOfCr))), rgb[1] + x);
        store(hn::Add(base, hn::Mul(cb, blueOfCb)), rgb[2] + x);
    }
}

void BytesToWords(const uint8_t* line, size_t count, uint16_t* values)
{
    const hn::ScalableTag<uint16_t> d;
    const hn::Rebind<uint8_t, decltype(d)> bytes;
    const size_t lanes = hn::Lanes(d);
    size_t done = 0;
    for (; done + lanes <= count; done += lanes)
        hn::StoreU(hn::PromoteTo(d, hn::LoadU(bytes, line + done)), d, values + done);
    plain::BytesToWords(line + done, count - done, values + done);
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
constexpr PixelKernels<T> PixelTable(decltype(PixelKernels<T>::luma) luma, decltype(PixelKernels<T>::colors) colors)
{
    return {Bilinear<T>,    BilinearPixels<T>, Split<T>,         EdgeGreen<T>,     EdgeColors<T>, EdgePixels<T>,
            Interleave3<T>, Interleave4<T>,    Deinterleave3<T>, Deinterleave4<T>, luma,          colors};
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
        BytesToWords,
        Narrow,
        Stretch,
        PixelTable<uint8_t>(Luma8, Colors8),
        PixelTable<uint16_t>(plain::Luma<uint16_t>, plain::Colors<uint16_t>),
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
