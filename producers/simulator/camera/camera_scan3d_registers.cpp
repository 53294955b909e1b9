// The registers of a camera that measures distances.
#include "producers/simulator/camera/camera_features.h"
#include "producers/simulator/frames/surface.h"

namespace koro::simulator
{
namespace
{

constexpr std::uint64_t componentStep = 0xA00; // between the registers of PixelFormat[ComponentSelector]
constexpr std::size_t firstFormatBit = 42;     // of Coord3D_C16 in the words of the formats

} // namespace

void CameraFeatures::AddScan3d()
{
    map.AddInteger(0xD2C, 4, sensor.measures ? 1 : 0);
    if (!sensor.measures) return;
    AddNumber(0xD00, &FeatureValues::scan3dMode, 0, 1, Lock::WithFormat);
    for (std::uint32_t index = 0; index < numPartKinds; ++index)
    {
        const auto kind = static_cast<PartKind>(index);
        map.AddInteger(
            0xD20 + 4 * index, 4, [this, index] { return state.values.partSet >> index & 1; },
            [this, kind](std::uint64_t wanted) {
                RequireUnlocked();
                state.values.SetPart(kind, wanted);
            });
        if (kind == PartKind::Intensity) continue;
        const std::uint64_t code = FormatOf(kind).code;
        map.AddInteger(
            0x308 + componentStep * index, 4, [code] { return code; },
            [this, code](std::uint64_t wanted) {
                RequireUnlocked();
                if (wanted != code) RefuseValue("the component has one format");
            });
        map.AddInteger(0x380 + componentStep * index, 4, 0);
        map.AddInteger(0x384 + componentStep * index, 4, std::uint64_t{1} << (firstFormatBit - 32 + index - 1));
    }
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
        map.AddFloat(0xD30 + 8 * axis, 8, [this, axis] { return Coordinate(axis).scale_mm; });
        map.AddFloat(0xD48 + 8 * axis, 8, [this, axis] { return Coordinate(axis).offset_mm; });
    }
}

CameraFeatures::Line CameraFeatures::Coordinate(std::size_t axis) const
{
    if (state.values.scan3dMode == 0) return {1, 0};
    if (axis == 2) return {rangeScale_mm, rangeOffset_mm};
    const Axis pixels = axis == 0 ? state.values.AxisX(sensor) : state.values.AxisY(sensor);
    const auto step = static_cast<double>(pixels.binning) * (pixels.reverse ? -pixelPitch_mm : pixelPitch_mm);
    const double middle = static_cast<double>(axis == 0 ? sensor.width : sensor.height) / 2;
    return {step, (static_cast<double>(pixels.SensorAt(0)) - middle) * pixelPitch_mm};
}

} // namespace koro::simulator
