// The settings file of the simulated cameras. Settings that are accepted must be within the bounds on which the cameras
// rely.
#include "fuzz/fuzz_target.h"
#include "producers/kit/failure.h"
#include "producers/simulator/settings/settings.h"

#include <cmath>
#include <set>
#include <string>
#include <string_view>

namespace
{

using koro::fuzz::Require;
using namespace koro::simulator;

void CheckCamera(const CameraSettings& camera, std::set<std::string>& serials)
{
    Require(!camera.serial.empty() && serials.insert(camera.serial).second, "serial numbers are there and differ");
    Require(camera.format != nullptr, "a camera has a pixel format");
    Require(camera.width >= 1 && camera.width <= 16384, "the width is within its bounds");
    Require(camera.height >= 1 && camera.height <= 16384, "the height is within its bounds");
    Require(std::isfinite(camera.rate) && camera.rate >= 0, "the rate is a number that can be waited for");
    Require(camera.source != SourceKind::Folder || !camera.folder.empty(), "a folder camera has a folder");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    try
    {
        const Settings settings = ParseSettings({reinterpret_cast<const char*>(data), size});
        Require(settings.versionMajor == 1 && settings.versionMinor <= 6, "the version is one of the standard's");
        std::set<std::string> serials;
        for (const auto& interface : settings.interfaces)
        {
            Require(!interface.id.empty(), "an interface has an id");
            for (const auto& camera : interface.cameras)
                CheckCamera(camera, serials);
        }
    }
    catch (const Failure& failure)
    {
        Require(failure.what()[0] != '\0', "a refusal says why");
    }
    return 0;
}
