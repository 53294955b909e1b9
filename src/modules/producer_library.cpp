#include "modules/producer_library.h"

#include "base/filesystem.h"
#include "modules/system_descriptor.h"

#include <system_error>
#include <utility>

namespace koro::internal
{

using namespace GenTL;

namespace
{

std::string CanonicalPathOf(const std::string& path)
{
    std::error_code failure;
    return fs::canonical(path, failure).string();
}

} // namespace

// The path is resolved before the file is loaded, since a producer may change the working directory.
ProducerLibrary::ProducerLibrary(const std::string& ctiPath) : ProducerLibrary(ctiPath, CanonicalPathOf(ctiPath)) {}

ProducerLibrary::ProducerLibrary(const std::string& ctiPath, std::string pathOfFile)
    : TGenTLInfoAccessor(GenTLCaller(std::make_shared<const GenTLProxy>(ctiPath))), key(ctiPath),
      canonicalPath(std::move(pathOfFile))
{
    const auto result = gentl.Result<&GenTLProxy::GCInitLib>();
    if (result == GC_ERR_SUCCESS) return;
    throw InternalErrorException(
        "Could not initialize the library! [Function: GCInitLib | Error-Code: " + DescribeError(result) + "]");
}

ProducerLibrary::~ProducerLibrary()
{
    // The modules below end while the producer still works; for other modules the close call comes first.
    RunDestructionCallbacks();
    try
    {
        Close();
    }
    catch (const std::exception&) // the failure of a close is ignored
    {}
}

std::shared_ptr<SystemDescriptor> ProducerLibrary::GetSystem()
{
    systemOnce.Run([this] {
        system = std::make_shared<SystemDescriptor>(StringInfo(TL_INFO_ID), shared_from_this(), gentl.Proxy());
    });
    return system;
}

GC_ERROR ProducerLibrary::QueryInfo(
    std::int32_t command, INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const
{
    return gentl.Result<&GenTLProxy::GCGetInfo>(command, dataType, buffer, size);
}

void ProducerLibrary::Close()
{
    const auto result = gentl.Result<&GenTLProxy::GCCloseLib>();
    if (result == GC_ERR_SUCCESS) return;
    throw InternalErrorException(
        "Could not uninitialize the library! [Function: GCCloseLib | Error-Code: " + DescribeError(result) + "]");
}

} // namespace koro::internal
