// The registers of a camera that measures distances.
#include "producers/simulator/camera/register_settings.h"
#include "producers/simulator/frames/surface.h"

namespace koro::simulator
{
namespace
{

constexpr std::size_t firstFormatBit = 42; // of Coord3D_C16 in the words of the formats

} // namespace

void CameraFeatures::AddScan3d()
{
    map.AddInteger(registers::HasScan3d, sensor.measures ? 1 : 0);
    if (!sensor.measures) return;
    AddNumber(registers::Scan3dOutputModeReg, &FeatureValues::scan3dMode);
    for (std::uint32_t index = 0; index < numPartKinds; ++index)
    {
        const auto kind = static_cast<PartKind>(index);
        AddSetting(
            registers::ComponentEnableReg.At(index), [this, index] { return state.values.partSet >> index & 1; },
            [this, kind](std::uint64_t wanted) { state.values.SetPart(kind, wanted); });
        if (kind == PartKind::Intensity) continue;
        const std::uint64_t code = FormatOf(kind).code;
        AddSetting(
            registers::PixelFormatReg.At(index), [code] { return code; },
            [code](std::uint64_t wanted) {
                if (wanted != code) RefuseValue("the component has one format");
            });
        map.AddInteger(registers::HasMono8.At(index), 0);
        map.AddInteger(registers::HasCoord3D.At(index), std::uint64_t{1} << (firstFormatBit - 32 + index - 1));
    }
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
        map.AddFloat(registers::Scan3dCoordinateScale.At(axis), [this, axis] { return Coordinate(axis).scale_mm; });
        map.AddFloat(registers::Scan3dCoordinateOffset.At(axis), [this, axis] { return Coordinate(axis).offset_mm; });
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
