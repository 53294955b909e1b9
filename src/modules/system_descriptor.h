// SystemDescriptor: the system of a producer, before it is opened.
//
// Held by its ProducerLibrary, which it holds weakly. Queries the producer through the library; throws
// InternalErrorException after the library has ended. Thread-safe.
#pragma once

#include "modules/module.h"
#include "modules/system_information.h"

#include <memory>
#include <string>

namespace koro::internal
{

class ProducerLibrary;
class System;

class SystemDescriptor final : public SystemInformation, public ModuleDescriptor
{
public:
    SystemDescriptor(
        std::string systemID, const std::shared_ptr<ProducerLibrary>& library,
        const std::shared_ptr<const GenTLProxy>& proxy);

    const std::string& Key() const { return key; }
    std::string ID() const override { return id; }

    std::shared_ptr<ProducerLibrary> ParentLibrary() const;

    std::shared_ptr<System> OpenSystem() const;

private:
    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->GCGetInfo.Name(); }

    const std::weak_ptr<ProducerLibrary> parent;
    const std::string key;
    const std::string id;
};

} // namespace koro::internal
