#include "tools/koro/frame_reader.h"

#include "tools/koro/if_known.h"
#include "tools/koro/tool_error.h"

#include <cstring>
#include <string>

namespace koro::tool
{

namespace
{

// PFNC and the older GigE Vision list share their codes; a producer that names no list means one of these.
bool IsKnownList(uint64_t list)
{
    return list == KORO_PIXELFORMAT_NAMESPACE_UNKNOWN || list == KORO_PIXELFORMAT_NAMESPACE_GEV ||
           list == KORO_PIXELFORMAT_NAMESPACE_PFNC_32BIT;
}

void CheckList(uint64_t list)
{
    if (IsKnownList(list)) return;
    throw UnknownPixelFormat(
        "The frames' pixel format belongs to list " + std::to_string(list) + ", which the tool does not know.",
        "Save the frames as they are with --format raw.");
}

bool IsBigEndian(const Buffer& buffer)
{
    return IfKnown([&] { return buffer.PixelEndianness(); }).value_or(0) == KORO_PIXELENDIANNESS_BIG;
}

PartKind KindOf(int32_t type)
{
    switch (type)
    {
    case KORO_PART_DATATYPE_2D_IMAGE:
    case KORO_PART_DATATYPE_2D_PLANE_BIPLANAR:
    case KORO_PART_DATATYPE_2D_PLANE_TRIPLANAR:
    case KORO_PART_DATATYPE_2D_PLANE_QUADPLANAR:
        return PartKind::Image;
    case KORO_PART_DATATYPE_3D_IMAGE:
    case KORO_PART_DATATYPE_3D_PLANE_BIPLANAR:
    case KORO_PART_DATATYPE_3D_PLANE_TRIPLANAR:
    case KORO_PART_DATATYPE_3D_PLANE_QUADPLANAR:
        return PartKind::Range;
    case KORO_PART_DATATYPE_CONFIDENCE_MAP:
        return PartKind::Confidence;
    case KORO_PART_DATATYPE_JPEG:
        return PartKind::JPEG;
    case KORO_PART_DATATYPE_JPEG2000:
        return PartKind::JPEG2000;
    default:
        return PartKind::Data;
    }
}

// A tag of a part, which a producer need not know.
std::optional<uint64_t> TagOf(const BufferPart& part, int32_t command)
{
    const auto info = IfKnown([&] { return part.Info(command); });
    uint64_t tag = 0;
    if (!info || info->bytes.size() != sizeof tag) return std::nullopt;
    std::memcpy(&tag, info->bytes.data(), sizeof tag);
    return tag;
}

// Components by the naming convention of features.
bool IsMeasurement(std::optional<uint64_t> purpose)
{
    constexpr uint64_t range = 4;
    constexpr uint64_t disparity = 8;
    return purpose == range || purpose == disparity;
}

FramePart ReadPart(const BufferPart& part, const FrameBytes& bytes, bool bigEndian)
{
    FramePart read;
    const auto start = reinterpret_cast<uintptr_t>(part.BasePtr()) - reinterpret_cast<uintptr_t>(bytes.data);
    read.size = part.Size();
    // A start below the memory wraps round to a large number.
    if (start > bytes.size || read.size > bytes.size - start)
        throw ToolError("The producer places a part of the frame outside of the buffer.");
    read.bytes = bytes.data + start;
    read.kind = KindOf(part.Type());
    read.purpose = TagOf(part, KORO_BUFFER_PART_INFO_DATA_PURPOSE_ID);
    read.region = TagOf(part, KORO_BUFFER_PART_INFO_REGION_ID);
    read.isMeasurement = IsMeasurement(read.purpose);
    const bool hasPixels =
        read.kind == PartKind::Image || read.kind == PartKind::Range || read.kind == PartKind::Confidence;
    if (!hasPixels) return read;

    const uint64_t list = IfKnown([&] { return part.FormatNamespace(); }).value_or(KORO_PIXELFORMAT_NAMESPACE_UNKNOWN);
    if (!IsKnownList(list))
    {
        read.kind = PartKind::Data;
        return read;
    }
    read.layout.pixelFormat = part.Format();
    read.layout.width = part.Width();
    read.layout.height = part.Height();
    read.layout.xPadding = IfKnown([&] { return part.XPadding(); }).value_or(0);
    read.layout.bigEndian = bigEndian;
    return read;
}

// What a camera need not have.
std::optional<double> NumberOf(const NodeMap& nodes, const char* name)
{
    return IfKnown([&] {
        const Node node = nodes.Node(name);
        return node.Type() == KORO_NODE_TYPE_INTEGER ? static_cast<double>(node.ToInteger().Value())
                                                     : node.ToFloat().Value();
    });
}

void ReadAxis(const NodeMap& nodes, CoordinateAxis& axis)
{
    axis.scale = NumberOf(nodes, "Scan3dCoordinateScale").value_or(1);
    axis.offset = NumberOf(nodes, "Scan3dCoordinateOffset").value_or(0);
}

void ReadAxes(const NodeMap& nodes, Scan3D& geometry)
{
    const Node selectorNode = nodes.TryNode("Scan3dCoordinateSelector");
    if (!selectorNode || !selectorNode.IsWritable()) return ReadAxis(nodes, geometry.axes[2]);

    const EnumerationNode selector = selectorNode.ToEnumeration();
    const std::string before = selector.CurrentEntry().SymbolicValue();
    const char* const names[] = {"CoordinateA", "CoordinateB", "CoordinateC"};
    for (size_t axis = 0; axis < 3; ++axis)
    {
        const bool isThere = IfKnown([&] { return selector.SetCurrentEntry(names[axis]), true; }).has_value();
        if (!isThere) continue;
        ReadAxis(nodes, geometry.axes[axis]);
        if (axis != 2) continue;
        const bool marks = IfKnown([&] { return nodes.Boolean("Scan3dInvalidDataFlag").Value(); }).value_or(false);
        if (marks) geometry.invalidValue = NumberOf(nodes, "Scan3dInvalidDataValue");
    }
    selector.SetCurrentEntry(before);
}

} // namespace

bool IsMultiPart(const Buffer& buffer)
{
    return IfKnown([&] { return buffer.PayloadType(); }) == KORO_PAYLOAD_TYPE_MULTI_PART;
}

bool HasPlainImage(const Buffer& buffer)
{
    const int32_t type = IfKnown([&] { return buffer.PayloadType(); }).value_or(KORO_PAYLOAD_TYPE_UNKNOWN);
    return type == KORO_PAYLOAD_TYPE_UNKNOWN || type == KORO_PAYLOAD_TYPE_IMAGE || type == KORO_PAYLOAD_TYPE_CHUNK_DATA;
}

FramePart ReadImage(const Buffer& buffer, const FrameBytes& bytes)
{
    CheckList(IfKnown([&] {
                  return static_cast<uint64_t>(buffer.PixelFormatNamespace());
              }).value_or(KORO_PIXELFORMAT_NAMESPACE_UNKNOWN));
    FramePart image;
    image.bytes = bytes.data;
    image.size = bytes.size;
    image.layout.pixelFormat = buffer.PixelFormat();
    image.layout.width = buffer.Width();
    image.layout.height = buffer.Height();
    image.layout.xPadding = IfKnown([&] { return buffer.XPadding(); }).value_or(0);
    image.layout.imageOffset = IfKnown([&] { return buffer.ImageOffset(); }).value_or(0);
    image.layout.bigEndian = IsBigEndian(buffer);
    return image;
}

std::vector<FramePart> ReadParts(const Buffer& buffer, const FrameBytes& bytes)
{
    const bool bigEndian = IsBigEndian(buffer);
    std::vector<FramePart> parts;
    for (const BufferPart& part : buffer.Parts())
        parts.push_back(ReadPart(part, bytes, bigEndian));
    return parts;
}

std::optional<Scan3D> ReadScan3D(const NodeMap& nodes)
{
    const Node mode = nodes ? nodes.TryNode("Scan3dOutputMode") : Node();
    if (!mode || !mode.IsReadable()) return std::nullopt;

    Scan3D geometry;
    geometry.outputMode = mode.ToEnumeration().CurrentEntry().SymbolicValue();
    ReadAxes(nodes, geometry);
    geometry.focalLength = NumberOf(nodes, "Scan3dFocalLength").value_or(0);
    geometry.principalPointU = NumberOf(nodes, "Scan3dPrincipalPointU").value_or(0);
    geometry.principalPointV = NumberOf(nodes, "Scan3dPrincipalPointV").value_or(0);
    return geometry;
}

} // namespace koro::tool
