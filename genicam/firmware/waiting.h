// Waits for commands of a device.
#pragma once

#include <GenApi/ICommand.h>
#include <chrono>

namespace GENAPI_NAMESPACE::runtime
{

// Executes and asks until the device is done, at least once. False: the limit passed.
bool ExecuteAndWait(ICommand& command, uint32_t limit_ms);

// The pauses between two questions: short at first, since a block of a file is quick, then longer and longer.
class Pauses
{
public:
    std::chrono::microseconds Next();

private:
    std::chrono::microseconds former{0};
};

} // namespace GENAPI_NAMESPACE::runtime
