// The C++ face: owners for handles, exceptions for return codes, std::string and std::vector for size-query pairs.
//
// Header-only, C++17, over the exported C functions alone; it has no binary interface of its own.
//
// Ownership. Library, ProducerLibrary, System, Interface, Device, DataStream, EventController, Event, BufferPart,
// BufferChunk, FileAdapter, FirmwareUpdater and FirmwareUpdateProgressObserver own what they stand for: move-only,
// closed by their destructor or by Close(). SystemDescriptor, InterfaceDescriptor, DeviceDescriptor,
// DataStreamDescriptor, RemoteDevice, Buffer, Port, PortURL, NodeMap, all nodes and FirmwareUpdateInformation are
// views, free to copy: what they name belongs to its parent, and after the parent's end every call on them throws Error
// with KORO_RETURN_CODE_INVALID_HANDLE. Nothing here dangles. What hands out an owner's object, as a parent, gives a
// view of the same calls: DataStreamView, DeviceView, InterfaceView, SystemView, ProducerLibraryView.
//
// Order of destruction. GenTL wants the leaves closed first: Event, EventController, DataStream, Device, Interface,
// System, ProducerLibrary, Library. Variables declared from the library down end in this order by themselves. Another
// order is safe, but the producer then sees a parent close before its children. A Registration of a callback ends
// before the object it was made on. Memory that was announced to a stream outlives its announcement: revoke it or close
// the stream first. exit() closes the library for all owners that it leaves behind.
//
// Threads. Every call is as free as the C function behind it; one owner must not be moved or closed while another
// thread uses it, with one exception that the C functions make: KillWait() is there to be called from elsewhere.
//
// docs/cpp.md is the page with the reasons and examples.
#ifndef KORO_KORO_HPP
#define KORO_KORO_HPP

#if defined(_MSVC_LANG) ? _MSVC_LANG < 201703L : __cplusplus < 201703L
#error "<koro/koro.hpp> needs C++17 or later: compile with -std=c++17, or use the C functions of <koro/koro.h>"
#else

// IWYU pragma: begin_exports
#include <koro/cpp/acquisition.hpp>
#include <koro/cpp/buffer_contents.hpp>
#include <koro/cpp/callbacks.hpp>
#include <koro/cpp/events.hpp>
#include <koro/cpp/files.hpp>
#include <koro/cpp/firmware.hpp>
#include <koro/cpp/library.hpp>
#include <koro/cpp/nodes.hpp>
#include <koro/cpp/ports.hpp>
#include <koro/cpp/settings.hpp>
#include <koro/cpp/streams.hpp>
#include <koro/cpp/support.hpp>
#include <koro/cpp/tree.hpp>
#include <koro/koro.h>
// IWYU pragma: end_exports

#endif

#endif
