// Buffer: one announced piece of memory, the consumer's or our own, and what the last fill left in it.
//
// Owned by its stream from announcement to revoke. All fields that change but `announcedTo` are guarded by the
// stream's mutex.
#pragma once

#include "producers/simulator/face/module.h"
#include "producers/simulator/frames/frame_plan.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <span>

namespace koro::simulator
{

// Where a buffer is, besides the announced pool.
enum class Place
{
    Idle,
    Input,
    Filling,
    Output
};

// What a fill left behind.
struct FillResult
{
    std::uint64_t frameId = 0;
    std::uint64_t timestamp_ns = 0;
    std::size_t sizeFilled = 0; // bytes
    std::size_t dataSize = 0;   // bytes that were meant to come
    bool incomplete = false;
    bool largerThanBuffer = false;
    // Of the image, as the features were when it was taken.
    ImageShape shape{nullptr, 0, 0};
    PartLayout parts;
    bool isMultiPart = false;
    std::array<std::size_t, numPartKinds> partLines{}; // delivered
    std::size_t offsetX = 0;
    std::size_t offsetY = 0;
    // Of its chunks; 0 where none came.
    std::uint64_t chunkLayoutId = 0;
    std::size_t chunkBytes = 0; // behind the image

    bool HasChunks() const noexcept { return chunkLayoutId != 0; }
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
    FillResult result;

private:
    void OnClose() override {}

    const std::unique_ptr<std::byte[]> ownMemory;
    const std::span<std::byte> memory;
    void* const userPointer;
    Port port;
};

} // namespace koro::simulator
