// Register access of modules, and the locations of their descriptions. All are views that can be copied.
//
// Programs include <koro/koro.hpp>, which includes this header. Any thread may call these functions.
#ifndef KORO_CPP_PORTS_HPP
#define KORO_CPP_PORTS_HPP

#include <koro/cpp/support.hpp>
#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace koro
{

class Port;

// One location of a description of a module's features.
class PortURL : public detail::View<KORO_PortURLHandle>
{
public:
    using View::View;

    std::string URL() const { return detail::Text(KORO_PortURL_GetURL, Get()); }
    int32_t Scheme() const { return detail::Get(KORO_PortURL_GetScheme, Get()); }
    std::string FileName() const { return detail::Text(KORO_PortURL_GetFileName, Get()); }
    uint64_t FileRegisterAddress() const { return detail::Get(KORO_PortURL_GetFileRegisterAddress, Get()); }
    uint64_t FileSize() const { return detail::Get(KORO_PortURL_GetFileSize, Get()); }
    std::vector<uint8_t> FileSHA1Hash() const { return detail::Bytes(KORO_PortURL_GetFileSHA1Hash, Get()); }
    int32_t FileVersionMajor() const { return detail::Get(KORO_PortURL_GetFileVersionMajor, Get()); }
    int32_t FileVersionMinor() const { return detail::Get(KORO_PortURL_GetFileVersionMinor, Get()); }
    int32_t FileVersionSubminor() const { return detail::Get(KORO_PortURL_GetFileVersionSubminor, Get()); }
    int32_t FileSchemaVersionMajor() const { return detail::Get(KORO_PortURL_GetFileSchemaVersionMajor, Get()); }
    int32_t FileSchemaVersionMinor() const { return detail::Get(KORO_PortURL_GetFileSchemaVersionMinor, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_PortURL_GetInfo, Get(), command); }
    Port ParentPort() const;
};

// The register access of a module.
class Port : public detail::View<KORO_PortHandle>
{
public:
    using View::View;

    std::string ID() const { return detail::Text(KORO_Port_GetID, Get()); }
    std::string Name() const { return detail::Text(KORO_Port_GetName, Get()); }
    std::string VendorName() const { return detail::Text(KORO_Port_GetVendorName, Get()); }
    std::string ModelName() const { return detail::Text(KORO_Port_GetModelName, Get()); }
    std::string Version() const { return detail::Text(KORO_Port_GetVersion, Get()); }
    std::string TLType() const { return detail::Text(KORO_Port_GetTLType, Get()); }
    std::string ModuleName() const { return detail::Text(KORO_Port_GetModuleName, Get()); }
    int32_t DataEndianness() const { return detail::Get(KORO_Port_GetDataEndianness, Get()); }
    bool IsReadable() const { return detail::Flag(KORO_Port_GetIsReadable, Get()); }
    bool IsWritable() const { return detail::Flag(KORO_Port_GetIsWritable, Get()); }
    bool IsAvailable() const { return detail::Flag(KORO_Port_GetIsAvailable, Get()); }
    bool IsImplemented() const { return detail::Flag(KORO_Port_GetIsImplemented, Get()); }
    RawInfo Info(int32_t command) const { return detail::Info(KORO_Port_GetInfo, Get(), command); }

    // Reading or writing no bytes is not a failure, and the module is not accessed.
    std::vector<uint8_t> Read(uint64_t address, size_t size) const
    {
        std::vector<uint8_t> bytes(size);
        if (size == 0)
            RequireValid();
        else
            detail::Check(KORO_Port_Read(Get(), address, bytes.data(), bytes.size()));
        return bytes;
    }
    void Write(uint64_t address, const std::vector<uint8_t>& bytes) const
    {
        if (bytes.empty())
            RequireValid();
        else
            detail::Check(KORO_Port_Write(Get(), address, bytes.data(), bytes.size()));
    }
    std::vector<PortURL> URLs() const
    {
        return detail::Children<PortURL>(KORO_Port_GetNumURLs, KORO_Port_GetURL, Get());
    }

private:
    // Without an output the query only checks the handle and does not call the producer.
    void RequireValid() const
    {
        if (KORO_Port_GetInfo(Get(), 0, nullptr, nullptr, nullptr) == KORO_RETURN_CODE_INVALID_HANDLE)
            throw Error(KORO_RETURN_CODE_INVALID_HANDLE, detail::LastErrorText());
    }
};

inline Port PortURL::ParentPort() const
{
    return Port(detail::Get(KORO_PortURL_GetParentPort, Get()));
}

} // namespace koro

#endif
