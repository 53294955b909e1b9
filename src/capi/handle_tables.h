// HandleTables: the tables of all kinds, in the order in which closing the library empties them.
//
// There is one object per process, created by the first initialisation; see capi/library_state.h. Thread-safe.
#pragma once

#include "capi/handle_table.h"
#include "capi/library_state.h"

#include <tuple>

namespace koro::internal
{

class HandleTables
{
public:
    template <class T>
    HandleTable<T>& Table() noexcept
    {
        return std::get<HandleTable<T>>(tables);
    }

    void Open();
    // The holds of all producer libraries, through which all objects with a parent are reached.
    Instance::Holds Roots();
    // Releases all references, one kind after the other.
    void Close();

private:
    template <class... Kinds>
    using TablesInClosingOrder = std::tuple<HandleTable<Kinds>...>;

    // Children before parents, so that a producer is closed only when nothing above it is left.
    TablesInClosingOrder<
        Event, EventController, EventSupportingModule, Module, ModuleDescriptor, PortURL, Port, FileAdapter,
        IntegerNode, BooleanNode, CommandNode, FloatNode, StringNode, RegisterNode, CategoryNode, EnumerationEntryNode,
        EnumerationNode, Node, NodeMap, BufferPart, BufferChunk, Buffer, DataStream, DataStreamDescriptor, RemoteDevice,
        Device, DeviceDescriptor, Interface, InterfaceDescriptor, System, SystemDescriptor, ProducerLibrary,
        FirmwareUpdateInformation, FirmwareUpdateProgressObserver, FirmwareUpdater,
        DeviceDescriptorInformationChangedCallback>
        tables;
};

// The table of a kind, by its class or by its handle.
template <class T>
HandleTable<T>& Table() noexcept
{
    return Tables().Table<T>();
}

// What a call holds while it runs. Empty when the handle is unknown, including null.
template <class Handle>
auto Find(Handle handle)
{
    return Table<ClassOf<Handle>>().Find(handle);
}

template <class Handle>
void Remove(Handle handle)
{
    Table<ClassOf<Handle>>().Remove(handle);
}

} // namespace koro::internal
