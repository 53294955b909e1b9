// PortURL: one location of a module's description, as the producer reports it.
//
// Created by the list of its port, which it holds weakly. Every operation queries the producer and throws
// InternalErrorException after the port has ended. Thread-safe.
#pragma once

#include "base/instance.h"
#include "gentl/info_accessor.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace koro::internal
{

class Port;

class PortURL final : public Instance, public TGenTLInfoAccessor<GenTL::URL_INFO_CMD_LIST>
{
public:
    PortURL(
        std::uint32_t urlIndex, const std::shared_ptr<Port>& parentPort,
        const std::shared_ptr<const GenTLProxy>& proxy);

    std::string URL() const;
    std::int32_t Scheme() const;
    std::string FileName() const;
    std::uint64_t FileRegisterAddress() const;
    std::uint64_t FileSize() const; // bytes
    std::vector<std::uint8_t> FileSHA1Hash() const;
    std::int32_t FileVersionMajor() const;
    std::int32_t FileVersionMinor() const;
    std::int32_t FileVersionSubminor() const;
    std::int32_t FileSchemaVersionMajor() const;
    std::int32_t FileSchemaVersionMinor() const;

    std::shared_ptr<Port> ParentPort() const;

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->GCGetPortURLInfo.Name(); }

    const std::weak_ptr<Port> parent;
    const std::uint32_t index;
};

} // namespace koro::internal
