// LockOrThrow: the way from a child to its parent.
#pragma once

#include "base/exceptions.h"

#include <memory>

namespace koro::internal
{

// A strong reference for the length of an operation. Throws InternalErrorException when the parent has gone.
template <class T>
std::shared_ptr<T> LockOrThrow(const std::weak_ptr<T>& parent, const char* text = "Pointer has expired!")
{
    auto locked = parent.lock();
    if (!locked) throw InternalErrorException(text);
    return locked;
}

} // namespace koro::internal
