// Port: register access of one module, and the list of URLs of its descriptions.
//
// Shared by the owning module and its node maps; PortURLs hold it weakly. The GenTL handle belongs to the module that
// created the port and is not closed here. Thread-safe: no lock is taken around a transfer, the producer orders them.
#pragma once

#include "base/instance.h"
#include "gentl/child_manager.h"
#include "gentl/info_accessor.h"
#include "gentl/port_url.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace koro::internal
{

class Port final : public Instance,
                   public TGenTLInfoAccessor<GenTL::PORT_INFO_CMD_LIST>,
                   private TGenTLChildManager<PortURL, std::uint32_t, std::uint32_t, Port>,
                   public std::enable_shared_from_this<Port>
{
public:
    Port(GenTL::PORT_HANDLE portHandle, const std::shared_ptr<const GenTLProxy>& proxy);

    GenTL::PORT_HANDLE Handle() const { return handle; }

    std::string ID() const;
    std::string VendorName() const;
    std::string ModelName() const;
    std::string TLType() const;
    std::string ModuleName() const;
    std::string Version() const;
    std::string Name() const;
    // 1 when the port reports little or big endian, 0 when it reports neither.
    std::int32_t DataEndianness() const;
    bool IsReadable() const;
    bool IsWritable() const;
    bool IsAvailable() const;
    bool IsImplemented() const;

    // Each transfer is one call of the producer. Success means that all `size` bytes were transferred: the size that
    // the producer writes back is ignored.
    std::vector<std::uint8_t> Read(std::uint64_t address, std::size_t size) const;
    void Read(void* buffer, std::uint64_t address, std::size_t size) const;
    void Write(std::uint64_t address, const std::vector<std::uint8_t>& bytes) const;
    void Write(const void* buffer, std::uint64_t address, std::size_t size) const;

    // Read from the producer once in the life of the port.
    std::shared_ptr<const ChildList> URLs();

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->GCGetPortInfo.Name(); }

    GenTL::GC_ERROR ProducerUpdateChildren(GenTL::bool8_t* changed, std::uint64_t timeout_ms) override;
    GenTL::GC_ERROR ProducerNumChildren(std::uint32_t* count) override;
    GenTL::GC_ERROR ProducerChildID(std::uint32_t index, std::uint32_t* id) override;
    const char* UpdateFunctionName() const override { return ""; }
    const char* NumChildrenFunctionName() const override { return gentl.Proxy()->GCGetNumPortURLs.Name(); }
    const char* ChildIDFunctionName() const override { return ""; }
    std::shared_ptr<const void> HoldParent() const override { return nullptr; }
    std::shared_ptr<Port> SharedOwner() override { return shared_from_this(); }
    bool IsOwnerEnded() const override { return HasEnded(); }

    const GenTL::PORT_HANDLE handle;
};

} // namespace koro::internal
