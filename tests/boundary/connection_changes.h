// What tests of a producer's own reports on its devices share: the records that it sends, and the callbacks of one
// interface as texts that can be waited for.
#pragma once

#include "gentl/api/gentl.h"
#include "tests/support/boundary.h"
#include "tests/support/scripted_producer.h"

#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <functional>
#include <mutex>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace koro::test
{

inline constexpr std::int32_t connectionChangeEvent = 1000;
inline constexpr std::size_t connectionRecordSize = 351;

// The outcome of what a callback must not do.
inline const Error deadlock{
    KORO_RETURN_CODE_ERROR, std::make_error_code(std::errc::resource_deadlock_would_occur).message()};

// One record, written byte by byte: nothing here comes from the library. What nobody is to read is not zero.
struct ConnectionRecord
{
    void* interface = nullptr;
    std::string id{};
    std::uint16_t changeKind = 1;
    std::uint8_t deviceFlag = 1;
    std::uint8_t reconnectFlag1 = 0;
    std::uint8_t reconnectFlag2 = 0;
    std::uint32_t reconnectValue = 0;

    std::string Bytes() const
    {
        std::string bytes(connectionRecordSize, '\x5a');
        const auto put = [&](std::size_t offset, const void* value, std::size_t size) {
            std::memcpy(&bytes.at(offset), value, size);
        };
        put(0, &interface, 8);
        put(16, id.c_str(), id.size() < 256 ? id.size() + 1 : 256);
        put(272, &changeKind, 2);
        put(274, &deviceFlag, 1);
        put(275, &reconnectFlag1, 1);
        put(276, &reconnectFlag2, 1);
        put(283, &reconnectValue, 4);
        return bytes;
    }
};

// A producer that has the event, from before anything is opened.
class ReportingProducer : public ScriptedProducer
{
public:
    explicit ReportingProducer(std::size_t recordSize = connectionRecordSize)
    {
        (*this)->SetInfo("EventGetInfo", GenTL::EVENT_SIZE_MAX, scripted::Size(recordSize));
    }

    // Returns whether the library listens.
    bool Send(ConnectionRecord record, const std::string& interfaceID = "if0") const
    {
        record.interface = (*this)->HandleOf(interfaceID);
        return SendBytes(record.Bytes());
    }
    bool SendBytes(const std::string& bytes) const { return (*this)->Fire("system", connectionChangeEvent, bytes); }
};

// All three callbacks of one interface, in the order of their coming.
class ConnectionReports
{
public:
    explicit ConnectionReports(KORO_InterfaceHandle interface)
    {
        Require(KORO_Interface_RegisterDeviceListChangedCallback(interface, OnListChanged, this, &listChanged));
        Require(KORO_Interface_RegisterDeviceDisconnectedCallback(interface, OnDisconnected, this, &disconnected));
        Require(KORO_Interface_RegisterDeviceReconnectedCallback(interface, OnReconnected, this, &reconnected));
    }
    ConnectionReports(const ConnectionReports&) = delete;
    ConnectionReports& operator=(const ConnectionReports&) = delete;

    // "list changed", "disconnected <handle>", "reconnected <handle> <flag> <flag> <value>".
    std::string Next()
    {
        std::unique_lock lock(mutex);
        arrived.wait(lock, [&] { return received.size() > taken; });
        return received[taken++];
    }

    // Those that nobody asked for by Next.
    std::size_t NumUnread()
    {
        const std::lock_guard lock(mutex);
        return received.size() - taken;
    }

    static std::string Disconnected(KORO_DeviceDescriptorHandle descriptor)
    {
        std::ostringstream text;
        text << "disconnected " << descriptor;
        return text.str();
    }
    static std::string Reconnected(
        KORO_DeviceDescriptorHandle descriptor, int flag1 = 0, int flag2 = 0, std::uint32_t value = 0)
    {
        std::ostringstream text;
        text << "reconnected " << descriptor << ' ' << flag1 << ' ' << flag2 << ' ' << value;
        return text.str();
    }

    std::function<void(KORO_DeviceDescriptorHandle)> onReport; // on the library's thread, before Next gives it
    KORO_DEVICE_RECONNECT_INFORMATION lastInformation{};       // of the last report of its kind
    KORO_DeviceListChangedCallbackHandle listChanged = nullptr;
    KORO_DeviceDisconnectedCallbackHandle disconnected = nullptr;
    KORO_DeviceReconnectedCallbackHandle reconnected = nullptr;

private:
    static void OnListChanged(void* context) { static_cast<ConnectionReports*>(context)->Add(nullptr, "list changed"); }

    static void OnDisconnected(KORO_DeviceDescriptorHandle descriptor, void* context)
    {
        static_cast<ConnectionReports*>(context)->Add(descriptor, Disconnected(descriptor));
    }

    static void OnReconnected(
        KORO_DeviceDescriptorHandle descriptor, const KORO_DEVICE_RECONNECT_INFORMATION* information, void* context)
    {
        auto& reports = *static_cast<ConnectionReports*>(context);
        reports.lastInformation = *information;
        reports.Add(
            descriptor,
            Reconnected(
                descriptor, information->reconnectFlag1, information->reconnectFlag2, information->reconnectValue));
    }

    void Add(KORO_DeviceDescriptorHandle descriptor, const std::string& report)
    {
        if (onReport) onReport(descriptor);
        const std::lock_guard lock(mutex);
        received.push_back(report);
        arrived.notify_all();
    }

    std::mutex mutex;
    std::condition_variable arrived;
    std::vector<std::string> received;
    std::size_t taken = 0;
};

} // namespace koro::test
