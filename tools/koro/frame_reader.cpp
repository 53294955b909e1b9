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

// Of the payload types that are no pixels; null for the others, those that the standard does not define included.
const char* NameWithoutPixels(int32_t payloadType)
{
    switch (payloadType)
    {
    case KORO_PAYLOAD_TYPE_RAW_DATA:
        return "raw data";
    case KORO_PAYLOAD_TYPE_FILE:
        return "file";
    case KORO_PAYLOAD_TYPE_JPEG:
        return "JPEG";
    case KORO_PAYLOAD_TYPE_JPEG2000:
        return "JPEG 2000";
    case KORO_PAYLOAD_TYPE_H264:
        return "H.264";
    case KORO_PAYLOAD_TYPE_CHUNK_ONLY:
        return "chunks only";
    case KORO_PAYLOAD_TYPE_DEVICE_SPECIFIC:
        return "device specific";
    case KORO_PAYLOAD_TYPE_GENDC:
        return "GenDC";
    default:
        return nullptr;
    }
}

bool IsBigEndian(const Buffer& buffer, FrameQuestions& questions)
{
    const auto order =
        questions.AskIfKnown({KORO_BUFFER_INFO_PIXEL_ENDIANNESS}, [&] { return buffer.PixelEndianness(); });
    return order == KORO_PIXELENDIANNESS_BIG;
}

std::optional<int32_t> PayloadTypeOf(const Buffer& buffer, FrameQuestions& questions)
{
    return questions.AskIfKnown({KORO_BUFFER_INFO_PAYLOADTYPE}, [&] { return buffer.PayloadType(); });
}

