// GrabSession: one camera streaming into the tool's buffers, from opening to closing.
//
// Owned by `koro grab`; used on one thread, while KillWait of the interrupt comes from another.
#pragma once

#include "tools/koro/frame_files.h"
#include "tools/koro/frame_memory.h"
#include "tools/koro/frame_reader.h"
#include "tools/koro/interrupt.h"
#include "tools/koro/picture_saver.h"
#include <koro/koro.hpp>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace koro::tool
{

struct GrabSettings
{
    uint64_t numPictures = 1;
    uint64_t timeout_ms = 5000;
    size_t payloadSize = 0;            // 0 takes what stream or camera say
    std::vector<std::string> settings; // NAME=VALUE, written before the size of a frame is asked for
    FileFormat format = FileFormat::PNG;
};

struct GrabStatistics
{
    uint64_t numFrames = 0; // delivered, whole or not
    uint64_t numIncomplete = 0;
    uint64_t numTimeouts = 0;
    std::optional<uint64_t> numUnderruns; // the producer's own count, if it keeps one
    uint64_t numBytes = 0;
    double seconds = 0; // from the first frame to the last
};

class GrabSession
{
public:
    // Opens device and stream and announces the buffers. Throws koro::Error, or ToolError for what the tool refuses.
    GrabSession(const DeviceDescriptor& camera, const GrabSettings& settings);

    // Streams until `saver` has got all pictures, the camera stays silent or delivers nothing useful, or the user
    // interrupts. Stops the camera in every case. Throws what waiting or saving failed with.
    void Run(Interrupt& interrupt, PictureSaver& saver);
    const GrabStatistics& Statistics() const noexcept { return statistics; }
    // "8 buffers of 307200 bytes".
    std::string DescribeBuffers() const;

private:
    using Clock = std::chrono::steady_clock;

    void FindNodes();
    void AnnounceBuffers();
    void TakeFrames(const Interrupt& interrupt, PictureSaver& saver);
    std::optional<Buffer> Wait(const Interrupt& interrupt);
    bool SaveFrame(const Buffer& buffer, PictureSaver& saver);
    FrameFiles FilesOf(const Buffer& buffer, const FrameBytes& bytes) const;
    void Count(size_t size);
    void Stop(Acquisition& acquisition);

    const GrabSettings settings;
    Device device;
    NodeMap nodes;                                   // the camera's features; empty when it has no usable description
    std::optional<Scan3D> geometry;                  // of a 3D camera
    std::map<KORO_BufferHandle, FrameMemory> memory; // longer than the stream, which lets go of it
    DataStream stream;
    GrabStatistics statistics;
    Clock::time_point firstFrame;
};

} // namespace koro::tool
