// ToText: a text of GenApi as one of ours. Bytes stay as they are, zeros included.
#pragma once

#include <Base/GCString.h>
#include <string>

namespace koro::internal
{

inline std::string ToText(const GENICAM_NAMESPACE::gcstring& text)
{
    return {text.c_str(), text.size()};
}

} // namespace koro::internal
