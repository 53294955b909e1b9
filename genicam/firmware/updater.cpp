#include "firmware/matching.h"
#include "firmware/payloads.h"
#include "firmware/reading.h"
#include "firmware/update_run.h"

#include <FirmwareUpdate/FirmwareUpdateExceptions.h>
#include <FirmwareUpdate/FirmwareUpdater.h>

namespace GENAPI_NAMESPACE
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

std::string PathOf(const gcstring& fileName)
{
    const std::string path(fileName.c_str(), fileName.size());
    if (path.find('\0') == std::string::npos) return path;
    throw GENFW_FILE_NOT_FOUND_EXCEPTION(
        "The name of the update file '%s' has a zero byte in it", runtime::ShownPath(path).c_str());
}

} // namespace

CFirmwareUpdater::CFirmwareUpdater() = default;
CFirmwareUpdater::~CFirmwareUpdater() = default;

void CFirmwareUpdater::ReadFirmwareUpdateInfos(
    const gcstring& Filename, IFirmwareUpdateInfoCollector& Collector, const char* pPreferredLanguageCode) const
{
    const std::string path = PathOf(Filename);
    const runtime::UpdateFile file(path);
    runtime::ReadUpdates(
        file, path, pPreferredLanguageCode ? pPreferredLanguageCode : "", [&](runtime::UpdateRecord&& record) {
            return Collector.OnUpdateRead(runtime::InfoAccess::Make(std::move(record)));
        });
}

bool CFirmwareUpdater::FirmwareUpdateMatchesDevice(
    INodeMap* pNodeMapOfOpenDevice, const CFirmwareUpdateInfo& FirmwareUpdateInfo) const
{
    if (!pNodeMapOfOpenDevice) throw INVALID_ARGUMENT_EXCEPTION("There is no node map to match an update with");
    const auto record = runtime::InfoAccess::RecordOf(FirmwareUpdateInfo);
    // What has no conditions fits everywhere.
    return !record || runtime::Matches(*pNodeMapOfOpenDevice, record->conditions);
}

void CFirmwareUpdater::ApplyUpdate(
    IFirmwareUpdatableDevice* pDevice, const CFirmwareUpdateInfo& FirmwareUpdateInfo,
    IFirmwareUpdateProgressObserver* pObserver, const char* pPreferredLanguageCode)
{
    if (!pDevice) throw INVALID_ARGUMENT_EXCEPTION("There is no device to apply an update to");
    if (!FirmwareUpdateInfo.IsValid())
    {
        throw INVALID_ARGUMENT_EXCEPTION("The update to apply is not valid: it was read from no update file");
    }
    const CFirmwareUpdateInfo info = FirmwareUpdateInfo; // the application's may go while the update runs
    runtime::UpdateRun(*pDevice, info, pObserver, pPreferredLanguageCode).Run();
}

void CFirmwareUpdater::GetSignatureCheckInfo(
    const gcstring& Filename, size_t& OffsetPackageZipFile, size_t& SizePackageZipFile, size_t& OffsetSignatureFile,
    size_t& SizeSignatureFile) const
{
    const runtime::UpdateFile file(PathOf(Filename));
    OffsetPackageZipFile = file.Package().offset;
    SizePackageZipFile = file.Package().size;
    OffsetSignatureFile = file.Signature().offset;
    SizeSignatureFile = file.Signature().size;
}

void CFirmwareUpdater::VerifyGufFile(const gcstring& Filename)
{
    const std::string path = PathOf(Filename);
    const runtime::UpdateFile file(path);
    runtime::VerifyPayloads(file, runtime::ReadUpdates(file, path, {}, [](runtime::UpdateRecord&&) { return true; }));
}

} // namespace GENAPI_NAMESPACE
