// LockOrThrow: access from a child to its parent.
#pragma once

#include "base/ending_scope.h"
#include "base/exceptions.h"
#include "base/instance.h"

#include <memory>
#include <type_traits>

namespace koro::internal
{

// Returns a strong reference for the duration of an operation. Throws InternalErrorException when the parent has been
// destroyed, or when it has been ended and is alive only for running calls.
template <class T>
std::shared_ptr<T> LockOrThrow(const std::weak_ptr<T>& parent, const char* text = "Pointer has expired!")
{
    auto locked = parent.lock();
    if (!locked) throw InternalErrorException(text);
    if constexpr (std::is_base_of_v<Instance, T>)
    {
        if (locked->HasEnded() && !EndingScope::HasParent(*locked)) throw InternalErrorException(text);
    }
    return locked;
}

} // namespace koro::internal
