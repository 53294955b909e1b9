// The getters of an update's information.
#include "tests/boundary/firmware_test.h"

namespace koro::test
{

namespace
{

class FirmwareUpdateInformation : public FirmwareTest
{
protected:
    Information With(const std::string& entries)
    {
        const UpdateFileOnDisk file = WithControl(Control(Procedure("") + Update(neededEntries + entries)));
        path = file.path;
        Require(CollectAll(path));
        return Found();
    }

    std::string path;
};

} // namespace

TEST_F(FirmwareUpdateInformation, TextsAreThoseOfTheFile)
{
    const auto information = With(
        Entry("VersionExtractionPattern", "V(.*)") + Entry("ReleaseNotes", "Less noise &amp; more") +
        Entry("ReleaseNotesURL", "https://example.com/notes"));
    ExpectScalarOut<Information, KORO_Bool8>("isValid", 1, KORO_FirmwareUpdateInformation_GetIsValid, information);
    ExpectTextOut("fileName", path, KORO_FirmwareUpdateInformation_GetFileName, information);
    ExpectTextOut("description", "Better pictures", KORO_FirmwareUpdateInformation_GetDescription, information);
    ExpectTextOut("version", "2.0", KORO_FirmwareUpdateInformation_GetVersion, information);
    ExpectTextOut(
        "versionExtractionPattern", "V(.*)", KORO_FirmwareUpdateInformation_GetVersionExtractionPattern, information);
    ExpectTextOut("releaseNotes", "Less noise & more", KORO_FirmwareUpdateInformation_GetReleaseNotes, information);
    ExpectTextOut(
        "releaseNotesUrl", "https://example.com/notes", KORO_FirmwareUpdateInformation_GetReleaseNotesURL, information);
}

TEST_F(FirmwareUpdateInformation, AbsentEntriesAreEmptyTexts)
{
    const auto information = With("");
    ExpectTextOut(
        "versionExtractionPattern", "", KORO_FirmwareUpdateInformation_GetVersionExtractionPattern, information);
    ExpectTextOut("releaseNotes", "", KORO_FirmwareUpdateInformation_GetReleaseNotes, information);
    ExpectTextOut("releaseNotesUrl", "", KORO_FirmwareUpdateInformation_GetReleaseNotesURL, information);
}

TEST_F(FirmwareUpdateInformation, TextsAreThoseInEnglishIfThereAreSome)
{
    const auto information = With(
        Entry("ReleaseNotes", "Anmerkungen", "de") + Entry("ReleaseNotes", "Notes", "en") +
        Entry("ReleaseNotesURL", "https://example.com/de", "de") + Entry("ReleaseNotesURL", "https://example.com"));
    ExpectTextOut("releaseNotes", "Notes", KORO_FirmwareUpdateInformation_GetReleaseNotes, information);
    ExpectTextOut(
        "releaseNotesUrl", "https://example.com", KORO_FirmwareUpdateInformation_GetReleaseNotesURL, information);
}

TEST_F(FirmwareUpdateInformation, NumbersAreZeroForEveryFile)
{
    for (const std::string style : {"dotted", "semver"})
    {
        for (const std::string persistence : {"none", "full"})
        {
            const auto information = With(
                Entry("VersionStyle", style) + Entry("UserSetPersistence", persistence) +
                Entry("SequencerSetPersistence", persistence));
            ExpectScalarOut<Information, KORO_FirmwareUpdateVersionStyle>(
                "versionStyle", KORO_FIRMWARE_UPDATE_VERSION_STYLE_DOTTED,
                KORO_FirmwareUpdateInformation_GetVersionStyle, information);
            ExpectScalarOut<Information, KORO_FirmwareUpdatePersistence>(
                "userSetPersistence", KORO_FIRMWARE_UPDATE_PERSISTENCE_NONE,
                KORO_FirmwareUpdateInformation_GetUserSetPersistence, information);
            ExpectScalarOut<Information, KORO_FirmwareUpdatePersistence>(
                "sequencerSetPersistence", KORO_FIRMWARE_UPDATE_PERSISTENCE_NONE,
                KORO_FirmwareUpdateInformation_GetSequencerSetPersistence, information);
        }
    }
}

} // namespace koro::test
