// Point clouds: from a range part to places in space. Pure functions. Any thread.
#pragma once

#include "tools/koro/frame_part.h"
#include "tools/koro/picture.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace koro::tool
{

// From a number of the camera to a coordinate: number * scale + offset, in the camera's unit of distance.
struct CoordinateAxis
{
    double scale = 1;
    double offset = 0;
};

// What the camera's features Scan3d... say of its range parts.
struct Scan3D
{
    std::string outputMode; // the entry of Scan3dOutputMode
    std::array<CoordinateAxis, 3> axes;
    std::optional<double> invalidValue; // of coordinate C as it was sent: no place
    double focalLength = 0;             // pixels
    double principalPointU = 0;         // pixels
    double principalPointV = 0;
    std::optional<double> rangeLimit{}; // from the origin; what is farther away is left out
};

struct PointCloud
{
    std::vector<float> coordinates; // x, y and z of each point
    std::vector<uint8_t> colours;   // red, green and blue of each point; empty for a cloud without
    uint64_t numLeftOut = 0;        // points beyond the range limit

    size_t NumPoints() const { return coordinates.size() / 3; }
};

// The valid places of a range part in the order of its pixels. Places are known for formats of three coordinates, and
// for distances alone in the output modes RectifiedC and ProjectedC; otherwise, and for a part that is shorter than its
// layout, empty. `colours` and `confidence` are used where their size is that of the part; both may be null.
std::optional<PointCloud> ToPointCloud(
    const FramePart& range, const Scan3D& geometry, const Picture* colours, const Picture* confidence);

} // namespace koro::tool
