// Dependency order: what has to be there first. Any thread.
#pragma once

#include <cstddef>
#include <vector>

namespace koro::tool
{

// For each node, by its index, the indices of those that it depends on. Returns the indices so that each comes behind
// what it depends on; those that depend on each other stay together, in the order of their indices. Linear.
std::vector<size_t> DependenciesFirst(const std::vector<std::vector<size_t>>& dependencies);

} // namespace koro::tool
