#include "producers/scripted/live.h"

#include <algorithm>

namespace scripted
{

using namespace GenTL;

namespace
{

// The part of the tree that an open module stands for.
const void* NodeOf(const Module& module)
{
    switch (module.kind)
    {
    case Kind::Interface:
        return module.interface.get();
    case Kind::Device:
    case Kind::RemotePort:
        return module.device.get();
    case Kind::Stream:
        return module.stream.get();
    default:
        return nullptr;
    }
}

} // namespace

template <class Entry>
void Live::Forget(Handle handle, std::vector<std::shared_ptr<Entry>>& entries)
{
    std::erase_if(entries, [&](const auto& entry) { return entry->handle == handle; });
    handles.Remove(handle);
}

Module& Live::Add(Kind kind, const std::string& id, Handle parent)
{
    auto module = std::make_shared<Module>();
    module->kind = kind;
    module->id = id;
    handles.Add(module);
    module->handle = module->Handle();
    module->parent = parent;
    modules.push_back(module);
    return *module;
}

std::shared_ptr<Buffer> Live::AddBuffer(Module& stream, char* base, std::size_t size, void* userPointer)
{
    auto buffer = std::make_shared<Buffer>();
    if (!base) buffer->allocated.resize(size);
    handles.Add(buffer);
    buffer->handle = buffer->Handle();
    buffer->stream = stream.handle;
    buffer->base = base ? base : buffer->allocated.data();
    buffer->size = size;
    buffer->userPointer = userPointer;
    buffers.push_back(buffer);
    stream.announced.push_back(buffer);
    return buffer;
}

std::shared_ptr<Event> Live::AddEvent(Module& source, EVENT_TYPE type)
{
    auto event = std::make_shared<Event>();
    handles.Add(event);
    event->handle = event->Handle();
    event->source = source.handle;
    event->type = type;
    events.push_back(event);
    source.events[type] = event;
    return event;
}

Module* Live::FindModule(Handle handle)
{
    return handles.TryFind<Module>(handle).get();
}

Module* Live::Find(Handle handle, Kind kind)
{
    Module* module = FindModule(handle);
    return module && module->kind == kind ? module : nullptr;
}

Module* Live::FindByID(const std::string& id) const
{
    for (const auto& module : modules)
    {
        if (module->id == id) return module.get();
    }
    return nullptr;
}

Module* Live::FindOpen(Kind kind, const void* node)
{
    for (const auto& module : modules)
    {
        if (module->kind == kind && NodeOf(*module) == node) return module.get();
    }
    return nullptr;
}

std::shared_ptr<Buffer> Live::FindBuffer(Handle handle)
{
    return handles.TryFind<Buffer>(handle);
}

std::shared_ptr<Event> Live::FindEvent(Handle handle)
{
    return handles.TryFind<Event>(handle);
}

Port& Live::PortOf(Module& module)
{
    switch (module.kind)
    {
    case Kind::Interface:
        return module.interface->port;
    case Kind::Device:
        return module.device->port;
    case Kind::RemotePort:
        return module.device->remotePort;
    case Kind::Stream:
        return module.stream->port;
    default:
        return tree.port;
    }
}

void Live::Close(Handle handle)
{
    std::vector<Handle> children;
    for (const auto& module : modules)
    {
        if (module->parent == handle) children.push_back(module->handle);
    }
    std::for_each(children.begin(), children.end(), [this](Handle child) { Close(child); });

    const auto module = handles.TryFind<Module>(handle);
    if (!module) return;
    while (!module->events.empty())
        EndEvent(*module, module->events.begin()->first);
    for (const auto& buffer : module->announced)
        Forget(buffer->handle, buffers);
    Forget(handle, modules);
}

void Live::CloseAll()
{
    while (!modules.empty())
        Close(modules.front()->handle);
}

void Live::RemoveBuffer(Module& stream, Handle buffer)
{
    std::erase_if(stream.announced, [&](const auto& announced) { return announced->handle == buffer; });
    Forget(buffer, buffers);
}

void Live::EndEvent(Module& source, EVENT_TYPE type)
{
    const auto event = source.events[type];
    event->ended = true;
    for (const auto& entry : event->queue)
    {
        if (entry.buffer) entry.buffer->place = Place::Idle;
    }
    event->queue.clear();
    Forget(event->handle, events);
    source.events.erase(type);
}

std::string Live::Name(Handle handle) const
{
    if (!handle) return "null";
    if (const auto module = handles.TryFind<Module>(handle)) return module->id;
    if (const auto buffer = handles.TryFind<Buffer>(handle))
    {
        const auto number = reinterpret_cast<std::uintptr_t>(buffer->userPointer);
        return Name(buffer->stream) + "/" + std::to_string(number);
    }
    if (const auto event = handles.TryFind<Event>(handle))
    {
        return Name(event->source) + ":event" + std::to_string(event->type);
    }
    return "dead";
}

std::vector<std::string> Live::OpenNames() const
{
    std::vector<std::string> names;
    for (const auto& module : modules)
    {
        if (module->kind != Kind::RemotePort) names.push_back(module->id);
    }
    for (const auto& buffer : buffers)
        names.push_back(Name(buffer->handle));
    for (const auto& event : events)
        names.push_back(Name(event->handle));
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace scripted
