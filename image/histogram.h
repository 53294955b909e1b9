// Histograms and figures of the samples of one component. Pure functions. Any thread.
#pragma once

#include "image/layout.h"
#include <koro/image.h>

#include <vector>

namespace koro::image
{

// One number for each value of the component's bits, at most 16.
std::vector<uint64_t> HistogramOf(
    const Layout& layout, const uint8_t* data, const KIMG_REGION& region, unsigned component);

// Throws Failure if no sample is a finite number.
KIMG_STATISTICS StatisticsOf(const Layout& layout, const uint8_t* data, const KIMG_REGION& region, unsigned component);

} // namespace koro::image