// Sides and a pixel format may be answered all the same.
void CheckThatItHasPixels(const Buffer& buffer, FrameQuestions& questions)
{
    const int32_t type = PayloadTypeOf(buffer, questions).value_or(KORO_PAYLOAD_TYPE_UNKNOWN);
    const char* const hint = "Save the frames as they are with --format raw.";
    if (const char* const name = NameWithoutPixels(type))
    {
        throw UnknownPixelFormat(
            "Payload type " + std::to_string(type) + " (" + name + ") cannot be turned into a picture.", hint);
    }
    const auto hasImage = questions.AskIfKnown({KORO_BUFFER_INFO_IMAGEPRESENT}, [&] { return buffer.HasImage(); });
    if (!hasImage.value_or(true)) throw ToolError("The producer states that the frame has no image.", hint);
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

// A part, and its number, counted from 1.
struct NumberedPart
{
    const BufferPart& part;
    uint32_t number;
    FrameQuestions& questions;

    template <typename Read>
    auto Ask(int32_t command, const Read& read) const
    {
        return questions.Ask({command, number}, read);
    }
    template <typename Read>
    auto AskIfKnown(int32_t command, const Read& read) const
    {
        return questions.AskIfKnown({command, number}, read);
    }
};

// A tag of a part, which a producer need not know.
std::optional<uint64_t> TagOf(const NumberedPart& from, int32_t command)
{
    const auto info = from.AskIfKnown(command, [&] { return from.part.Info(command); });
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

// Where the part lies.
void Place(const NumberedPart& from, const FrameBytes& bytes, FramePart& read)
{
    const void* base = from.Ask(KORO_BUFFER_PART_INFO_BASE, [&] { return from.part.BasePtr(); });
    const auto start = reinterpret_cast<uintptr_t>(base) - reinterpret_cast<uintptr_t>(bytes.data);
    read.size = from.Ask(KORO_BUFFER_PART_INFO_DATA_SIZE, [&] { return from.part.Size(); });
    // A start below the memory wraps round to a large number.
    if (start > bytes.size || read.size > bytes.size - start)
        throw BrokenFrame("The producer places a part of the frame outside of the buffer.");
    read.bytes = bytes.data + start;
}

void ReadPixels(const NumberedPart& from, FramePart& read)
{
    const BufferPart& part = from.part;
    FrameLayout& layout = read.layout;
    layout.pixelFormat = from.Ask(KORO_BUFFER_PART_INFO_DATA_FORMAT, [&] { return part.Format(); });
    layout.width = from.Ask(KORO_BUFFER_PART_INFO_WIDTH, [&] { return part.Width(); });
    layout.height = from.Ask(KORO_BUFFER_PART_INFO_HEIGHT, [&] { return part.Height(); });
    layout.xPadding = from.AskIfKnown(KORO_BUFFER_PART_INFO_XPADDING, [&] { return part.XPadding(); }).value_or(0);
    read.receivedLines =
        from.AskIfKnown(KORO_BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT, [&] { return part.DeliveredImageHeight(); });
}

FramePart ReadPart(const NumberedPart& from, const FrameBytes& bytes, bool bigEndian)
{
    FramePart read;
    Place(from, bytes, read);
    read.kind = KindOf(from.Ask(KORO_BUFFER_PART_INFO_DATA_TYPE, [&] { return from.part.Type(); }));
    read.purpose = TagOf(from, KORO_BUFFER_PART_INFO_DATA_PURPOSE_ID);
    read.region = TagOf(from, KORO_BUFFER_PART_INFO_REGION_ID);
    read.isMeasurement = IsMeasurement(read.purpose);
    const bool hasPixels =
        read.kind == PartKind::Image || read.kind == PartKind::Range || read.kind == PartKind::Confidence;
    if (!hasPixels) return read;

    const auto list =
        from.AskIfKnown(KORO_BUFFER_PART_INFO_DATA_FORMAT_NAMESPACE, [&] { return from.part.FormatNamespace(); });
    if (!IsKnownList(list.value_or(KORO_PIXELFORMAT_NAMESPACE_UNKNOWN)))
    {
        read.kind = PartKind::Data;
        return read;
    }
    ReadPixels(from, read);
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

bool IsMultiPart(const Buffer& buffer, FrameQuestions& questions)
{
    return PayloadTypeOf(buffer, questions) == KORO_PAYLOAD_TYPE_MULTI_PART;
}

bool HasPlainImage(const Buffer& buffer, FrameQuestions& questions)
{
    const int32_t type = PayloadTypeOf(buffer, questions).value_or(KORO_PAYLOAD_TYPE_UNKNOWN);
    return type == KORO_PAYLOAD_TYPE_UNKNOWN || type == KORO_PAYLOAD_TYPE_IMAGE || type == KORO_PAYLOAD_TYPE_CHUNK_DATA;
}

FramePart ReadImage(const Buffer& buffer, const FrameBytes& bytes, FrameQuestions& questions)
{
    CheckThatItHasPixels(buffer, questions);
    const auto list = questions.AskIfKnown(
        {KORO_BUFFER_INFO_PIXELFORMAT_NAMESPACE}, [&] { return static_cast<uint64_t>(buffer.PixelFormatNamespace()); });
    CheckList(list.value_or(KORO_PIXELFORMAT_NAMESPACE_UNKNOWN));
    FramePart image;
    image.bytes = bytes.data;
    image.size = bytes.size;
    FrameLayout& layout = image.layout;
    layout.pixelFormat = questions.Ask({KORO_BUFFER_INFO_PIXELFORMAT}, [&] { return buffer.PixelFormat(); });
    layout.width = questions.Ask({KORO_BUFFER_INFO_WIDTH}, [&] { return buffer.Width(); });
    layout.height = questions.Ask({KORO_BUFFER_INFO_HEIGHT}, [&] { return buffer.Height(); });
    layout.xPadding = questions.AskIfKnown({KORO_BUFFER_INFO_XPADDING}, [&] { return buffer.XPadding(); }).value_or(0);
    layout.imageOffset =
        questions.AskIfKnown({KORO_BUFFER_INFO_IMAGEOFFSET}, [&] { return buffer.ImageOffset(); }).value_or(0);
    layout.bigEndian = IsBigEndian(buffer, questions);
    image.receivedLines =
        questions.AskIfKnown({KORO_BUFFER_INFO_DELIVERED_IMAGEHEIGHT}, [&] { return buffer.DeliveredImageHeight(); });
    return image;
}

std::vector<FramePart> ReadParts(const Buffer& buffer, const FrameBytes& bytes, FrameQuestions& questions)
{
    constexpr int32_t listOfParts = -1; // no command of the standard
    const bool bigEndian = IsBigEndian(buffer, questions);
    std::vector<FramePart> parts;
    uint32_t number = 0;
    for (const BufferPart& part : questions.Ask({listOfParts}, [&] { return buffer.Parts(); }))
        parts.push_back(ReadPart({part, ++number, questions}, bytes, bigEndian));
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
