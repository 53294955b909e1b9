// Frame object: what is known of one frame, as JSON. One thread at a time.
#pragma once

#include "tools/koro/delivered_frame.h"
#include <koro/koro.hpp>

#include <cstdint>
#include <nlohmann/json_fwd.hpp>

namespace koro::tool
{

// `number` counts the frames that came. What the producer does not know is null.
nlohmann::json DescribeFrame(const Buffer& buffer, const DeliveredFrame& frame, uint64_t number);

} // namespace koro::tool
