// Commands of a device that take their time.
#pragma once

#include <GenApi/ICommand.h>

namespace GENAPI_NAMESPACE::runtime
{

// Executes and asks until the device is done, at least once. False: the limit passed.
bool ExecuteAndWait(ICommand& command, uint32_t limit_ms);

} // namespace GENAPI_NAMESPACE::runtime
