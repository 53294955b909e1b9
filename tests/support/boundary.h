// What tests of the exports share: errors as values, handles and texts by one call, and a module tree that is opened at
// once.
//
// Header-only, so that unit tests need no zvr_koro. Owned by the test; the thread rules of the library apply.
#pragma once

#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace koro::test
{

// The record of the last failure on the calling thread.
struct Error
{
    KORO_ReturnCode code = KORO_RETURN_CODE_SUCCESS;
    std::string text;

    friend bool operator==(const Error&, const Error&) = default;
    friend std::ostream& operator<<(std::ostream& stream, const Error& error)
    {
        return stream << "code " << error.code << ": \"" << error.text << "\"";
    }
};

inline Error LastError()
{
    Error error;
    std::size_t size = 0;
    if (KORO_Library_GetLastError(&error.code, nullptr, &size) != KORO_RETURN_CODE_SUCCESS || size == 0)
    {
        throw std::runtime_error("The last error could not be read");
    }
    error.text.resize(size);
    if (KORO_Library_GetLastError(&error.code, error.text.data(), &size) != KORO_RETURN_CODE_SUCCESS)
    {
        throw std::runtime_error("The last error could not be read");
    }
    error.text.pop_back(); // the terminator
    return error;
}

// The outcome of a call: EXPECT_EQ(Outcome(KORO_...), Error{}) or Error{code, "whole text"}. The stored code must be
// the returned one.
inline Error Outcome(KORO_ReturnCode returned)
{
    if (returned == KORO_RETURN_CODE_SUCCESS) return {};
    Error error = LastError();
    if (error.code != returned) throw std::runtime_error("The stored code is not the returned one");
    return error;
}

inline constexpr std::uint64_t patience_ms = 60'000; // far more than any frame or event takes

// For calls that only prepare a test.
inline void Require(KORO_ReturnCode returned)
{
    if (returned == KORO_RETURN_CODE_SUCCESS) return;
    throw std::runtime_error("code " + std::to_string(returned) + ": " + Outcome(returned).text);
}

// Returns the last output: Get<KORO_PortHandle>(KORO_Module_GetPort, module).
template <class Output, class Export, class... Arguments>
Output Get(Export function, Arguments... arguments)
{
    Output output{};
    Require(function(arguments..., &output));
    return output;
}

// Returns the text by size query and fetch: GetText(KORO_System_GetID, system).
template <class Export, class... Arguments>
std::string GetText(Export function, Arguments... arguments)
{
    std::size_t size = 0;
    Require(function(arguments..., nullptr, &size));
    std::string text(size, '\0');
    Require(function(arguments..., text.data(), &size));
    text.resize(size - 1);
    return text;
}

// Keeps the library initialised until the end of the scope.
class KoroLibrary
{
public:
    KoroLibrary() { Require(KORO_Library_Initialize()); }
    ~KoroLibrary() { KORO_Library_Close(); }
    KoroLibrary(const KoroLibrary&) = delete;
    KoroLibrary& operator=(const KoroLibrary&) = delete;
};

// A producer opened down to a data stream. Everything ends with the library's close; the members may end before.
class OpenTree
{
public:
    explicit OpenTree(const std::string& ctiPath, std::size_t interfaceIndex = 0, std::size_t deviceIndex = 0)
    {
        Require(KORO_ProducerLibrary_Construct(ctiPath.c_str(), ctiPath.size() + 1, &producerLibrary));
        systemDescriptor = Get<KORO_SystemDescriptorHandle>(KORO_ProducerLibrary_GetSystem, producerLibrary);
        system = Get<KORO_SystemHandle>(KORO_SystemDescriptor_OpenSystem, systemDescriptor);

        Require(KORO_System_UpdateInterfaces(system, 0));
        interfaceDescriptor = Get<KORO_InterfaceDescriptorHandle>(KORO_System_GetInterface, system, interfaceIndex);
        interface = Get<KORO_InterfaceHandle>(KORO_InterfaceDescriptor_OpenInterface, interfaceDescriptor);

        Require(KORO_Interface_UpdateDevices(interface, 0));
        deviceDescriptor = Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, interface, deviceIndex);
        device = Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, deviceDescriptor, exclusiveAccess);
        remoteDevice = Get<KORO_RemoteDeviceHandle>(KORO_Device_GetRemoteDevice, device);

        streamDescriptor = Get<KORO_DataStreamDescriptorHandle>(KORO_Device_GetDataStream, device, std::size_t{0});
        stream = Get<KORO_DataStreamHandle>(KORO_DataStreamDescriptor_OpenDataStream, streamDescriptor);
    }

    // Announces `count` buffers of the producer's own memory and queues them. The n-th has user pointer n.
    std::vector<KORO_BufferHandle> QueueBuffers(std::size_t count, std::size_t size = 8)
    {
        std::vector<KORO_BufferHandle> buffers;
        for (std::size_t index = 0; index < count; ++index)
        {
            void* const userPointer = reinterpret_cast<void*>(index);
            buffers.push_back(
                Get<KORO_BufferHandle>(KORO_DataStream_AllocAndAnnounceBuffer, stream, size, userPointer));
            Require(KORO_DataStream_QueueBuffer(stream, buffers.back()));
        }
        return buffers;
    }

    static constexpr std::uint32_t exclusiveAccess = 4;

    KORO_ProducerLibraryHandle producerLibrary = nullptr;
    KORO_SystemDescriptorHandle systemDescriptor = nullptr;
    KORO_SystemHandle system = nullptr;
    KORO_InterfaceDescriptorHandle interfaceDescriptor = nullptr;
    KORO_InterfaceHandle interface = nullptr;
    KORO_DeviceDescriptorHandle deviceDescriptor = nullptr;
    KORO_DeviceHandle device = nullptr;
    KORO_RemoteDeviceHandle remoteDevice = nullptr;
    KORO_DataStreamDescriptorHandle streamDescriptor = nullptr;
    KORO_DataStreamHandle stream = nullptr;
};

} // namespace koro::test
