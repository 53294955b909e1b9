// Converts texts of GenApi to those of the library and back. Bytes do not change, including zeros.
#pragma once

#include <Base/GCString.h>
#include <string>

namespace koro::internal
{

inline std::string ToText(const GENICAM_NAMESPACE::gcstring& text)
{
    return {text.c_str(), text.size()};
}

inline GENICAM_NAMESPACE::gcstring ToGenApiText(const std::string& text)
{
    return {text.data(), text.size()};
}

} // namespace koro::internal
