// Firmware update files through the exports, as an application uses them: the updates of a file are collected and all
// their information is queried. The first byte determines the meaning of the rest: F a whole file, P the package inside
// one, C the control file inside the package.
#include "fuzz/fuzz_target.h"
#include "tests/unit/genicam/zip_builder.h"
#include <koro/koro.h>

#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

namespace
{

using koro::fuzz::Require;

// A file in memory that has a path.
class MemoryFile
{
public:
    MemoryFile() : file(memfd_create("update", MFD_CLOEXEC)), path("/proc/self/fd/" + std::to_string(file))
    {
        Require(file >= 0, "there is a file");
    }
    ~MemoryFile() { close(file); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    void Replace(std::string_view bytes) const
    {
        Require(ftruncate(file, 0) == 0, "the file is emptied");
        Require(
            pwrite(file, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()), "the file is written");
    }
    const std::string& Path() const { return path; }

private:
    const int file;
    const std::string path;
};

// Used for many inputs, so that one collection meets the state that the previous one has left.
struct Updater
{
    Updater()
    {
        Require(KORO_Library_Initialize() == KORO_RETURN_CODE_SUCCESS, "the library starts");
        Construct();
    }
    ~Updater() { KORO_Library_Close(); }
    Updater(const Updater&) = delete;
    Updater& operator=(const Updater&) = delete;

    void Construct()
    {
        Require(KORO_FirmwareUpdater_Construct(&handle) == KORO_RETURN_CODE_SUCCESS, "there is an updater");
    }
    // Handles of information end only with their updater, so the updater is replaced regularly.
    void CountInput()
    {
        if (++inputs % 256 != 0) return;
        Require(KORO_FirmwareUpdater_Destruct(handle) == KORO_RETURN_CODE_SUCCESS, "an updater ends");
        Construct();
    }

    std::size_t NumFound() const
    {
        std::size_t count = 0;
        Require(
            KORO_FirmwareUpdater_GetNumFirmwareUpdateInformation(handle, &count) == KORO_RETURN_CODE_SUCCESS,
            "what was found is counted");
        return count;
    }

    KORO_FirmwareUpdaterHandle handle = nullptr;
    MemoryFile file;
    std::size_t inputs = 0;
};

using Information = KORO_FirmwareUpdateInformationHandle;

std::string TextOf(KORO_ReturnCode (*get)(Information, char*, std::size_t*), Information information)
{
    std::size_t size = 0;
    Require(get(information, nullptr, &size) == KORO_RETURN_CODE_SUCCESS, "a text has a size");
    std::string text(size, '#');
    Require(get(information, text.data(), &size) == KORO_RETURN_CODE_SUCCESS, "a text is given");
    Require(size == text.size() && text.find('\0') == size - 1, "a text ends with its only zero");
    text.pop_back();
    return text;
}

template <class Value>
Value NumberOf(KORO_ReturnCode (*get)(Information, Value*), Information information)
{
    Value value{};
    Require(get(information, &value) == KORO_RETURN_CODE_SUCCESS, "a number is given");
    return value;
}

void Ask(Information information, const std::string& path)
{
    Require(NumberOf(KORO_FirmwareUpdateInformation_GetIsValid, information) == 1, "what was read is valid");
    Require(
        TextOf(KORO_FirmwareUpdateInformation_GetFileName, information) == path, "the path is the one that was given");
    for (const auto get :
         {KORO_FirmwareUpdateInformation_GetDescription, KORO_FirmwareUpdateInformation_GetVersion,
          KORO_FirmwareUpdateInformation_GetVersionExtractionPattern, KORO_FirmwareUpdateInformation_GetReleaseNotes,
          KORO_FirmwareUpdateInformation_GetReleaseNotesURL})
        TextOf(get, information);
    Require(NumberOf(KORO_FirmwareUpdateInformation_GetVersionStyle, information) == 0, "styles are not told");
    Require(NumberOf(KORO_FirmwareUpdateInformation_GetUserSetPersistence, information) == 0, "nor what user sets do");
    Require(NumberOf(KORO_FirmwareUpdateInformation_GetSequencerSetPersistence, information) == 0, "nor sequencers");
}

void RequireRefusal(KORO_ReturnCode code)
{
    KORO_ReturnCode stored = KORO_RETURN_CODE_SUCCESS;
    std::size_t size = 0;
    Require(
        KORO_Library_GetLastError(&stored, nullptr, &size) == KORO_RETURN_CODE_SUCCESS && stored == code && size > 1,
        "a refusal says why");
    Require(code == KORO_RETURN_CODE_ERROR || code == KORO_RETURN_CODE_BAD_ALLOC, "a refusal is an error");
}

void Collect(std::string_view bytes)
{
    static Updater updater;
    updater.CountInput();
    updater.file.Replace(bytes);
    const std::string& path = updater.file.Path();
    const std::size_t before = updater.NumFound();
    const KORO_ReturnCode code =
        KORO_FirmwareUpdater_CollectAllFirmwareUpdateInformation(updater.handle, path.c_str(), path.size() + 1);
    const std::size_t found = updater.NumFound();
    if (code != KORO_RETURN_CODE_SUCCESS)
    {
        RequireRefusal(code);
        Require(found == before, "a failure leaves what was found before");
        return;
    }
    for (std::size_t index = 0; index < found; ++index)
    {
        Information information = nullptr;
        Require(
            KORO_FirmwareUpdater_GetFirmwareUpdateInformation(updater.handle, index, &information) ==
                KORO_RETURN_CODE_SUCCESS,
            "what was counted is given");
        Ask(information, path);
    }
}

std::string Contained(const std::string& package)
{
    koro::test::ZipBuilder container;
    container.AddStored("package.zip", package);
    return container.Bytes();
}

std::string Packed(const std::string& control)
{
    koro::test::ZipBuilder package;
    package.AddStored("Control.xml", control);
    return package.Bytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) return 0;
    const std::string rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0])
    {
    case 'F':
        Collect(rest);
        break;
    case 'P':
        Collect(Contained(rest));
        break;
    case 'C':
        Collect(Contained(Packed(rest)));
        break;
    default:
        break;
    }
    return 0;
}
