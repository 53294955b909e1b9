// Callbacks of the application at the C interface.
#pragma once

#include "capi/arguments.h"

namespace koro::internal
{

// Registers the application's callback and returns its callback handle.
template <class Handle, class Callback, class CallbackHandle, class Register>
KORO_ReturnCode RegisterCallback(
    const NamedArgument<Handle>& handle, const NamedArgument<Callback>& callback,
    const NamedArgument<CallbackHandle*>& callbackHandle, Register&& registerAt)
{
    return WithObject(handle, [&](const auto& object) {
        if (!callback.value) return InvalidPointer(callback);
        if (!callbackHandle.value) return InvalidPointer(callbackHandle);
        *callbackHandle.value = reinterpret_cast<CallbackHandle>(const_cast<void*>(registerAt(object)));
        return success;
    });
}

} // namespace koro::internal
