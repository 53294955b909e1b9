#include "producers/simulator/face/plug_control.h"

#include "producers/kit/failure.h"
#include "producers/simulator/face/library.h"
#include "producers/simulator/face/system.h"
#include "producers/simulator/kit.h"

#include <algorithm>
#include <system_register_names.h>

namespace koro::simulator
{

PlugControl::PlugControl(System& owningSystem, const Library& library)
    : system(owningSystem), settings(library.Connection()), requests(system),
      script(settings, [this](const ConnectionStep& step) { Perform(step); })
{
    for (const auto& interface : library.Interfaces())
        for (const auto& camera : interface->cameras)
            places.push_back({interface, camera});
}

void PlugControl::AddRegisters(RegisterMap& map)
{
    const auto maximum = [this]() -> std::uint64_t { return std::max<std::size_t>(places.size(), 1) - 1; };
    map.AddInteger(
        registers::system::SimulatedCameraSelectorReg, [this]() -> std::uint64_t { return selector; },
        [this, maximum](std::uint64_t value) {
            if (value > maximum()) RefuseValue("there are fewer cameras");
            selector = value;
        });
    map.AddInteger(registers::system::SimulatedCameraSelectorMax, maximum());
    map.AddInteger(registers::system::SimulatedCameraCount, places.size());
    map.AddInteger(registers::system::SimulatedCameraIsPluggedReg, [this]() -> std::uint64_t {
        return Selected().camera->IsUnplugged() ? 0 : 1;
    });
    map.AddAction(
        registers::system::SimulatedCameraUnplugReg, [this] { PerformOnSelected(ConnectionStep::Kind::Unplug); });
    map.AddAction(
        registers::system::SimulatedCameraReplugReg, [this] { PerformOnSelected(ConnectionStep::Kind::Replug); });
    map.AddAction(registers::system::SimulatedScriptStepReg, [this] { script.Step(); });
    map.AddInteger(
        registers::system::SimulatedScriptCanStep, [this]() -> std::uint64_t { return script.CanStep() ? 1 : 0; });
    map.AddInteger(registers::system::SimulatedScriptStepsLeft, [this] { return script.StepsLeft(); });
    requests.AddRegisters(map, [this](const EventRequest& request) { SendOfSelected(request); });
    map.AddText(registers::system::SimulatedCameraID, [this] { return Selected().camera->Id(); });
}

bool PlugControl::IsUnpluggedAt(const Camera& camera, std::uint64_t frame)
{
    return script.OnFrame(camera.Settings().serial, frame);
}

void PlugControl::OnMissed(const Camera& camera)
{
    script.OnMissed(camera.Settings().serial);
}

const PlugControl::Place& PlugControl::Selected() const
{
    const std::uint64_t index = selector;
    if (index >= places.size()) throw Failure(GC_ERR_NOT_AVAILABLE, "there are no cameras");
    return places[index];
}

void PlugControl::PerformOnSelected(ConnectionStep::Kind kind)
{
    ConnectionStep step;
    step.camera = Selected().camera->Settings().serial;
    step.kind = kind;
    Perform(step);
}

void PlugControl::SendOfSelected(const EventRequest& request)
{
    const bool needsCamera = request.module != EventModule::System;
    const bool isSent = needsCamera ? requests.Send(request, Selected().interface->id, Selected().camera->Id())
                                    : requests.Send(request, {}, {});
    if (!isSent) throw Failure(GC_ERR_NOT_AVAILABLE, "the module is not open");
}

void PlugControl::Perform(const ConnectionStep& step)
{
    const std::lock_guard lock(mutex);
    const auto place = std::find_if(places.begin(), places.end(), [&step](const Place& candidate) {
        return candidate.camera->Settings().serial == step.camera;
    });
    if (place == places.end()) return;
    if (step.kind == ConnectionStep::Kind::Send)
    {
        requests.Send(step.event, place->interface->id, place->camera->Id());
        return;
    }
    const auto open = system.FindOpenInterface(place->interface->id);
    bool isNews = true;
    if (step.kind == ConnectionStep::Kind::Unplug) isNews = Unplug(*place, open);
    if (step.kind == ConnectionStep::Kind::Replug) isNews = Replug(*place, open);
    if (isNews && open) Tell(*place, *open, step);
}

bool PlugControl::Unplug(const Place& place, const std::shared_ptr<Interface>& open)
{
    if (!place.camera->Unplug(!settings.resumes)) return false;
    if (open) open->OnUnplugged(*place.camera, settings.resumes);
    return true;
}

bool PlugControl::Replug(Place& place, const std::shared_ptr<Interface>& open)
{
    if (!place.camera->Replug()) return false;
    ++place.numReplugs;
    if (open) open->OnReplugged(*place.camera);
    return true;
}

void PlugControl::Tell(const Place& place, const Interface& open, const ConnectionStep& step)
{
    ConnectionRecord record;
    record.interface = open.Handle();
    SetDeviceId(record, place.camera->Id());
    record.deviceFlag = 1;
    record.changeKind = cameraWent;
    if (step.kind == ConnectionStep::Kind::Replug)
    {
        record.changeKind = cameraCame;
        record.reconnectFlag1 = settings.resumes ? 1 : 0;
        record.reconnectFlag2 = settings.resumes ? 1 : 0;
        record.reconnectValue = place.numReplugs;
    }
    system.RaiseEvent(connectionEvent, RecordBlock(record, step.record, settings.recordBytes));
    if (!settings.listRecords || step.kind == ConnectionStep::Kind::Tell) return;
    record.deviceFlag = 0;
    system.RaiseEvent(connectionEvent, RecordBlock(record, {}, settings.recordBytes));
}

} // namespace koro::simulator
