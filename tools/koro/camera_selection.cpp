#include "tools/koro/camera_selection.h"

#include "tools/koro/name_pattern.h"
#include "tools/koro/report.h"
#include "tools/koro/shell_word.h"
#include "tools/koro/tool_error.h"

#include <algorithm>
#include <functional>

namespace koro::tool
{

namespace
{

std::string FullID(const InterfaceRecord& record, const CameraRecord& camera)
{
    return record.id + ":" + camera.id;
}

std::vector<std::string> NamesOf(const InterfaceRecord& record, const CameraRecord& camera)
{
    std::vector<std::string> names{camera.id, FullID(record, camera)};
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
        for (const std::string& name : NamesOf(*camera.interfaceRecord, *camera.camera))
        {
            if (!matches(name)) continue;
            found.push_back(camera);
            break;
        }
    }
    return found;
}

std::vector<CameraChoice> WithFullID(const std::vector<CameraChoice>& cameras, const std::string& id)
{
    std::vector<CameraChoice> found;
    for (const CameraChoice& camera : cameras)
    {
        if (FullID(*camera.interfaceRecord, *camera.camera) == id) found.push_back(camera);
    }
    return found;
}

// An "interface:id" comes before the other names, and exact matches before patterns.
std::vector<CameraChoice> Fitting(const std::vector<CameraChoice>& cameras, const std::string& name)
{
    std::vector<CameraChoice> found = WithFullID(cameras, name);
    if (found.empty()) found = Matching(cameras, [&](const std::string& known) { return known == name; });
    if (!found.empty()) return found;
    const NamePattern pattern(name);
    return Matching(cameras, [&](const std::string& known) { return pattern.Matches(known); });
}

// How to name this camera and no other. An id that a terminal may not get is named by a pattern.
std::string HintFor(const std::vector<CameraChoice>& all, const CameraChoice& camera)
{
    const std::string id = FullID(*camera.interfaceRecord, *camera.camera);
    const std::string name = Printable(id) == id ? id : PrintablePattern(id);
    const std::string word = name.front() == '-' ? "-- " + ShellWord(name) : ShellWord(name);
    const std::string title = "Name one by interface:id, the first one for instance as ";
    if (Fitting(all, name).size() == 1) return title + word;

    std::vector<CameraChoice> ofProducer = all;
    std::erase_if(ofProducer, [&](const CameraChoice& other) { return other.producer != camera.producer; });
    if (Fitting(ofProducer, name).size() == 1)
        return title + "--producer " + ShellWord(camera.producer->path) + " " + word;
    return "Name one by interface:id; `koro list --json` shows them with all of their characters.";
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
        if (severalProducers) text += ", of " + Printable(camera.producer->path);
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

    const std::vector<CameraChoice> found = Fitting(all, name);
    if (!found.empty()) return found;
    throw ToolError(
        List("No camera is called \"" + PrintableStart(name) + "\". There are:", all),
        "`koro list` shows all of their names.", exitNoSuchCamera);
}

CameraChoice SelectCamera(const std::vector<ProducerRecord>& producers, const std::string& name)
{
    const std::vector<CameraChoice> found = SelectCameras(producers, name);
    if (found.size() == 1) return found.front();
    throw ToolError(
        List("\"" + PrintableStart(name) + "\" fits several cameras:", found),
        HintFor(AllCameras(producers), found.front()), exitNoSuchCamera);
}

InterfaceChoice SelectInterface(const std::vector<ProducerRecord>& producers, const std::string& name)
{
    const NamePattern pattern(name);
    std::vector<InterfaceChoice> exact;
    std::vector<InterfaceChoice> fitting;
    std::string all;
    for (const ProducerRecord& producer : producers)
    {
        for (const InterfaceRecord& record : producer.interfaces)
        {
            all += "\n  " + PrintableStart(record.id) + "  " + OrDash(record.displayName) + ", of " +
                   Printable(producer.path);
            const std::string display = record.displayName.value_or("");
            if (record.id == name || display == name) exact.push_back({&producer, &record});
            if (pattern.Matches(record.id) || pattern.Matches(display)) fitting.push_back({&producer, &record});
        }
    }
    const auto& found = exact.empty() ? fitting : exact;
    if (found.size() == 1) return found.front();
    if (all.empty()) throw ToolError("There is no interface.", "`koro doctor` shows why.", exitNoSuchCamera);
    const bool isNone = found.empty();
    throw ToolError(
        (isNone ? "No interface is called \"" : "Several interfaces fit \"") + PrintableStart(name) +
            "\". There are:" + all,
        isNone ? "`koro list` shows the interfaces." : "Choose a producer with --producer.", exitNoSuchCamera);
}

bool IsSearchOver(
    const std::vector<InterfaceRecord>& before, const std::vector<InterfaceRecord>& now, const std::string& wanted)
{
    if (wanted.empty()) return false;
    std::vector<std::string> idsBefore;
    std::vector<std::string> ids;
    bool isThere = false;
    for (const InterfaceRecord& record : before)
    {
        for (const CameraRecord& camera : record.cameras)
            idsBefore.push_back(FullID(record, camera));
    }
    for (const InterfaceRecord& record : now)
    {
        for (const CameraRecord& camera : record.cameras)
        {
            ids.push_back(FullID(record, camera));
            if (ids.back() == wanted) return true;
            const std::vector<std::string> names = NamesOf(record, camera);
            isThere |= std::find(names.begin(), names.end(), wanted) != names.end();
        }
    }
    return isThere && ids == idsBefore;
}

std::string DescribeCamera(const CameraChoice& choice)
{
    const CameraRecord& camera = *choice.camera;
    std::string text = PrintableStart(choice.interfaceRecord->id) + ":" + PrintableStart(camera.id) + "  " +
                       OrDash(camera.vendor) + " " + OrDash(camera.model) + ", serial number " +
                       OrDash(camera.serialNumber);
    if (camera.userName && !camera.userName->empty()) text += ", \"" + PrintableStart(*camera.userName) + "\"";
    return text;
}

} // namespace koro::tool
