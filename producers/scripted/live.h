// Live: what the consumer has open in a scripted producer.
//
// Guarded by the mutex of State. Handles are those of the kit: numbers that are never used twice and never
// dereferenced, so that a dead one always answers GC_ERR_INVALID_HANDLE.
#pragma once

#include "gentl/api/gentl.h"
#include "producers/kit/handle_registry.h"
#include "producers/scripted/tree.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace scripted
{

using Handle = void*;

enum class Kind
{
    System,
    Interface,
    Device,
    RemotePort,
    Stream,
};

enum class Place
{
    Idle,
    Input,
    Output,
};

struct Buffer : koro::kit::Object
{
    scripted::Handle handle = nullptr;
    scripted::Handle stream = nullptr;
    char* base = nullptr;
    std::size_t size = 0;
    void* userPointer = nullptr;
    std::vector<char> allocated; // the memory, if the producer made it
    Place place = Place::Idle;
    bool newData = false;
    std::uint64_t frameID = 0;
    std::size_t filled = 0;
    Frame frame;
};

struct EventEntry
{
    std::string block;
    std::shared_ptr<Buffer> buffer; // of a delivery; none for what a test fires
};

struct Event : koro::kit::Object
{
    scripted::Handle handle = nullptr;
    scripted::Handle source = nullptr;
    GenTL::EVENT_TYPE type = GenTL::EVENT_ERROR;
    std::deque<EventEntry> queue;
    std::uint64_t fired = 0;
    std::uint64_t kills = 0;
    bool ended = false;
};

// One open module; the fields behind `parent` are used as its kind needs them.
struct Module : koro::kit::Object
{
    Kind kind = Kind::System;
    std::string id;
    scripted::Handle handle = nullptr;
    scripted::Handle parent = nullptr;
    std::map<GenTL::EVENT_TYPE, std::shared_ptr<Event>> events;

    std::shared_ptr<Interface> interface;
    std::shared_ptr<Device> device;
    std::shared_ptr<Stream> stream;
    // The snapshots that the last update took.
    std::vector<std::shared_ptr<Interface>> listedInterfaces;
    std::vector<std::shared_ptr<Device>> listedDevices;

    std::vector<std::shared_ptr<Buffer>> announced;
    std::deque<std::shared_ptr<Buffer>> input;
    bool acquiring = false;
    std::uint64_t framesToCome = 0;
    std::uint64_t delivered = 0;
    std::uint64_t underruns = 0;
    std::uint64_t started = 0;
};

class Live
{
public:
    Tree tree = MakeTree();
    std::int64_t initCount = 0;

    Module& Add(Kind kind, const std::string& id, Handle parent);
    // Without memory of the consumer's the producer makes its own.
    std::shared_ptr<Buffer> AddBuffer(Module& stream, char* base, std::size_t size, void* userPointer);
    std::shared_ptr<Event> AddEvent(Module& source, GenTL::EVENT_TYPE type);

    // Null for a handle that is dead or of another kind.
    Module* Find(Handle handle, Kind kind);
    Module* FindModule(Handle handle);
    Module* FindByID(const std::string& id) const;
    Module* FindOpen(Kind kind, const void* node);
    std::shared_ptr<Buffer> FindBuffer(Handle handle);
    std::shared_ptr<Event> FindEvent(Handle handle);
    Port& PortOf(Module& module);

    // What is below goes first; `ended` informs waiters on events.
    void Close(Handle handle);
    void CloseAll();
    void RemoveBuffer(Module& stream, Handle buffer);
    void EndEvent(Module& source, GenTL::EVENT_TYPE type);

    // How a handle reads in the journal: the id, "null" or "dead".
    std::string Name(Handle handle) const;
    std::vector<std::string> OpenNames() const;

private:
    template <class Entry>
    void Forget(Handle handle, std::vector<std::shared_ptr<Entry>>& entries);

    koro::kit::HandleRegistry handles; // lives as long as the file: Reset() must not revive a handle
    // In the order in which they were opened, announced and registered.
    std::vector<std::shared_ptr<Module>> modules;
    std::vector<std::shared_ptr<Buffer>> buffers;
    std::vector<std::shared_ptr<Event>> events;
};

} // namespace scripted
