// Every operation of the update interfaces with its exact type.
#include "tests/unit/genicam/interface_proof.h"

#include <FirmwareUpdate/FirmwareUpdateDefaultInfoCollector.h>
#include <FirmwareUpdate/FirmwareUpdateExceptions.h>
#include <FirmwareUpdate/FirmwareUpdater.h>
#include <GenICam.h>
#include <gtest/gtest.h>
#include <vector>

namespace
{

using namespace GENAPI_NAMESPACE;
using GENICAM_NAMESPACE::gcstring;
using GENICAM_NAMESPACE::GenericException;

HAS(IFirmwareUpdatableDevice, PrepareForFirmwareUpdate, void, ());
HAS(IFirmwareUpdatableDevice, GetNodeMapOfDeviceToUpdate, INodeMap*, ());
HAS(IFirmwareUpdatableDevice, DeviceResetWhileUpdatingFirmware, INodeMap*, (unsigned int, unsigned int));
HAS(IFirmwareUpdatableDevice, CleanupAfterFirmwareUpdate, void, ());
HAS(IFirmwareUpdatableDevice, GetDisplayName, gcstring, ());

HAS(IFirmwareUpdateInfoCollector, OnUpdateRead, bool, (const CFirmwareUpdateInfo&));

HAS(IFirmwareUpdateProgressObserver, OnFirmwareUpdateBegin, void, (const CFirmwareUpdateInfo&, unsigned int));
HAS(IFirmwareUpdateProgressObserver, OnFirmwareUpdateProgressStepBegin, void,
    (EFirmwareUpdateProgressStepType, unsigned int, const char*));
HAS(IFirmwareUpdateProgressObserver, OnFirmwareUpdateProgressStepPartialProgress, void,
    (EFirmwareUpdateProgressStepType, double));
HAS(IFirmwareUpdateProgressObserver, OnFirmwareUpdateProgressStepEnd, void,
    (EFirmwareUpdateProgressStepType, unsigned int));
HAS(IFirmwareUpdateProgressObserver, OnFirmwareUpdateEnd, void, ());
HAS(IFirmwareUpdateProgressObserver, OnFirmwareUpdateError, void, (const GenericException&));

HAS(CFirmwareUpdateInfo, operator==, bool, (const CFirmwareUpdateInfo&) const);
HAS(CFirmwareUpdateInfo, IsValid, bool, () const);
HAS(CFirmwareUpdateInfo, GetUpdateFilename, const char*, () const);
HAS(CFirmwareUpdateInfo, GetInfo, const char*, (const char*) const);
HAS(CFirmwareUpdateInfo, GetInfo, const char*, (const char*, const char*) const);
HAS(CFirmwareUpdateInfo, GetInfo, const char*, (size_t) const);
HAS(CFirmwareUpdateInfo, GetCountOfInfos, size_t, () const);
HAS(CFirmwareUpdateInfo, GetInfoKey, const char*, (size_t) const);
HAS(CFirmwareUpdateInfo, GetInfoLanguageCode, const char*, (const char*) const);
HAS(CFirmwareUpdateInfo, ExtractVersionFromDeviceFirmwareVersion, gcstring, (const gcstring&) const);

HAS(CFirmwareUpdater, ReadFirmwareUpdateInfos, void,
    (const gcstring&, IFirmwareUpdateInfoCollector&, const char*) const);
HAS(CFirmwareUpdater, FirmwareUpdateMatchesDevice, bool, (INodeMap*, const CFirmwareUpdateInfo&) const);
HAS(CFirmwareUpdater, ApplyUpdate, void,
    (IFirmwareUpdatableDevice*, const CFirmwareUpdateInfo&, IFirmwareUpdateProgressObserver*, const char*));
HAS(CFirmwareUpdater, GetSignatureCheckInfo, void, (const gcstring&, size_t&, size_t&, size_t&, size_t&) const);
HAS(CFirmwareUpdater, VerifyGufFile, void, (const gcstring&));

static_assert(std::has_virtual_destructor<IDestructible>::value, "");
static_assert(std::is_base_of<IDestructible, IFirmwareUpdatableDevice>::value, "");
static_assert(std::is_base_of<IDestructible, IFirmwareUpdateInfoCollector>::value, "");
static_assert(std::is_base_of<IDestructible, IFirmwareUpdateProgressObserver>::value, "");
static_assert(!std::is_polymorphic<CFirmwareUpdateInfo>::value, "");
static_assert(std::is_copy_assignable<CFirmwareUpdateInfo>::value, "");
static_assert(!std::is_polymorphic<CFirmwareUpdater>::value, "");
static_assert(!std::is_copy_constructible<CFirmwareUpdater>::value, "");
static_assert(!std::is_copy_assignable<CFirmwareUpdater>::value, "");
static_assert(
    is_same<decltype(CFirmwareUpdateDefaultInfoCollector::firmwareUpdateInfoList), std::vector<CFirmwareUpdateInfo>>,
    "");

static_assert(ProgressStepType_CheckPreconditions == 0 && ProgressStepType_AcquireUpdateData == 1, "");
static_assert(ProgressStepType_FeatureWrite == 2 && ProgressStepType_FeatureExecute == 3, "");
static_assert(ProgressStepType_FeatureAssert == 4 && ProgressStepType_FileUpload == 5, "");
static_assert(ProgressStepType_DeviceReset == 6 && ProgressStepType_Invalid == 7, "");
static_assert(std::is_convertible<EFirmwareUpdateProgressStepType, int>::value, "a plain enumeration");

template <class Exception>
constexpr bool isOfTheFamily =
    std::is_base_of<GenericException, Exception>::value && !std::is_base_of<std::exception, Exception>::value &&
    std::is_constructible<Exception, const char*, const char*, int>::value &&
    std::is_constructible<Exception, const char*, const char*, int, const char*>::value &&
    std::is_constructible<Exception, const char*, const char*, int, const char*, const char*, const char*>::value;
static_assert(isOfTheFamily<GENICAM_NAMESPACE::FileNotFoundException>, "");
static_assert(isOfTheFamily<GENICAM_NAMESPACE::FileIOException>, "");
static_assert(isOfTheFamily<GENICAM_NAMESPACE::FormatException>, "");

TEST(FirmwareUpdateInterface, ConstantsHaveTheirTexts)
{
    EXPECT_STREQ(FirmwareUpdateInfoKey_Description, "Description");
    EXPECT_STREQ(FirmwareUpdateInfoKey_Version, "Version");
    EXPECT_STREQ(FirmwareUpdateInfoKey_VersionStyle, "VersionStyle");
    EXPECT_STREQ(FirmwareUpdateInfoValue_VersionStyle_Dotted, "dotted");
    EXPECT_STREQ(FirmwareUpdateInfoValue_VersionStyle_SemVer, "semver");
    EXPECT_STREQ(FirmwareUpdateInfoKey_VersionExtractionPattern, "VersionExtractionPattern");
    EXPECT_STREQ(FirmwareUpdateInfoKey_ReleaseNotes, "ReleaseNotes");
    EXPECT_STREQ(FirmwareUpdateInfoKey_ReleaseNotesURL, "ReleaseNotesURL");
    EXPECT_STREQ(FirmwareUpdateInfoKey_UserSetPersistence, "UserSetPersistence");
    EXPECT_STREQ(FirmwareUpdateInfoKey_SequencerSetPersistence, "SequencerSetPersistence");
    EXPECT_STREQ(FirmwareUpdateInfoKey_PersistenceSupport_None, "none");
    EXPECT_STREQ(FirmwareUpdateInfoKey_PersistenceSupport_Full, "full");
}

TEST(FirmwareUpdateInterface, LastArgumentsMayBeLeftOut)
{
    CFirmwareUpdater updater;
    CFirmwareUpdateDefaultInfoCollector collector;
    EXPECT_THROW(updater.ReadFirmwareUpdateInfos("no such file", collector), GENICAM_NAMESPACE::FileNotFoundException);
    EXPECT_THROW(updater.ApplyUpdate(nullptr, CFirmwareUpdateInfo()), GENICAM_NAMESPACE::InvalidArgumentException);
    EXPECT_THROW(
        updater.ApplyUpdate(nullptr, CFirmwareUpdateInfo(), nullptr), GENICAM_NAMESPACE::InvalidArgumentException);
}

} // namespace
