// Exceptions of nodes: they contain the node that raised them and the operation that the application called.
#pragma once

#include <Base/GCException.h>
#include <string>

namespace GENAPI_NAMESPACE::runtime
{

class Node;

GENICAM_NAMESPACE::AccessException AccessError(
    const Node& node, const std::string& text, const char* file = __builtin_FILE(), int line = __builtin_LINE());
GENICAM_NAMESPACE::OutOfRangeException RangeError(
    const Node& node, const std::string& text, const char* file = __builtin_FILE(), int line = __builtin_LINE());
GENICAM_NAMESPACE::LogicalErrorException LogicalError(
    const Node& node, const std::string& text, const char* file = __builtin_FILE(), int line = __builtin_LINE());
GENICAM_NAMESPACE::RuntimeException RuntimeError(
    const Node& node, const std::string& text, const char* file = __builtin_FILE(), int line = __builtin_LINE());
GENICAM_NAMESPACE::InvalidArgumentException ArgumentError(
    const Node& node, const std::string& text, const char* file = __builtin_FILE(), int line = __builtin_LINE());

} // namespace GENAPI_NAMESPACE::runtime
