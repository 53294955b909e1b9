// ModuleConnection: a producer's system, and one of its interfaces if one is asked for, open without a camera.
//
// Owned by one command; its destructor closes from the interface up. One thread at a time.
#pragma once

#include "tools/koro/module_settings.h"
#include "tools/koro/producer_watch.h"
#include <koro/koro.hpp>

#include <string>

namespace koro::tool
{

class ModuleConnection
{
public:
    // Loads the producer at `path`. An empty `interfaceID` opens no interface. The list of the module that is asked
    // for is updated if that is possible. Each module gets its settings as soon as it is open. Throws koro::Error, or
    // ToolError when the interface has gone meanwhile.
    ModuleConnection(const std::string& path, const std::string& interfaceID, const ModuleSettings& settings);

    const koro::System& System() const { return system; }
    const koro::Interface& Interface() const { return opened; }

private:
    WatchedWork work; // ends when all below is closed
    Library library;
    ProducerLibrary producer;
    koro::System system;
    koro::Interface opened;
    ClosingMark mark; // last
};

} // namespace koro::tool
