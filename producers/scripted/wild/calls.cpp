// Behaviours of producers whose calls take long or never return, and of a camera that dies.
#include "producers/scripted/wild/producer.h"
#include "producers/scripted/wild/steering.h"

#include <algorithm>
#include <memory>
#include <unistd.h>

namespace scripted::wild
{

using namespace GenTL;

namespace
{

// Each of the transfers with a camera, by the name of its port.
void OnTransfers(Producer& producer, const Interceptor& interceptor)
{
    for (const char* function : {"GCReadPort", "GCWritePort", "GCReadPortStacked", "GCWritePortStacked"})
    {
        producer.script.Intercept(function, [=](const auto& arguments) -> std::optional<GC_ERROR> {
            return arguments.front().ends_with("-remote") ? interceptor(arguments) : std::nullopt;
        });
    }
}

} // namespace

// One call takes five seconds.
void SlowCall(Producer& producer)
{
    At(producer, "DevOpenDataStream", [] { TakeTime(NumberOf("KORO_WILD_MS", 5000)); });
}

// Updates take all the time that they are given, of which a person would notice ten seconds.
void SlowLists(Producer& producer)
{
    for (const char* function : {"TLUpdateInterfaceList", "IFUpdateDeviceList"})
    {
        producer.script.Intercept(function, [](const auto& arguments) -> std::optional<GC_ERROR> {
            constexpr std::uint64_t most = 10'000;
            const std::string& timeout = arguments.back();
            TakeTime(timeout == "infinite" ? most : std::min<std::uint64_t>(most, std::stoull(timeout)));
            return std::nullopt;
        });
    }
}

// One call waits until the test opens the gate.
void Gate(Producer& producer)
{
    At(producer, "DSStartAcquisition", WaitAtGate);
}

// GCInitLib never returns.
void HangsAtStart(Producer& producer)
{
    At(producer, "GCInitLib", [] {
        for (;;)
            pause();
    });
}

// After its pictures the camera is dead: each transfer takes a second and times out, closing it takes four.
void DeadCamera(Producer& producer)
{
    const std::uint64_t pictures = NumberOf("KORO_WILD_FRAMES", 5);
    const std::uint64_t slow = NumberOf("KORO_WILD_MS", 1000);
    const auto camera = producer.cameras.front();
    producer.source.limit = pictures;
    const auto isDead = [=] { return camera->pictures >= pictures; };
    OnTransfers(producer, [=](const auto&) -> std::optional<GC_ERROR> {
        if (!isDead()) return std::nullopt;
        TakeTime(slow);
        return GC_ERR_TIMEOUT;
    });
    producer.script.Intercept("DevClose", [=](const auto&) -> std::optional<GC_ERROR> {
        if (isDead()) TakeTime(4 * slow);
        return std::nullopt;
    });
}

} // namespace scripted::wild
