#include "image/kernels.h"

#include "image/plain.h"

#include <atomic>

namespace koro::image
{

namespace
{

template <class T>
constexpr PixelKernels<T> plainPixels = {
    plain::Bilinear<T>,        plain::BilinearPixels<T>,  plain::Split<T>,         plain::EdgeGreen<T>,
    plain::EdgeColors<T>,      plain::EdgePixels<T>,      plain::Interleave<3, T>, plain::Interleave<4, T>,
    plain::Deinterleave<3, T>, plain::Deinterleave<4, T>, plain::Luma<T>,          plain::Colors<T>,
};

constexpr Kernels plainKernels = {
    "plain",
    plain::UnpackDense<10>,
    plain::UnpackDense<12>,
    plain::UnpackGvsp<10>,
    plain::UnpackGvsp<12>,
    plain::UnpackSwappedWords,
    plain::BytesToWords,
    plain::Narrow,
    plain::Stretch,
    plainPixels<uint8_t>,
    plainPixels<uint16_t>,
};

constinit std::atomic<const Kernels*> chosenKernels{nullptr};

} // namespace

const Kernels& PlainKernels()
{
    return plainKernels;
}

const Kernels& ChosenKernels()
{
    const Kernels* const chosen = chosenKernels.load(std::memory_order_relaxed);
    return chosen ? *chosen : *SupportedKernels().front();
}

void ChooseKernels(const Kernels* kernels)
{
    chosenKernels.store(kernels, std::memory_order_relaxed);
}

} // namespace koro::image
