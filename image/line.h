// Line: a buffer for one line, with extra elements at both ends for kernels that read and write whole vectors.
#pragma once

#include "image/kernels.h"

#include <cstddef>
#include <vector>

namespace koro::image
{

template <class T>
class Line
{
public:
    Line() = default;
    explicit Line(size_t width) : samples((width + lineMargin - 1) / lineMargin * lineMargin + 2 * lineMargin) {}
    // Column 0; null for a line without a width.
    T* Pixels() { return samples.empty() ? nullptr : samples.data() + lineMargin; }
    const T* Pixels() const { return samples.empty() ? nullptr : samples.data() + lineMargin; }

private:
    std::vector<T> samples;
};

} // namespace koro::image
