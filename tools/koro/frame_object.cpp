#include "tools/koro/frame_object.h"

#include "tools/koro/if_known.h"
#include "tools/koro/pixel_format.h"

#include <nlohmann/json.hpp>
#include <string>

namespace koro::tool
{

namespace
{

using nlohmann::json;

const char* NameOf(FrameState state)
{
    switch (state)
    {
    case FrameState::Whole:
        return "whole";
    case FrameState::Incomplete:
        return "incomplete";
    case FrameState::Empty:
        break;
    }
    return "empty";
}

template <typename Read>
json ValueOf(const Read& read)
{
    const auto value = IfKnown(read);
    return value ? json(*value) : json();
}

} // namespace

json DescribeFrame(const Buffer& buffer, const DeliveredFrame& frame, uint64_t number)
{
    return {
        {"frame", number},
        {"state", NameOf(frame.state)},
        {"bytes", frame.size},
        {"id", ValueOf([&] { return buffer.FrameID(); })},
        {"timestamp_ns", ValueOf([&] { return buffer.Timestamp_ns(); })},
        {"width", ValueOf([&] { return buffer.Width(); })},
        {"height", ValueOf([&] { return buffer.Height(); })},
        {"pixelFormat", ValueOf([&] { return PixelFormatName(buffer.PixelFormat()); })},
        {"problem", frame.problem.empty() ? json() : json(frame.problem)},
        {"files", json::array()},
    };
}

} // namespace koro::tool
