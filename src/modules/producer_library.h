// ProducerLibrary: one loaded GenTL producer, the root of its module tree.
//
// Keeps the producer initialised during its life. It ends when its handle ends; the entries of the modules below are
// removed before the producer's GCCloseLib. Thread-safe.
#pragma once

#include "base/instance.h"
#include "base/once.h"
#include "gentl/info_accessor.h"

#include <memory>
#include <string>

namespace koro::internal
{

class SystemDescriptor;

class ProducerLibrary final : public Instance,
                              public TGenTLInfoAccessor<GenTL::TL_INFO_CMD_LIST>,
                              public std::enable_shared_from_this<ProducerLibrary>
{
public:
    // Loads and initialises the producer; the file is closed again when that fails. Throws CTILoadingException,
    // std::runtime_error (GenTLProxy) or InternalErrorException.
    explicit ProducerLibrary(const std::string& ctiPath);
    ~ProducerLibrary() override;

    // The path as it was passed in.
    const std::string& Key() const { return key; }
    // The canonical path at construction; empty when it could not be determined.
    const std::string& CanonicalPath() const { return canonicalPath; }
    const std::shared_ptr<const GenTLProxy>& Proxy() const { return gentl.Proxy(); }

    // The descriptor of the producer's only system; the same object at each call.
    std::shared_ptr<SystemDescriptor> GetSystem();

private:
    ProducerLibrary(const std::string& ctiPath, std::string pathOfFile);

    GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const override;
    const char* QueryName() const override { return gentl.Proxy()->GCGetInfo.Name(); }
    void Close();

    const std::string key;
    const std::string canonicalPath;
    Once systemOnce;
    std::shared_ptr<SystemDescriptor> system;
};

} // namespace koro::internal
