#include "base/exceptions.h"

namespace koro::internal
{

Exception::Exception(const std::string& text) : std::runtime_error(text) {}

Exception::Exception(const char* text) : std::runtime_error(text ? text : "Unknown exception") {}

} // namespace koro::internal
