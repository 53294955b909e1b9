// Quoted: a text from outside, for messages.
#pragma once

#include <Base/GCNamespace.h>
#include <string>
#include <string_view>

namespace GENAPI_NAMESPACE::runtime
{

// In quotation marks, and cut after 200 bytes: it may be of any length.
inline std::string Quoted(std::string_view text)
{
    return "'" + std::string(text.substr(0, 200)) + "'";
}

} // namespace GENAPI_NAMESPACE::runtime
