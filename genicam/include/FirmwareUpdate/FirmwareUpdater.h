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

    // Passes each update to the collector as soon as it is read, so an error later in the file is reported after it.
    // Texts are taken in the preferred language (ISO 639-1), otherwise "en", otherwise without language, otherwise the
    // first one.
    void ReadFirmwareUpdateInfos(
        const GENICAM_NAMESPACE::gcstring& Filename, IFirmwareUpdateInfoCollector& Collector,
        const char* pPreferredLanguageCode = nullptr) const;

    // Whether all conditions of the update hold. A feature that cannot be read and a pattern that fails do not match.
    bool FirmwareUpdateMatchesDevice(
        INodeMap* pNodeMapOfOpenDevice, const CFirmwareUpdateInfo& FirmwareUpdateInfo) const;

    // Runs the whole update. After a failure the device may be partly updated and is not cleaned up.
    void ApplyUpdate(
        IFirmwareUpdatableDevice* pDevice, const CFirmwareUpdateInfo& FirmwareUpdateInfo,
        IFirmwareUpdateProgressObserver* pObserver = nullptr, const char* pPreferredLanguageCode = nullptr);

    // The byte ranges of the package and of its signature, which is not checked here; 0 and 0 without a signature.
    void GetSignatureCheckInfo(
        const GENICAM_NAMESPACE::gcstring& Filename, size_t& OffsetPackageZipFile, size_t& SizePackageZipFile,
        size_t& OffsetSignatureFile, size_t& SizeSignatureFile) const;

    // Reads everything that an update could need; errors are reported by exceptions.
    void VerifyGufFile(const GENICAM_NAMESPACE::gcstring& Filename);
};

} // namespace GENAPI_NAMESPACE
