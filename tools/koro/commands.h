// Commands: each defines its options on its part of the command line and gives back what to do.
//
// A definition runs before the command line is read; the action after it, once, on the main thread.
#pragma once

#include "tools/koro/exit_codes.h"

#include <functional>

namespace CLI
{
class App;
}

namespace koro::tool
{

// Returns the exit status. Failures leave as ToolError or koro::Error.
using Action = std::function<int()>;

Action DefineList(CLI::App& command);
Action DefineInfo(CLI::App& command);
Action DefineDoctor(CLI::App& command);
Action DefineGrab(CLI::App& command);
Action DefineFeatures(CLI::App& command);
Action DefineGet(CLI::App& command);
Action DefineSet(CLI::App& command);
Action DefineRun(CLI::App& command);
Action DefineRead(CLI::App& command);
Action DefineWrite(CLI::App& command);
Action DefineDescribe(CLI::App& command);
Action DefineXML(CLI::App& command);
Action DefineWatch(CLI::App& command);
Action DefineEvents(CLI::App& command);
Action DefineSettingsFiles(CLI::App& command);
Action DefineFiles(CLI::App& command);
Action DefineFirmware(CLI::App& command);
Action DefineProbe(CLI::App& command);
Action DefineReference(CLI::App& command);

} // namespace koro::tool
