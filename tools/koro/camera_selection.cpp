#include "tools/koro/camera_selection.h"

#include "tools/koro/tool_error.h"

#include <algorithm>
#include <fnmatch.h>
#include <functional>

namespace koro::tool
{

namespace
{

std::vector<std::string> NamesOf(const CameraChoice& choice)
{
    const CameraRecord& camera = *choice.camera;
    std::vector<std::string> names{camera.id, choice.interfaceRecord->id + ":" + camera.id};
    if (camera.serialNumber && !camera.serialNumber->empty()) names.push_back(*camera.serialNumber);
    if (camera.userName && !camera.userName->empty()) names.push_back(*camera.userName);
    return names;
}

std::vector<CameraChoice> Matching(
    const std::vector<CameraChoice>& cameras, const std::function<bool(const std::string&)>& matches)
{
    std::vector<CameraChoice> found;
    for (const CameraChoice& camera : cameras)
    {
        for (const std::string& name : NamesOf(camera))
        {
            if (!matches(name)) continue;
            found.push_back(camera);
            break;
        }
    }
    return found;
}

// With the producers' paths where these are what tells cameras apart.
std::string List(const std::string& title, const std::vector<CameraChoice>& cameras)
{
    const bool severalProducers = std::any_of(cameras.begin(), cameras.end(), [&](const CameraChoice& camera) {
        return camera.producer != cameras.front().producer;
    });
    std::string text = title;
    for (const CameraChoice& camera : cameras)
    {
        text += "\n  " + DescribeCamera(camera);
        if (severalProducers) text += ", of " + camera.producer->path;
    }
    return text;
}

} // namespace

std::vector<CameraChoice> AllCameras(const std::vector<ProducerRecord>& producers)
{
    std::vector<CameraChoice> cameras;
    for (const ProducerRecord& producer : producers)
    {
        for (const InterfaceRecord& record : producer.interfaces)
        {
            for (const CameraRecord& camera : record.cameras)
                cameras.push_back({&producer, &record, &camera});
        }
    }
    return cameras;
}

std::vector<CameraChoice> SelectCameras(const std::vector<ProducerRecord>& producers, const std::string& name)
{
    const std::vector<CameraChoice> all = AllCameras(producers);
    if (all.empty()) throw ToolError("There is no camera.", "`koro doctor` tells why.", exitNoSuchCamera);

    std::vector<CameraChoice> found = Matching(all, [&](const std::string& known) { return known == name; });
    if (found.empty())
    {
        found = Matching(
            all, [&](const std::string& known) { return fnmatch(name.c_str(), known.c_str(), FNM_NOESCAPE) == 0; });
    }
    if (!found.empty()) return found;
    throw ToolError(
        List("No camera is called \"" + name + "\". There are:", all), "`koro list` shows all of their names.",
        exitNoSuchCamera);
}

CameraChoice SelectCamera(const std::vector<ProducerRecord>& producers, const std::string& name)
{
    const std::vector<CameraChoice> found = SelectCameras(producers, name);
    if (found.size() == 1) return found.front();
    throw ToolError(
        List("\"" + name + "\" fits several cameras:", found),
        "Name it by its serial number or by interface:id, or choose a producer with --producer.", exitNoSuchCamera);
}

std::string DescribeCamera(const CameraChoice& choice)
{
    const CameraRecord& camera = *choice.camera;
    std::string text = choice.interfaceRecord->id + ":" + camera.id + "  " + camera.vendor.value_or("-") + " " +
                       camera.model.value_or("-") + ", serial number " + camera.serialNumber.value_or("-");
    if (camera.userName && !camera.userName->empty()) text += ", \"" + *camera.userName + "\"";
    return text;
}

} // namespace koro::tool
