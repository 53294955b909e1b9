#include "producers/scripted/wild/producer.h"

namespace scripted::wild
{

using namespace GenTL;

Producer::Producer(Script& behindIt) : script(behindIt), source(behindIt)
{
    script.Edit([](Tree& tree) {
        tree.info[TL_INFO_VENDOR] = Text("ZVR");
        tree.info[TL_INFO_DISPLAYNAME] = Text("ZVR wild producer");
        tree.interfaces = {MakeInterface("wild0", 0)};
        DescribeHost(tree);
    });
    script.Intercept("GCInitLib", [this](const auto&) -> std::optional<GC_ERROR> {
        source.Start(cameras);
        return std::nullopt;
    });
    script.Intercept("GCCloseLib", [this](const auto&) -> std::optional<GC_ERROR> {
        if (script.InitCount() == 1) source.Stop();
        return std::nullopt;
    });
    // The host's packet size goes before what the camera's own feature says.
    script.Intercept("DSStartAcquisition", [this](const auto&) -> std::optional<GC_ERROR> {
        std::uint32_t size = 0;
        script.Edit([&](Tree& tree) { size = TakeHostPacketSize(tree); });
        for (const auto& camera : cameras)
            camera->packetSize = size;
        return std::nullopt;
    });
    // A camera that nobody has stopped stops with its connection.
    script.Intercept("DevClose", [this](const auto& arguments) -> std::optional<GC_ERROR> {
        for (const auto& camera : cameras)
        {
            if (camera->id == arguments.front()) camera->isStarted = false;
        }
        return std::nullopt;
    });
}

Camera& Producer::AddCamera(const std::string& name)
{
    const auto camera = std::make_shared<Camera>();
    camera->id = "wild0-" + name;
    cameras.push_back(camera);
    script.Edit([&](Tree& tree) {
        tree.interfaces.front()->devices.push_back(MakeCameraDevice(*camera, [this] { source.Notify(); }));
    });
    return *camera;
}

void Producer::EditDevices(const std::function<void(Device&)>& edit)
{
    script.Edit([&](Tree& tree) {
        for (const auto& device : tree.interfaces.front()->devices)
            edit(*device);
    });
}

void Behave(Script& script, Behaviour behaviour)
{
    const auto producer = std::make_shared<Producer>(script);
    script.Keep(producer);
    producer->AddCamera("camera");
    behaviour(*producer);
}

} // namespace scripted::wild
