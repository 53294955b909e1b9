// Producer: a scripted producer that acts by itself, as those do that are met in the field.
//
// It has one interface with cameras that are complete: features in every module, and pictures from AcquisitionStart to
// AcquisitionStop, from a thread that lives between GCInitLib and GCCloseLib. A behaviour is a function that changes
// this producer; variant.cpp chooses one for each build.
#pragma once

#include "producers/scripted/script.h"
#include "producers/scripted/wild/camera.h"
#include "producers/scripted/wild/frame_source.h"

#include <memory>
#include <string>
#include <vector>

namespace scripted::wild
{

class Producer
{
public:
    explicit Producer(Script& behindIt);

    Script& script;
    FrameSource source;

    // Adds a camera to the interface, as "<interface>-<name>".
    Camera& AddCamera(const std::string& name);
    std::vector<std::shared_ptr<Camera>> cameras;

    // Changes the devices that there are, and the cameras' ports with them.
    void EditDevices(const std::function<void(Device&)>& edit);
};

using Behaviour = void (*)(Producer& producer);

// Makes a producer with one camera, "wild0-camera", that behaves so; the script keeps it.
void Behave(Script& script, Behaviour behaviour);

} // namespace scripted::wild
