// Two ways to get the frames of the zero-cost producer: calling its functions directly, and the exports.
#pragma once

#include "gentl/api/gentl.h"
#include <koro/koro.h>

#include <cstdint>
#include <vector>

namespace koro::bench
{

// Ends the program with a message when an export fails: a bench of failures measures nothing.
void Require(KORO_ReturnCode code);

using Memory = std::vector<std::uint8_t>;

// A stream opened by direct calls, with buffers announced.
class DirectStream
{
public:
    explicit DirectStream(std::uint32_t device);

    // Takes one frame with the calls that the exports make too: a size query before each value.
    void Frame() const;

    GenTL::BUFFER_HANDLE Wait() const;
    void Get(GenTL::BUFFER_HANDLE buffer, GenTL::BUFFER_INFO_CMD command) const;
    void Queue(GenTL::BUFFER_HANDLE buffer) const;
    GenTL::BUFFER_HANDLE AnyBuffer() const { return anyBuffer; }

private:
    GenTL::DS_HANDLE stream = nullptr;
    GenTL::EVENT_HANDLE event = nullptr;
    GenTL::BUFFER_HANDLE anyBuffer = nullptr;
    std::vector<Memory> memory;
};

// The registers of the first camera by direct calls.
class DirectPort
{
public:
    DirectPort();

    void Read(std::uint64_t address, void* bytes, std::size_t size) const;
    void Write(std::uint64_t address, const void* bytes, std::size_t size) const;

private:
    GenTL::PORT_HANDLE port = nullptr;
};

// The library's tree over the producer, and the same kind of stream through the exports.
class Tree
{
public:
    Tree();
    ~Tree();

    KORO_SystemHandle System() const { return system; }
    KORO_DataStreamHandle OpenStream(std::size_t device);
    KORO_DeviceHandle OpenDevice(std::size_t device);

private:
    KORO_ProducerLibraryHandle library = nullptr;
    KORO_SystemHandle system = nullptr;
    KORO_InterfaceHandle interface = nullptr;
};

class ExportedStream
{
public:
    ExportedStream(Tree& tree, std::size_t device);

    void Frame() const;

    KORO_BufferHandle Wait() const;
    void Queue(KORO_BufferHandle buffer) const;
    KORO_BufferHandle AnyBuffer() const { return anyBuffer; }
    KORO_DataStreamHandle Handle() const { return stream; }

private:
    KORO_DataStreamHandle stream = nullptr;
    KORO_BufferHandle anyBuffer = nullptr;
    std::vector<Memory> memory;
};

} // namespace koro::bench
