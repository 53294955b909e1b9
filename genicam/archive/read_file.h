// ReadFile: reads a file up to a maximum size.
#pragma once

#include <Base/GCNamespace.h>
#include <stddef.h>
#include <string>

namespace GENAPI_NAMESPACE::runtime
{

// The whole file. RuntimeException, with the path, when it cannot be opened or read or has more than `maxSize` bytes.
std::string ReadFile(const std::string& path, size_t maxSize);

} // namespace GENAPI_NAMESPACE::runtime
