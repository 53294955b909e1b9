// CameraEvents: the events that a camera sends, packed for its transport and handed to the open device.
//
// Owned by the camera's features. Any thread. The sink runs with the mutex of this class held, and without others.
#pragma once

#include "producers/kit/event_packet.h"
#include "producers/simulator/kit.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace koro::simulator
{

// Numbers of EventSelector.
enum class CameraEvent : std::uint16_t
{
    ExposureEnd,
    FrameTrigger,
    Line0RisingEdge,
    Line0FallingEdge
};

inline constexpr std::size_t numCameraEvents = 4;
inline constexpr std::uint16_t firstEventId = 0x9001; // of ExposureEnd; those below 0x9000 are the standard's

// A set of them, a bit for each.
using EventSet = std::uint64_t;

constexpr EventSet SetOf(CameraEvent event)
{
    return EventSet{1} << static_cast<unsigned>(event);
}

struct Occurrence
{
    CameraEvent event = CameraEvent::ExposureEnd;
    std::uint64_t frameId = 0;
    std::uint64_t timestamp_ns = 0;
    std::uint32_t lines = 0; // levels, of line events
};

class CameraEvents
{
public:
    using Sink = std::function<void(std::string packet)>;

    CameraEvents(const EventPackets& eventPackets, std::size_t eventsPerPacket)
        : packets(eventPackets), itemsPerPacket(eventsPerPacket)
    {}

    // From the opening of the device to its close.
    void Attach(Sink packetSink);
    void Detach() noexcept;
    // Whether anybody registered the event. What happened before a registration is not sent after it. Takes no lock.
    void SetWanted(bool isWanted) noexcept;
    bool IsWanted() const noexcept { return wanted; }

    // Sends, or collects until a packet is full.
    void Send(const Occurrence& occurrence);

    const EventPackets& Packets() const noexcept { return packets; }

private:
    const EventPackets packets;
    const std::size_t itemsPerPacket;
    std::atomic<bool> wanted{false};
    std::atomic<std::uint64_t> registration{0};

    std::mutex mutex; // guards all below
    Sink sink;
    std::vector<PacketItem> pending;
    std::uint64_t pendingSince = 0; // the registration
    std::uint16_t requestId = 0;    // never 0 in a packet
};

} // namespace koro::simulator
