// StreamTest: a tree that is open down to the stream, and what tests of acquisition and events do with it.
#pragma once

#include "tests/boundary/info_getters.h"
#include "tests/boundary/producer_errors.h"
#include "tests/boundary/tree_test.h"
#include "tests/support/journal.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace koro::test
{

// A failing call of the scripted producer, as the exports report it.
inline Error Failure(const std::string& function, GenTL::GC_ERROR code)
{
    return CallFailure(function, ProducerErrorOf(code));
}

// The same under another return code.
inline Error FailureAs(KORO_ReturnCode returned, const std::string& function, GenTL::GC_ERROR code)
{
    return {returned, Failure(function, code).text};
}

inline const Error aborted = Failure("EventGetData", GenTL::GC_ERR_ABORT);
inline const Error timedOut = FailureAs(KORO_RETURN_CODE_TIMEOUT, "EventGetData", GenTL::GC_ERR_TIMEOUT);

inline bool IsAlive(KORO_BufferHandle buffer)
{
    std::size_t ignored = 0;
    return Outcome(KORO_Buffer_GetSize(buffer, &ignored)) != InvalidHandle("bufferHandle");
}

// The bytes by size query and fetch: GetBytes(KORO_Event_GetRawData, event).
template <class Export, class... Arguments>
std::string GetBytes(Export function, Arguments... arguments)
{
    std::size_t size = 0;
    Require(function(arguments..., nullptr, &size));
    std::string bytes(size, '\0');
    Require(function(arguments..., reinterpret_cast<std::uint8_t*>(bytes.data()), &size));
    bytes.resize(size);
    return bytes;
}

class StreamTest : public TreeTest
{
protected:
    using Journal = std::vector<std::string>;
    using Memory = std::array<char, 8>;

    StreamTest() { producer->ClearJournal(); }

    // The calls of these functions since the last ClearJournal.
    Journal CallsOf(const std::vector<std::string>& functions) const
    {
        return koro::test::CallsOf(producer->Journal(), functions);
    }

    // Memory of the test's; its user pointer is the byte behind the first.
    KORO_BufferHandle Announce(
        Memory& memory, KORO_BufferRevocationCallback callback = nullptr, void* context = nullptr) const
    {
        KORO_BufferHandle buffer = nullptr;
        Require(KORO_DataStream_AnnounceBuffer(
            tree.stream, memory.data(), memory.size(), memory.data() + 1, callback, context, &buffer));
        return buffer;
    }

    // Buffers of the producer's memory, announced and queued; the acquisition runs without an end.
    std::vector<KORO_BufferHandle> StartWithBuffers(std::size_t count)
    {
        auto buffers = tree.QueueBuffers(count);
        Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, KORO_ACQ_START_FLAGS_DEFAULT));
        return buffers;
    }

    bool Deliver(const scripted::Frame& frame = scripted::Frame()) const { return producer->Deliver(streamID, frame); }

    KORO_BufferHandle Wait(std::uint64_t timeout_ms = 0) const
    {
        return Get<KORO_BufferHandle>(KORO_DataStream_WaitForFinishedBuffer, tree.stream, timeout_ms);
    }

    Error OutcomeOfWait(std::uint64_t timeout_ms = 0) const
    {
        KORO_BufferHandle buffer = nullptr;
        return Outcome(KORO_DataStream_WaitForFinishedBuffer(tree.stream, timeout_ms, &buffer));
    }

    // That of the second device on the first interface.
    KORO_DataStreamHandle OpenSecondStream() const
    {
        const auto descriptor =
            Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, std::size_t{1});
        const auto device =
            Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, descriptor, OpenTree::exclusiveAccess);
        return Get<KORO_DataStreamHandle>(
            KORO_DataStreamDescriptor_OpenDataStream,
            Get<KORO_DataStreamDescriptorHandle>(KORO_Device_GetDataStream, device, std::size_t{0}));
    }

    // Of the stream.
    KORO_EventControllerHandle EnableEvents(std::int32_t type) const
    {
        const auto module = Get<KORO_EventSupportingModuleHandle>(KORO_DataStream_ToEventSupportingModule, tree.stream);
        return Get<KORO_EventControllerHandle>(KORO_EventSupportingModule_EnableEvents, module, type);
    }

    static inline const std::string streamID = "if0-dev0-stream0";
};

} // namespace koro::test
