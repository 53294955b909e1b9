// Buffer: one announced piece of memory, the consumer's or our own, and what the last fill left in it.
//
// Owned by its stream from announcement to revoke. All fields that change but `announcedTo` are guarded by the
// stream's mutex.
#pragma once

#include "producers/kit/frame_facts.h"
#include "producers/kit/module.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <span>

namespace koro::kit
{

// Where a buffer is, besides the announced pool.
enum class Place
{
    Idle,
    Input,
    Filling,
    Output
};

class Buffer final : public Module
{
public:
    // The consumer's memory.
    Buffer(void* memory, std::size_t bytes, void* userPointer, PortFacts portFacts);
    // Memory of our own.
    Buffer(std::size_t bytes, void* userPointer, PortFacts portFacts);

    std::span<std::byte> Memory() const noexcept { return memory; }
    bool IsOurs() const noexcept { return ownMemory != nullptr; }
    void* UserPointer() const noexcept { return userPointer; }
    Port& ModulePort() override { return port; }

    // The queue that lists it. Another stream asks for it, with its own mutex, when it is given a buffer that is not
    // its.
    std::atomic<const void*> announcedTo{nullptr};
    Place place = Place::Idle;
    bool hasNewData = false; // the last way into the output queue was a fill
    FrameFacts frame;

private:
    void OnClose() override {}

    const std::unique_ptr<std::byte[]> ownMemory;
    const std::span<std::byte> memory;
    void* const userPointer;
    Port port;
};

} // namespace koro::kit
