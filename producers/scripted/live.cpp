#include "producers/scripted/live.h"

#include <algorithm>

namespace scripted
{

using namespace GenTL;

namespace
{

template <class Map>
typename Map::mapped_type FindIn(const Map& map, Handle handle)
{
    const auto found = map.find(handle);
    return found == map.end() ? nullptr : found->second;
}

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

Handle Live::NextHandle()
{
    lastHandle += 0x10;
    return reinterpret_cast<Handle>(lastHandle);
}

Module& Live::Add(Kind kind, const std::string& id, Handle parent)
{
    auto module = std::make_shared<Module>();
    module->kind = kind;
    module->id = id;
    module->handle = NextHandle();
    module->parent = parent;
    modules[module->handle] = module;
    return *module;
}

std::shared_ptr<Buffer> Live::AddBuffer(Module& stream, char* base, std::size_t size, void* userPointer)
{
    auto buffer = std::make_shared<Buffer>();
    if (!base) buffer->allocated.resize(size);
    buffer->handle = NextHandle();
    buffer->stream = stream.handle;
    buffer->base = base ? base : buffer->allocated.data();
    buffer->size = size;
    buffer->userPointer = userPointer;
    buffers[buffer->handle] = buffer;
    stream.announced.push_back(buffer);
    return buffer;
}

std::shared_ptr<Event> Live::AddEvent(Module& source, EVENT_TYPE type)
{
    auto event = std::make_shared<Event>();
    event->handle = NextHandle();
    event->source = source.handle;
    event->type = type;
    events[event->handle] = event;
    source.events[type] = event;
    return event;
}

Module* Live::FindModule(Handle handle)
{
    return FindIn(modules, handle).get();
}

Module* Live::Find(Handle handle, Kind kind)
{
    Module* module = FindModule(handle);
    return module && module->kind == kind ? module : nullptr;
}

Module* Live::FindByID(const std::string& id) const
{
    for (const auto& [handle, module] : modules)
    {
        if (module->id == id) return module.get();
    }
    return nullptr;
}

Module* Live::FindOpen(Kind kind, const void* node)
{
    for (const auto& [handle, module] : modules)
    {
        if (module->kind == kind && NodeOf(*module) == node) return module.get();
    }
    return nullptr;
}

std::shared_ptr<Buffer> Live::FindBuffer(Handle handle)
{
    return FindIn(buffers, handle);
}

std::shared_ptr<Event> Live::FindEvent(Handle handle)
{
    return FindIn(events, handle);
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
    for (const auto& [child, module] : modules)
    {
        if (module->parent == handle) children.push_back(child);
    }
    std::for_each(children.begin(), children.end(), [this](Handle child) { Close(child); });

    const auto module = FindIn(modules, handle);
    if (!module) return;
    while (!module->events.empty())
        EndEvent(*module, module->events.begin()->first);
    for (const auto& buffer : module->announced)
        buffers.erase(buffer->handle);
    modules.erase(handle);
}

void Live::CloseAll()
{
    while (!modules.empty())
        Close(modules.begin()->first);
}

void Live::RemoveBuffer(Module& stream, Handle buffer)
{
    std::erase_if(stream.announced, [&](const auto& announced) { return announced->handle == buffer; });
    buffers.erase(buffer);
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
    events.erase(event->handle);
    source.events.erase(type);
}

std::string Live::Name(Handle handle) const
{
    if (!handle) return "null";
    if (const auto module = FindIn(modules, handle)) return module->id;
    if (const auto buffer = FindIn(buffers, handle))
    {
        const auto number = reinterpret_cast<std::uintptr_t>(buffer->userPointer);
        return Name(buffer->stream) + "/" + std::to_string(number);
    }
    if (const auto event = FindIn(events, handle))
    {
        return Name(event->source) + ":event" + std::to_string(event->type);
    }
    return "dead";
}

std::vector<std::string> Live::OpenNames() const
{
    std::vector<std::string> names;
    for (const auto& [handle, module] : modules)
    {
        if (module->kind != Kind::RemotePort) names.push_back(module->id);
    }
    for (const auto& [handle, buffer] : buffers)
        names.push_back(Name(handle));
    for (const auto& [handle, event] : events)
        names.push_back(Name(handle));
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace scripted
