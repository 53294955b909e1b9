#include "producers/kit/module.h"

#include <utility>

namespace koro::kit
{
namespace
{

constexpr EVENT_TYPE eventTypes[] = {EVENT_ERROR,          EVENT_NEW_BUFFER,    EVENT_FEATURE_INVALIDATE,
                                     EVENT_FEATURE_CHANGE, EVENT_REMOTE_DEVICE, EVENT_MODULE,
                                     EVENT_CUSTOM_ID};

} // namespace

bool Module::Close()
{
    if (closed.exchange(true)) return false;
    const auto self = shared_from_this(); // the registry may hold the last reference
    Handles().Remove(Handle());
    for (const EVENT_TYPE type : eventTypes)
        if (const auto queue = TakeRegistration(type)) queue->End();
    OnClose();
    return true;
}

bool Module::SupportsEvent(EVENT_TYPE type) const noexcept
{
    return type == EVENT_ERROR || type == EVENT_MODULE;
}

std::size_t Module::MaxBlockBytes(EVENT_TYPE type) const noexcept
{
    return UsualBlockBytes(type);
}

std::shared_ptr<EventQueue>& Module::RegistrationOf(EVENT_TYPE type)
{
    return registrations[type == EVENT_CUSTOM_ID ? numEventTypes - 1 : static_cast<std::size_t>(type)];
}

void Module::RequireEvent(EVENT_TYPE type) const
{
    if (!SupportsEvent(type))
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "the module has no event of type " + std::to_string(type));
}

std::shared_ptr<EventQueue> Module::RegisterEvent(EVENT_TYPE type)
{
    RequireEvent(type);
    const std::lock_guard lock(mutex);
    if (closed) throw Failure(GC_ERR_INVALID_HANDLE, "the module was closed meanwhile");
    auto& registration = RegistrationOf(type);
    if (registration) throw Failure(GC_ERR_RESOURCE_IN_USE, "the event is registered already");
    auto queue = std::make_shared<EventQueue>(type, shared_from_this(), mutex, Observer(), MaxBlockBytes(type));
    Handles().Add(queue);
    registration = queue;
    OnRegistration(type, queue.get());
    return queue;
}

std::shared_ptr<EventQueue> Module::TakeRegistration(EVENT_TYPE type)
{
    std::shared_ptr<EventQueue> queue;
    const std::lock_guard lock(mutex);
    queue.swap(RegistrationOf(type));
    if (!queue) return nullptr;
    OnRegistration(type, nullptr);
    Handles().Remove(queue->Handle());
    return queue;
}

void Module::UnregisterEvent(EVENT_TYPE type)
{
    RequireEvent(type);
    const auto queue = TakeRegistration(type);
    if (!queue) throw Failure(GC_ERR_NOT_INITIALIZED, "the event is not registered");
    queue->End();
}

void Module::RaiseEvent(EVENT_TYPE type, std::string block)
{
    const std::lock_guard lock(mutex);
    if (const auto& queue = RegistrationOf(type)) queue->Push({std::move(block), nullptr});
}

} // namespace koro::kit
