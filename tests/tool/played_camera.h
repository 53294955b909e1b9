// Grabs from the camera that plays the frames of a text; tests/tool/producers/plays_frames.cpp explains the letters.
#pragma once

#include "tests/support/temporary_folder.h"
#include "tests/tool/tool_run.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

namespace koro::test
{

class PlayedCamera
{
public:
    explicit PlayedCamera(const std::string& frames) { environment["KORO_TEST_FRAMES"] = frames; }

    // With a short time-out, since nothing comes behind the last letter.
    ToolResult Grab(int frames, const Arguments& more = {}) const
    {
        return RunTool(GrabArguments(frames, more), environment);
    }
    Arguments GrabArguments(int frames, const Arguments& more = {}) const
    {
        Arguments arguments = {"grab",       "if0-dev0",
                               "--producer", ProducerFolder() + "/tool_plays_frames.cti",
                               "--frames",   std::to_string(frames),
                               "--output",   folder.File("out")};
        if (std::find(more.begin(), more.end(), "--timeout") == more.end())
            arguments.insert(arguments.end(), {"--timeout", "20"});
        arguments.insert(arguments.end(), more.begin(), more.end());
        return arguments;
    }
    const Environment& Surroundings() const { return environment; }
    void Set(const std::string& variable, const std::string& value) { environment[variable] = value; }
    const TemporaryFolder& Folder() const { return folder; }
    std::string File(const std::string& name) const { return folder.File("out/serial_of_if0-dev0-" + name); }
    // Without what they have in common, the serial number.
    std::vector<std::string> FileNames() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder.File("out")))
        {
            const std::string name = entry.path().filename().string();
            const std::string start = "serial_of_if0-dev0-";
            names.push_back(name.rfind(start, 0) == 0 ? name.substr(start.size()) : name);
        }
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    TemporaryFolder folder;
    Environment environment;
};

} // namespace koro::test
