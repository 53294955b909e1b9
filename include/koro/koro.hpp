// The C++ interface: owning objects for handles, exceptions for return codes, std::string and std::vector for pairs of
// size query and fetch.
//
// Header-only, C++17, based only on the exported C functions; it has no binary interface.
//
// Ownership. Objects of Library, ProducerLibrary, System, Interface, Device, DataStream, EventController, Event,
// BufferPart, BufferChunk, FileAdapter, FirmwareUpdater and FirmwareUpdateProgressObserver own what they represent.
// They can be moved but not copied, and they close it in their destructor or by Close(). Objects of SystemDescriptor,
// InterfaceDescriptor, DeviceDescriptor, DataStreamDescriptor, RemoteDevice, Buffer, Port, PortURL, NodeMap, all nodes
// and FirmwareUpdateInformation are views and can be copied. The object behind a view belongs to its parent; after the
// end of the parent each call on the view throws Error with KORO_RETURN_CODE_INVALID_HANDLE, so no reference dangles. A
// function that returns an owned object, such as a parent, returns a view with the same calls: DataStreamView,
// DeviceView, InterfaceView, SystemView or ProducerLibraryView.
//
// Order of destruction. GenTL requires that children are closed first: Event, EventController, DataStream, Device,
// Interface, System, ProducerLibrary, Library. Variables that are declared from the library downwards are destroyed in
// this order. Another order is safe, but the producer then sees that a parent closes before its children. Destroy the
// Registration of a callback before the object where it was made. Memory that was announced to a stream must stay valid
// until it is revoked or the stream is closed. exit() closes the library for all owners that still exist.
//
// Threads. A call may be made on any thread where the C function that it uses may be called. Do not move or close an
// owner while another thread uses it. There is one exception, as in C: KillWait() is meant to be called on another
// thread.
//
// docs/cpp.md explains the reasons and shows examples.
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
