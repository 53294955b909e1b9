// The 36 kinds of handles and the class that belongs to each.
#pragma once

#include <koro/types.h>

namespace koro::internal
{

// Only declared here: a table needs the definition of a class only when an object is entered or found.
template <class Class>
struct HandleOfClass;
template <class Handle>
struct ClassOfHandle;

#define KORO_HANDLE_KIND(Class)                                                                                        \
    class Class;                                                                                                       \
    template <>                                                                                                        \
    struct HandleOfClass<Class>                                                                                        \
    {                                                                                                                  \
        using type = KORO_##Class##Handle;                                                                             \
    };                                                                                                                 \
    template <>                                                                                                        \
    struct ClassOfHandle<KORO_##Class##Handle>                                                                         \
    {                                                                                                                  \
        using type = Class;                                                                                            \
    };

KORO_HANDLE_KIND(ProducerLibrary)
KORO_HANDLE_KIND(SystemDescriptor)
KORO_HANDLE_KIND(System)
KORO_HANDLE_KIND(InterfaceDescriptor)
KORO_HANDLE_KIND(Interface)
KORO_HANDLE_KIND(DeviceDescriptor)
KORO_HANDLE_KIND(Device)
KORO_HANDLE_KIND(RemoteDevice)
KORO_HANDLE_KIND(DataStreamDescriptor)
KORO_HANDLE_KIND(DataStream)
KORO_HANDLE_KIND(Buffer)
KORO_HANDLE_KIND(BufferChunk)
KORO_HANDLE_KIND(BufferPart)
KORO_HANDLE_KIND(ModuleDescriptor)
KORO_HANDLE_KIND(Module)
KORO_HANDLE_KIND(NodeMap)
KORO_HANDLE_KIND(Node)
KORO_HANDLE_KIND(IntegerNode)
KORO_HANDLE_KIND(BooleanNode)
KORO_HANDLE_KIND(CommandNode)
KORO_HANDLE_KIND(FloatNode)
KORO_HANDLE_KIND(StringNode)
KORO_HANDLE_KIND(RegisterNode)
KORO_HANDLE_KIND(CategoryNode)
KORO_HANDLE_KIND(EnumerationNode)
KORO_HANDLE_KIND(EnumerationEntryNode)
KORO_HANDLE_KIND(Port)
KORO_HANDLE_KIND(PortURL)
KORO_HANDLE_KIND(EventSupportingModule)
KORO_HANDLE_KIND(EventController)
KORO_HANDLE_KIND(Event)
KORO_HANDLE_KIND(FirmwareUpdater)
KORO_HANDLE_KIND(FirmwareUpdateInformation)
KORO_HANDLE_KIND(FirmwareUpdateProgressObserver)
KORO_HANDLE_KIND(DeviceDescriptorInformationChangedCallback)
KORO_HANDLE_KIND(FileAdapter)

#undef KORO_HANDLE_KIND

template <class Class>
using HandleOf = typename HandleOfClass<Class>::type;
template <class Handle>
using ClassOf = typename ClassOfHandle<Handle>::type;

} // namespace koro::internal
