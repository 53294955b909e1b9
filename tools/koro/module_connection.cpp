#include "tools/koro/module_connection.h"

#include "tools/koro/if_known.h"
#include "tools/koro/opened_producer.h"
#include "tools/koro/read_producer.h"
#include "tools/koro/report.h"

#include <algorithm>
#include <vector>

namespace koro::tool
{

ModuleConnection::ModuleConnection(
    const std::string& path, const std::string& interfaceID, const ModuleSettings& settings)
    : library(Library::Initialize()), producer(LoadProducer(path)), system(producer.System().OpenSystem())
{
    // A module's features select among what its list has. One that cannot be updated has other features.
    if (interfaceID.empty()) IfKnown([&] { return system.UpdateInterfaces(updateTimeout_ms), true; });
    settings.ApplyTo(system);
    if (interfaceID.empty()) return;
    system.UpdateInterfaces(updateTimeout_ms);
    const std::vector<InterfaceDescriptor> known = system.Interfaces();
    const auto found = std::find_if(
        known.begin(), known.end(), [&](const InterfaceDescriptor& one) { return one.ID() == interfaceID; });
    if (found == known.end())
        throw ToolError(
            PrintableStart(interfaceID) + " has gone since it was listed.", "`koro list` shows what is there.");
    opened = found->OpenInterface();
    IfKnown([&] { return opened.UpdateDevices(updateTimeout_ms), true; });
    settings.ApplyTo(opened);
}

} // namespace koro::tool
