#include "gentl/gentl_proxy.h"

#include "base/exceptions.h"
#include "base/per_thread.h"

#include <cstring>
#include <cxxabi.h>

namespace koro::internal
{

namespace
{

// Per thread and shared by all proxies: a failing call and the query of its text follow each other on one thread.
constinit thread_local GenTL::GC_ERROR notImplementedMarker = 0;
constinit thread_local PerThread<std::string> notImplementedText;

} // namespace

void ClearRefusedCall() noexcept
{
    notImplementedMarker = 0;
}

GenTL::GC_ERROR RefuseCall(const std::string& ctiPath, const char* function)
{
    notImplementedText.Get() = "The instrumented TL (" + ctiPath + ") does not implement " + function + "()!";
    notImplementedMarker = notImplementedCode;
    return notImplementedCode;
}

void ThrowMissingFunction(const std::string& ctiPath, const char* function)
{
    throw InternalErrorException("The instrumented TL (" + ctiPath + ") does not implement " + function + "()!");
}

// The unwinding of a cancelled thread has no exception object, so its reference binds to null, which the sanitizer must
// not report.
__attribute__((no_sanitize("null"))) void RethrowProducerException()
{
    try
    {
        throw;
    }
    catch (const abi::__forced_unwind&)
    {
        throw; // a cancelled thread must unwind to its end
    }
    catch (const std::exception& exception)
    {
        throw InternalErrorException(exception.what());
    }
    catch (...)
    {
        throw InternalErrorException("Unhandled exception!");
    }
}

GenTLProxy::GenTLProxy(const std::string& path) : ctiPath(path), library(path)
{
    notImplementedMarker = 0;
    notImplementedText.Get().clear();

    BindBootstrap();
    DetermineVersion();
    BindCore();
    BindVersionGroups();
}

std::string GenTLProxy::VersionText() const
{
    if (!versionQuerySucceeded) return "V (query not implemented)";
    return "V" + std::to_string(genTLVersionMajor) + "." + std::to_string(genTLVersionMinor);
}

GenTL::GC_ERROR GenTLProxy::GCGetLastError(GenTL::GC_ERROR* errorCode, char* text, std::size_t* size) const
{
    if (notImplementedMarker == 0) return producerGetLastError(errorCode, text, size);

    if (!errorCode || !size) return GenTL::GC_ERR_INVALID_PARAMETER;
    const std::string& refusal = notImplementedText.Get();
    const std::size_t needed = refusal.size() + 1;
    if (text && *size != 0 && *size < needed) return GenTL::GC_ERR_BUFFER_TOO_SMALL;
    if (text) std::memcpy(text, refusal.c_str(), needed);
    *size = needed;
    return GenTL::GC_ERR_SUCCESS;
}

void GenTLProxy::BindBootstrap()
{
    Bind(GCGetInfo, producerGetLastError, GCInitLib, GCCloseLib);
    versionQuerySucceeded = true;
}

void GenTLProxy::BindCore()
{
    Bind(
        GCReadPort, GCWritePort, GCGetPortURL, GCGetPortInfo, GCRegisterEvent, GCUnregisterEvent, EventGetData,
        EventGetDataInfo, EventGetInfo, EventFlush, EventKill, TLOpen, TLClose, TLGetInfo, TLGetNumInterfaces,
        TLGetInterfaceID, TLGetInterfaceInfo, TLOpenInterface, TLUpdateInterfaceList, IFClose, IFGetInfo,
        IFGetNumDevices, IFGetDeviceID, IFUpdateDeviceList, IFGetDeviceInfo, IFOpenDevice, DevGetPort,
        DevGetNumDataStreams, DevGetDataStreamID, DevOpenDataStream, DevGetInfo, DevClose, DSAnnounceBuffer,
        DSAllocAndAnnounceBuffer, DSFlushQueue, DSStartAcquisition, DSStopAcquisition, DSGetInfo, DSGetBufferID,
        DSClose, DSRevokeBuffer, DSQueueBuffer, DSGetBufferInfo);
}

// The requirements of a group are compared with the two numbers separately: a producer that claims 2.0 must offer only
// the core. A producer of unknown version gets all functions that it has, up to 1.4.
void GenTLProxy::BindVersionGroups()
{
    const bool isUnknown = !versionQuerySucceeded;
    BindIf(isUnknown || IsVersionAtLeast(1), GCGetNumPortURLs, GCGetPortURLInfo, GCReadPortStacked, GCWritePortStacked);
    BindIf(isUnknown || IsVersionAtLeast(3), DSGetBufferChunkData);
    BindIf(isUnknown || IsVersionAtLeast(4), IFGetParentTL, DevGetParentIF, DSGetParentDev);
    BindIf(!isUnknown && IsVersionAtLeast(5), DSGetNumBufferParts, DSGetBufferPartInfo);
}

bool GenTLProxy::IsVersionAtLeast(std::uint32_t minor) const
{
    return genTLVersionMajor >= 1 && genTLVersionMinor >= minor;
}

// The proxy initialises the producer for these two queries only; its owner does so again for use.
void GenTLProxy::DetermineVersion()
{
    if (const auto result = GCInitLib(); result != GenTL::GC_ERR_SUCCESS)
    {
        throw std::runtime_error("Initializing " + ctiPath + " failed! Code: " + std::to_string(result) + ".");
    }
    library.KeepMapped();
    try
    {
        genTLVersionMajor = QueryVersionNumber(GenTL::TL_INFO_GENTL_VER_MAJOR, "TL_INFO_GENTL_VER_MAJOR");
        genTLVersionMinor = QueryVersionNumber(GenTL::TL_INFO_GENTL_VER_MINOR, "TL_INFO_GENTL_VER_MINOR");
    }
    catch (...)
    {
        CloseIgnoringFailures();
        throw;
    }
    if (const auto result = GCCloseLib(); result != GenTL::GC_ERR_SUCCESS)
    {
        throw std::runtime_error("Closing " + ctiPath + " failed! Code: " + std::to_string(result) + ".");
    }
}

std::uint32_t GenTLProxy::QueryVersionNumber(GenTL::TL_INFO_CMD command, const char* commandName)
{
    GenTL::INFO_DATATYPE type = GenTL::INFO_DATATYPE_UNKNOWN;
    std::uint32_t number = 0;
    std::size_t size = sizeof number;
    const auto result = GCGetInfo(command, &type, &number, &size);
    if (result == GenTL::GC_ERR_SUCCESS) return number;

    versionQuerySucceeded = false;
    if (result == GenTL::GC_ERR_NOT_IMPLEMENTED || result == GenTL::GC_ERR_INVALID_PARAMETER) return 0;
    throw std::runtime_error(
        "Querying " + ctiPath + " for " + commandName + " failed! Code: " + std::to_string(result) + ".");
}

void GenTLProxy::CloseIgnoringFailures() noexcept
{
    try
    {
        GCCloseLib();
    }
    catch (...) // the earlier failure is the one to report
    {}
}

void* GenTLProxy::AddressOf(const char* function) const
{
    const auto symbol = library.Symbol(function);
    if (!symbol.address && versionQuerySucceeded)
    {
        throw std::runtime_error(
            std::string("Computing address for function ") + function + " of cti " + ctiPath +
            " failed! Code: " + symbol.errorNumber + "." + " CTI claims to support GenTL " + VersionText() + ".");
    }
    return symbol.address;
}

} // namespace koro::internal
