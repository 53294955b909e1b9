// The functions that a proxy binds, as tables for tests that go through all of them.
#pragma once

#include "gentl/gentl_caller.h"
#include "gentl/gentl_proxy.h"

#include <functional>
#include <string>
#include <vector>

namespace koro::test
{

struct BoundFunction
{
    std::string name;
    // Through the check, with null and zero for every argument.
    std::function<void(const internal::GenTLCaller&)> call;
    std::function<bool(const internal::GenTLProxy&)> isBound;
};

// In the order of binding, without GCGetLastError, which is no entry point of its own.
const std::vector<BoundFunction>& BootstrapFunctions();
const std::vector<BoundFunction>& CoreFunctions();
// The groups of a version: minor 1, 3, 4 and 5.
const std::vector<BoundFunction>& FunctionsSince(int minor);
// All of them, 56.
std::vector<BoundFunction> AllFunctions();

} // namespace koro::test
