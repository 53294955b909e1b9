#include "nodes/errors.h"

#include "map/node_map.h"
#include "nodes/node.h"

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

template <class E>
E Make(const Node& node, const std::string& text, const char* type, const char* file, int line)
{
    return E(text.c_str(), file, line, node.Map().EntryPoint().c_str(), node.Name().c_str(), type);
}

} // namespace

GENICAM_NAMESPACE::AccessException AccessError(const Node& node, const std::string& text, const char* file, int line)
{
    return Make<GENICAM_NAMESPACE::AccessException>(node, text, "AccessException", file, line);
}

GENICAM_NAMESPACE::OutOfRangeException RangeError(const Node& node, const std::string& text, const char* file, int line)
{
    return Make<GENICAM_NAMESPACE::OutOfRangeException>(node, text, "OutOfRangeException", file, line);
}

GENICAM_NAMESPACE::LogicalErrorException LogicalError(
    const Node& node, const std::string& text, const char* file, int line)
{
    return Make<GENICAM_NAMESPACE::LogicalErrorException>(node, text, "LogicalErrorException", file, line);
}

GENICAM_NAMESPACE::RuntimeException RuntimeError(const Node& node, const std::string& text, const char* file, int line)
{
    return Make<GENICAM_NAMESPACE::RuntimeException>(node, text, "RuntimeException", file, line);
}

GENICAM_NAMESPACE::InvalidArgumentException ArgumentError(
    const Node& node, const std::string& text, const char* file, int line)
{
    return Make<GENICAM_NAMESPACE::InvalidArgumentException>(node, text, "InvalidArgumentException", file, line);
}

} // namespace GENAPI_NAMESPACE::runtime
