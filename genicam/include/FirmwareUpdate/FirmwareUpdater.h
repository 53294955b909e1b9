// CFirmwareUpdater: reads update files, finds the updates that fit a device, and applies one.
//
// Not thread-safe. All work is done on the caller's thread before the call returns. Errors of files raise
// FileNotFoundException, FileIOException and FormatException (FirmwareUpdateExceptions.h), and RuntimeException for
// errors in the control file.
#pragma once

#include <FirmwareUpdate/FirmwareUpdatableDevice.h>
#include <FirmwareUpdate/FirmwareUpdateInfoCollector.h>
#include <FirmwareUpdate/FirmwareUpdateProgressObserver.h>

namespace GENAPI_NAMESPACE
{

class GENFW_DECL CFirmwareUpdater
{
public:
    CFirmwareUpdater();
    ~CFirmwareUpdater();
    CFirmwareUpdater(const CFirmwareUpdater&) = delete;
    CFirmwareUpdater& operator=(const CFirmwareUpdater&) = delete;

    // Hands each update to the collector as soon as it is read, so that a fault further down comes afterwards. Texts
    // are taken in the preferred language (ISO 639-1), else "en", else without language, else the first.
    void ReadFirmwareUpdateInfos(
        const GENICAM_NAMESPACE::gcstring& Filename, IFirmwareUpdateInfoCollector& Collector,
        const char* pPreferredLanguageCode = nullptr) const;

    // All conditions of the update hold. A feature that cannot be read and a pattern that does not work are no match.
    bool FirmwareUpdateMatchesDevice(
        INodeMap* pNodeMapOfOpenDevice, const CFirmwareUpdateInfo& FirmwareUpdateInfo) const;

    // Runs the update to its end. After a failure the device may be left half updated and is not cleaned up.
    void ApplyUpdate(
        IFirmwareUpdatableDevice* pDevice, const CFirmwareUpdateInfo& FirmwareUpdateInfo,
        IFirmwareUpdateProgressObserver* pObserver = nullptr, const char* pPreferredLanguageCode = nullptr);

    // Byte ranges of the package and of the signature over it, which is not checked here; 0 and 0 without signature.
    void GetSignatureCheckInfo(
        const GENICAM_NAMESPACE::gcstring& Filename, size_t& OffsetPackageZipFile, size_t& SizePackageZipFile,
        size_t& OffsetSignatureFile, size_t& SizeSignatureFile) const;

    // Reads all that an update could need; what is wrong comes out as an exception.
    void VerifyGufFile(const GENICAM_NAMESPACE::gcstring& Filename);
};

} // namespace GENAPI_NAMESPACE
