// Changes a test's copy of a shared object, to make files that no compiler produces.
//
// 64-bit little-endian ELF only; throws std::runtime_error when the file is not as expected.
#pragma once

#include <cstdint>
#include <string>

namespace koro::test
{

// Hides the function, as if the producer had been built without it.
void RemoveExport(const std::string& path, const std::string& function);

// Makes it a file of another architecture, such as EM_AARCH64.
void SetMachine(const std::string& path, std::uint16_t machine);

} // namespace koro::test
