// Descriptors of children at the C interface: entering them in the handle tables, removing them when their child is
// lost, and calling the found and lost callbacks of the application.
#pragma once

#include "base/expiring.h"
#include "capi/callbacks.h"

#include <memory>
#include <string>

namespace koro::internal
{

// Enters a descriptor whose handle is removed when the loss of the child is reported later. For this each entry keeps
// one removal function in the parent's lost registry until the parent ends. Throws the deadlock error inside a lost
// callback of the same parent; no entry is made then.
template <class Parent, class Descriptor>
HandleOf<Descriptor> EnterUntilLost(
    const std::shared_ptr<Parent>& parent, const std::shared_ptr<Descriptor>& descriptor)
{
    bool isNew = false;
    const auto handle = Table<Descriptor>().Add(descriptor, parent, &isNew);
    if (!isNew) return handle;
    try
    {
        // Weak, since the registry would otherwise keep a lost descriptor alive. The memory of the object stays in use
        // as long as the removal function exists, so no later descriptor gets its address, and a removed handle does
        // not become valid again.
        parent->RegisterLostCallback([id = descriptor->ID(), handle,
                                      entered = std::weak_ptr<Descriptor>(descriptor)](const std::string& lostID) {
            if (lostID == id) Table<Descriptor>().RemoveEntryOf(handle, entered);
        });
    }
    catch (...)
    {
        Remove(handle);
        throw;
    }
    return handle;
}

// Does the same for a child that may have been lost meanwhile: its handle is then invalid from the start.
template <class Parent, class Descriptor>
HandleOf<Descriptor> EnterDescriptor(
    const std::shared_ptr<Parent>& parent, const std::shared_ptr<Descriptor>& descriptor)
{
    const auto handle = EnterUntilLost(parent, descriptor);
    // An update on another thread may have reported the loss before the removal function was registered.
    if (!parent->IsListed(*descriptor)) Remove(handle);
    return handle;
}

// The descriptor is entered before the application receives its handle, and its loss is reported later, even if an
// update inside a callback has lost it already. The parent is held weakly because it owns the registry.
template <class Handle, class Callback, class CallbackHandle>
KORO_ReturnCode RegisterFound(
    const NamedArgument<Handle>& handle, const NamedArgument<Callback>& callback, void* context,
    const NamedArgument<CallbackHandle*>& callbackHandle)
{
    return RegisterCallback(handle, callback, callbackHandle, [&](const auto& parent) {
        return parent->RegisterFoundCallback(
            [weakParent = std::weak_ptr(parent), function = callback.value, context](const auto& descriptor) {
                function(EnterUntilLost(LockOrThrow(weakParent), descriptor), context);
            });
    });
}

// Only the id is passed, since the object has ended.
template <class Handle, class Callback, class CallbackHandle>
KORO_ReturnCode RegisterLost(
    const NamedArgument<Handle>& handle, const NamedArgument<Callback>& callback, void* context,
    const NamedArgument<CallbackHandle*>& callbackHandle)
{
    return RegisterCallback(handle, callback, callbackHandle, [&](const auto& parent) {
        return parent->RegisterLostCallback([function = callback.value, context](const std::string& id) {
            function(id.c_str(), id.size() + 1, context);
        });
    });
}

} // namespace koro::internal
