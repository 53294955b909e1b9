// GrabSession: one camera streaming into the tool's buffers, from opening to closing.
//
// Owned by `koro grab`; used on one thread at a time, while KillWait of the interrupt comes from another.
#pragma once

#include "tools/koro/camera_link.h"
#include "tools/koro/closing.h"
#include "tools/koro/frame_memory.h"
#include "tools/koro/frame_taker.h"
#include "tools/koro/grab_output.h"
#include "tools/koro/interrupt.h"
#include "tools/koro/module_settings.h"
#include "tools/koro/point_cloud.h"
#include "tools/koro/switched_features.h"
#include <koro/koro.hpp>

#include <map>
#include <optional>
#include <string>

namespace koro::tool
{

class GrabSession
{
public:
    // Opens device and stream and announces the buffers. Throws koro::Error, or ToolError for what the tool refuses.
    // `link` may be null.
    GrabSession(const DeviceDescriptor& camera, const GrabSettings& settings, CameraLink* link);

    // Starts the camera and streams until the output has got all pictures, the camera stays silent or delivers nothing
    // whole, or the user interrupts. Throws what waiting or saving failed with. With a `link` a camera may come and go:
    // when it comes back by itself the stream goes on, and a failure of the camera is the end Lost.
    GrabEnd Run(Interrupt& interrupt, GrabOutput& output);
    // Whether a register of the camera can be read. May take long when it is dead, as the next one.
    bool CameraAnswers() const;
    // Stops the camera, however the run ended; the destructor closes it. Both may take long when it is dead.
    void Stop(ClosingReport& report);
    // "8 buffers of 307200 bytes".
    std::string DescribeBuffers() const;

private:
    void FindNodes();
    void AnnounceBuffers();
    GrabEnd Stream(Interrupt& interrupt, GrabOutput& output);

    const GrabSettings settings;
    CameraLink* const link;
    const uint64_t numLossesBefore; // that the link has heard of; what was opened after them knows nothing of them
    const ModuleSettings modules;
    Device device;
    NodeMap nodes;                                   // the camera's features; empty when it has no usable description
    std::optional<Scan3D> geometry;                  // of a 3D camera
    std::map<KORO_BufferHandle, FrameMemory> memory; // longer than the stream, which lets go of it
    DataStream stream;
    std::optional<SwitchedFeatures> chunkMode; // switched back behind the stop, first of all
    std::optional<Acquisition> acquisition;
};

} // namespace koro::tool
