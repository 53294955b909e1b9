// The stream that commands take of a camera: its first.
#pragma once

#include "tools/koro/tool_error.h"
#include <koro/koro.hpp>

namespace koro::tool
{

// Throws koro::Error, or ToolError when there is none.
inline DataStream OpenFirstStream(const Device& device)
{
    const auto streams = device.DataStreams();
    if (streams.empty()) throw ToolError("The camera has no data stream.");
    return streams.front().OpenDataStream();
}

} // namespace koro::tool
