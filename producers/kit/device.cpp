#include "producers/kit/device.h"

#include "producers/kit/data_stream.h"
#include "producers/kit/interface.h"

namespace koro::kit
{
namespace
{

InfoValue TextIfAny(const std::string& text)
{
    if (text.empty()) throw Failure(GC_ERR_NOT_AVAILABLE, "the camera has none");
    return InfoValue::Text(text);
}

} // namespace

std::string StreamId(std::uint32_t index)
{
    return "Stream" + std::to_string(index);
}

InfoValue DeviceFacts::Info(DEVICE_ACCESS_STATUS status, DEVICE_INFO_CMD command) const
{
    switch (command)
    {
    case DEVICE_INFO_ID:
        return InfoValue::Text(id);
    case DEVICE_INFO_VENDOR:
        return InfoValue::Text(vendor);
    case DEVICE_INFO_MODEL:
        return InfoValue::Text(model);
    case DEVICE_INFO_TLTYPE:
        return InfoValue::Text(tlType);
    case DEVICE_INFO_DISPLAYNAME:
        return InfoValue::Text(displayName);
    case DEVICE_INFO_ACCESS_STATUS:
        return InfoValue::Int32(status);
    case DEVICE_INFO_USER_DEFINED_NAME:
        return TextIfAny(userName ? userName() : std::string());
    case DEVICE_INFO_SERIAL_NUMBER:
        return InfoValue::Text(serialNumber);
    case DEVICE_INFO_VERSION:
        return InfoValue::Text(version);
    case DEVICE_INFO_TIMESTAMP_FREQUENCY:
        return InfoValue::UInt64(ticksPerSecond);
    default:
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "unknown device information");
    }
}

void Device::Connect()
{
    remote = MakeRemote();
    Handles().Add(remote);
}

std::string Device::StreamIdAt(std::uint32_t index) const
{
    const std::uint32_t number = NumStreams();
    if (index < number) return StreamId(index);
    throw Failure(
        GC_ERR_INVALID_INDEX,
        number == 1 ? std::string("a device has one stream") : "the device has " + std::to_string(number) + " streams");
}

std::shared_ptr<DataStream> Device::OpenStream(const std::string& id)
{
    std::uint32_t index = 0;
    while (index < NumStreams() && StreamId(index) != id)
        ++index;
    if (index == NumStreams()) throw Failure(GC_ERR_INVALID_ID, "there is no stream '" + id + "'");
    RequireStreamable();
    return open.Open(id, [&] { return MakeStream(id); });
}

std::shared_ptr<DataStream> Device::FindOpen(const std::string& id) const
{
    return open.Find(id);
}

void Device::Forget(const DataStream& stream)
{
    open.Forget(stream);
}

void Device::OnClose()
{
    OnClosing();
    open.CloseAll();
    OnStreamsClosed();
    remote->Close();
    OnRemoteClosed();
    parent->Forget(*this);
}

} // namespace koro::kit
