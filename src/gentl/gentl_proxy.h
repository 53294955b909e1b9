// GenTLProxy: one loaded GenTL producer with the table of its entry points.
//
// All objects of the producer share a reference to it, so the file stays loaded while one of them exists. A producer
// that has started stays mapped until the process ends. Constant after construction, so all threads call through it
// without a lock.
#pragma once

#include "gentl/api/gentl.h"
#include "gentl/entry_point.h"
#include "gentl/shared_object.h"

#include <cstdint>
#include <string>

namespace koro::internal
{

class GenTLProxy
{
public:
    // Loads the file, queries the version that the producer claims and binds the functions of that version. Throws
    // CTILoadingException when the file cannot be loaded, std::runtime_error when a function of its version is missing;
    // in both cases the file is closed again, and unloaded if its GCInitLib has not succeeded.
    explicit GenTLProxy(const std::string& path);
    GenTLProxy(const GenTLProxy&) = delete;
    GenTLProxy& operator=(const GenTLProxy&) = delete;

    const std::string& CTIPath() const { return ctiPath; }
    // 0 when the producer does not answer the version query.
    std::uint32_t GenTLVersionMajor() const { return genTLVersionMajor; }
    std::uint32_t GenTLVersionMinor() const { return genTLVersionMinor; }
    // "V1.5", or "V (query not implemented)".
    std::string VersionText() const;

    // Works like the standard's function. After a refused call on this thread it answers instead of the producer, with
    // the text of the refusal and without writing the code.
    GenTL::GC_ERROR GCGetLastError(GenTL::GC_ERROR* errorCode, char* text, std::size_t* size) const;

#define KORO_CORE_FUNCTION(function)                                                                                   \
    CoreEntryPoint<decltype(GenTL::function)> function                                                                 \
    {                                                                                                                  \
#function                                                                                                      \
    }
#define KORO_OPTIONAL_FUNCTION(function)                                                                               \
    OptionalEntryPoint<decltype(GenTL::function)> function                                                             \
    {                                                                                                                  \
#function                                                                                                      \
    }

    KORO_CORE_FUNCTION(GCGetInfo);
    KORO_CORE_FUNCTION(GCInitLib);
    KORO_CORE_FUNCTION(GCCloseLib);

    KORO_CORE_FUNCTION(GCReadPort);
    KORO_CORE_FUNCTION(GCWritePort);
    KORO_CORE_FUNCTION(GCGetPortURL);
    KORO_CORE_FUNCTION(GCGetPortInfo);
    KORO_CORE_FUNCTION(GCRegisterEvent);
    KORO_CORE_FUNCTION(GCUnregisterEvent);
    KORO_CORE_FUNCTION(EventGetData);
    KORO_CORE_FUNCTION(EventGetDataInfo);
    KORO_CORE_FUNCTION(EventGetInfo);
    KORO_CORE_FUNCTION(EventFlush);
    KORO_CORE_FUNCTION(EventKill);
    KORO_CORE_FUNCTION(TLOpen);
    KORO_CORE_FUNCTION(TLClose);
    KORO_CORE_FUNCTION(TLGetInfo);
    KORO_CORE_FUNCTION(TLGetNumInterfaces);
    KORO_CORE_FUNCTION(TLGetInterfaceID);
    KORO_CORE_FUNCTION(TLGetInterfaceInfo);
    KORO_CORE_FUNCTION(TLOpenInterface);
    KORO_CORE_FUNCTION(TLUpdateInterfaceList);
    KORO_CORE_FUNCTION(IFClose);
    KORO_CORE_FUNCTION(IFGetInfo);
    KORO_CORE_FUNCTION(IFGetNumDevices);
    KORO_CORE_FUNCTION(IFGetDeviceID);
    KORO_CORE_FUNCTION(IFUpdateDeviceList);
    KORO_CORE_FUNCTION(IFGetDeviceInfo);
    KORO_CORE_FUNCTION(IFOpenDevice);
    KORO_CORE_FUNCTION(DevGetPort);
    KORO_CORE_FUNCTION(DevGetNumDataStreams);
    KORO_CORE_FUNCTION(DevGetDataStreamID);
    KORO_CORE_FUNCTION(DevOpenDataStream);
    KORO_CORE_FUNCTION(DevGetInfo);
    KORO_CORE_FUNCTION(DevClose);
    KORO_CORE_FUNCTION(DSAnnounceBuffer);
    KORO_CORE_FUNCTION(DSAllocAndAnnounceBuffer);
    KORO_CORE_FUNCTION(DSFlushQueue);
    KORO_CORE_FUNCTION(DSStartAcquisition);
    KORO_CORE_FUNCTION(DSStopAcquisition);
    KORO_CORE_FUNCTION(DSGetInfo);
    KORO_CORE_FUNCTION(DSGetBufferID);
    KORO_CORE_FUNCTION(DSClose);
    KORO_CORE_FUNCTION(DSRevokeBuffer);
    KORO_CORE_FUNCTION(DSQueueBuffer);
    KORO_CORE_FUNCTION(DSGetBufferInfo);

    // Since 1.1.
    KORO_OPTIONAL_FUNCTION(GCGetNumPortURLs);
    KORO_OPTIONAL_FUNCTION(GCGetPortURLInfo);
    KORO_OPTIONAL_FUNCTION(GCReadPortStacked);
    KORO_OPTIONAL_FUNCTION(GCWritePortStacked);
    // Since 1.3.
    KORO_OPTIONAL_FUNCTION(DSGetBufferChunkData);
    // Since 1.4.
    KORO_OPTIONAL_FUNCTION(IFGetParentTL);
    KORO_OPTIONAL_FUNCTION(DevGetParentIF);
    KORO_OPTIONAL_FUNCTION(DSGetParentDev);
    // Since 1.5.
    KORO_OPTIONAL_FUNCTION(DSGetNumBufferParts);
    KORO_OPTIONAL_FUNCTION(DSGetBufferPartInfo);

private:
    void BindBootstrap();
    void BindCore();
    void BindVersionGroups();
    void DetermineVersion();
    std::uint32_t QueryVersionNumber(GenTL::TL_INFO_CMD command, const char* commandName);
    bool IsVersionAtLeast(std::uint32_t minor) const;
    void CloseIgnoringFailures() noexcept;

    template <class... EntryPoints>
    void Bind(EntryPoints&... entryPoints)
    {
        BindIf(true, entryPoints...);
    }
    // Unbound functions know the file too, for the text of a refusal.
    template <class... EntryPoints>
    void BindIf(bool isOffered, EntryPoints&... entryPoints)
    {
        (entryPoints.Bind(isOffered ? AddressOf(entryPoints.Name()) : nullptr, ctiPath), ...);
    }
    void* AddressOf(const char* function) const;

    CoreEntryPoint<decltype(GenTL::GCGetLastError)> producerGetLastError{"GCGetLastError"};

#undef KORO_CORE_FUNCTION
#undef KORO_OPTIONAL_FUNCTION

    const std::string ctiPath;
    const SharedObject library;
    // False while the version is unknown: a missing function is then not a violation.
    bool versionQuerySucceeded = false;
    std::uint32_t genTLVersionMajor = 0;
    std::uint32_t genTLVersionMinor = 0;
};

} // namespace koro::internal
