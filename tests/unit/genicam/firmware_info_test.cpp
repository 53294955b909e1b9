#include "tests/unit/genicam/firmware_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace
{

using namespace koro::test;
using namespace GENAPI_NAMESPACE;
using testing::ElementsAre;

std::vector<CFirmwareUpdateInfo> ReadRules(const std::string& updates, const char* language = nullptr)
{
    return ReadAll(WithControl(Control(Procedure("") + updates)), language);
}

CFirmwareUpdateInfo ReadEntries(const std::string& entries, const char* language = nullptr)
{
    return ReadRules(Update(neededEntries + entries), language).at(0);
}

std::string Refusal(const std::string& entries)
{
    return Thrown([&] { ReadRules(Update(entries)); });
}

std::vector<std::string> KeysOf(const CFirmwareUpdateInfo& info)
{
    std::vector<std::string> keys;
    for (size_t index = 0; index < info.GetCountOfInfos(); ++index)
        keys.push_back(info.GetInfoKey(index));
    return keys;
}

TEST(FirmwareUpdateInfo, DefaultOneIsNotValidAndEmpty)
{
    const CFirmwareUpdateInfo info;
    EXPECT_FALSE(info.IsValid());
    EXPECT_STREQ(info.GetUpdateFilename(), "");
    EXPECT_STREQ(info.GetInfo("Version"), "");
    EXPECT_STREQ(info.GetInfo("Version", "none"), "none");
    EXPECT_STREQ(info.GetInfoLanguageCode("Version"), "");
    EXPECT_EQ(info.GetCountOfInfos(), 0u);
    EXPECT_EQ(Thrown([&] { info.GetInfoKey(0); }), "InvalidArgumentException: There is no entry 0; there are 0");
}

TEST(FirmwareUpdateInfo, TellsFileAndEntries)
{
    const UpdateFileOnDisk file = WithControl(Control(Procedure("") + Update(neededEntries + Entry("Extra", "1 2"))));
    const auto infos = ReadAll(file);
    ASSERT_EQ(infos.size(), 1u);
    EXPECT_TRUE(infos[0].IsValid());
    EXPECT_EQ(infos[0].GetUpdateFilename(), file.path);
    EXPECT_STREQ(infos[0].GetInfo(FirmwareUpdateInfoKey_Version), "2.0");
    EXPECT_STREQ(infos[0].GetInfo(FirmwareUpdateInfoKey_Description), "Better pictures");
    EXPECT_STREQ(infos[0].GetInfo("Extra"), "1 2");
}

TEST(FirmwareUpdateInfo, AbsentKeyIsAnEmptyTextOrTheDefault)
{
    const CFirmwareUpdateInfo info = ReadEntries("");
    EXPECT_STREQ(info.GetInfo("ReleaseNotes"), "");
    EXPECT_STREQ(info.GetInfo("version"), "");
    EXPECT_STREQ(info.GetInfo("ReleaseNotes", "unknown"), "unknown");
    EXPECT_EQ(info.GetInfo("ReleaseNotes", nullptr), nullptr);
    EXPECT_STREQ(info.GetInfo(static_cast<const char*>(nullptr)), "");
}

TEST(FirmwareUpdateInfo, TextsAreNoneOfTheHeadersLiterals)
{
    const CFirmwareUpdateInfo info = ReadEntries(Entry("VersionStyle", "semver") + Entry("UserSetPersistence", "full"));
    EXPECT_STREQ(info.GetInfo("VersionStyle"), "semver");
    EXPECT_NE(info.GetInfo("VersionStyle"), FirmwareUpdateInfoValue_VersionStyle_SemVer);
    EXPECT_NE(info.GetInfo("UserSetPersistence"), FirmwareUpdateInfoKey_PersistenceSupport_Full);
}

TEST(FirmwareUpdateInfo, KeysKeepTheOrderOfTheFile)
{
    const CFirmwareUpdateInfo info =
        ReadRules(Update(
                      Entry("Zoo", "1") + Entry("Version", "2.0") + Entry("Zoo", "2", "en") +
                      Entry("Description", "D") + Entry("Ant", "3")))
            .at(0);
    EXPECT_THAT(KeysOf(info), ElementsAre("Zoo", "Version", "Description", "Ant"));
    EXPECT_STREQ(info.GetInfo(size_t(0)), "2");
    EXPECT_STREQ(info.GetInfo(size_t(3)), "3");
}

TEST(FirmwareUpdateInfo, IndexBeyondTheEndIsRefused)
{
    const CFirmwareUpdateInfo info = ReadEntries("");
    EXPECT_EQ(Thrown([&] { info.GetInfo(size_t(2)); }), "InvalidArgumentException: There is no entry 2; there are 2");
    EXPECT_EQ(
        Thrown([&] { info.GetInfoKey(size_t(2)); }), "InvalidArgumentException: There is no entry 2; there are 2");
}

TEST(FirmwareUpdateInfo, LanguageIsThePreferredElseEnglishElseNoneElseTheFirst)
{
    const std::string all = Entry("ReleaseNotes", "deutsch", "de") + Entry("ReleaseNotes", "neutral") +
                            Entry("ReleaseNotes", "english", "en") + Entry("ReleaseNotes", "francais", "fr");
    EXPECT_STREQ(ReadEntries(all, "fr").GetInfo("ReleaseNotes"), "francais");
    EXPECT_STREQ(ReadEntries(all, "it").GetInfo("ReleaseNotes"), "english");
    EXPECT_STREQ(ReadEntries(all, nullptr).GetInfo("ReleaseNotes"), "english");
    EXPECT_STREQ(ReadEntries(all, "").GetInfo("ReleaseNotes"), "english");

    const std::string withoutEnglish = Entry("ReleaseNotes", "deutsch", "de") + Entry("ReleaseNotes", "neutral");
    EXPECT_STREQ(ReadEntries(withoutEnglish, "it").GetInfo("ReleaseNotes"), "neutral");

    const std::string foreign = Entry("ReleaseNotes", "deutsch", "de") + Entry("ReleaseNotes", "francais", "fr");
    EXPECT_STREQ(ReadEntries(foreign, "it").GetInfo("ReleaseNotes"), "deutsch");
    EXPECT_STREQ(ReadEntries(foreign, "it").GetInfoLanguageCode("ReleaseNotes"), "de");
    EXPECT_STREQ(ReadEntries(all, "fr").GetInfoLanguageCode("ReleaseNotes"), "fr");
    EXPECT_STREQ(ReadEntries(withoutEnglish, "it").GetInfoLanguageCode("ReleaseNotes"), "");
}

TEST(FirmwareUpdateInfo, FirstOfEqualsCounts)
{
    EXPECT_STREQ(ReadEntries(Entry("Version", "9.9")).GetInfo("Version"), "2.0");
    EXPECT_STREQ(ReadEntries(Entry("X", "1", "de") + Entry("X", "2", "de"), "de").GetInfo("X"), "1");
}

TEST(FirmwareUpdateInfo, VersionAndDescriptionAreMandatory)
{
    EXPECT_EQ(Refusal(Entry("Description", "D")), "FormatException: An update has no entry 'Version'");
    EXPECT_EQ(Refusal(Entry("Version", "1")), "FormatException: An update has no entry 'Description'");
    EXPECT_EQ(Refusal(""), "FormatException: An update has no entry 'Version'");
    EXPECT_EQ(Refusal(Entry("Version", "") + Entry("Description", "")), "nothing");
}

TEST(FirmwareUpdateInfo, EntriesOfTheVersionTakeNoLanguage)
{
    for (const std::string key : {"Version", "VersionStyle", "VersionExtractionPattern"})
    {
        EXPECT_EQ(
            Refusal(neededEntries + Entry(key, "dotted", "en")),
            "FormatException: The entry '" + key + "' takes no language, but has 'en'");
    }
    EXPECT_EQ(Refusal(neededEntries + "<Entry Key=\"VersionStyle\" Lang=\"\">dotted</Entry>"), "nothing");
}

TEST(FirmwareUpdateInfo, VersionStyleIsOneOfTwo)
{
    EXPECT_EQ(Refusal(neededEntries + Entry("VersionStyle", "dotted")), "nothing");
    EXPECT_EQ(Refusal(neededEntries + Entry("VersionStyle", "semver")), "nothing");
    EXPECT_EQ(
        Refusal(neededEntries + Entry("VersionStyle", "roman")),
        "FormatException: The entry 'VersionStyle' is 'roman'; it can be 'dotted' or 'semver'");
}

TEST(FirmwareUpdateInfo, OtherKeysAndValuesAreFree)
{
    const CFirmwareUpdateInfo info = ReadEntries(Entry("UserSetPersistence", "half") + Entry("", "nameless"));
    EXPECT_STREQ(info.GetInfo("UserSetPersistence"), "half");
    EXPECT_STREQ(info.GetInfo(""), "nameless");
}

TEST(FirmwareUpdateInfo, CopiesOutliveReaderAndFile)
{
    std::vector<CFirmwareUpdateInfo> infos;
    {
        const UpdateFileOnDisk file = WithControl(Control(Procedure("") + Update()));
        auto updater = std::make_unique<CFirmwareUpdater>();
        CFirmwareUpdateDefaultInfoCollector collector;
        updater->ReadFirmwareUpdateInfos(file.path.c_str(), collector);
        infos = collector.firmwareUpdateInfoList;
    }
    const CFirmwareUpdateInfo copy = infos.at(0);
    infos.clear();
    EXPECT_STREQ(copy.GetInfo("Version"), "2.0");
}

TEST(FirmwareUpdateInfo, SameUpdateOfTheSameFileIsEqual)
{
    const UpdateFileOnDisk file = WithControl(Control(Procedure("") + Update() + Update()));
    const auto first = ReadAll(file);
    const auto second = ReadAll(file);
    ASSERT_EQ(first.size(), 2u);
    EXPECT_TRUE(first[0] == first[0]);
    EXPECT_TRUE(first[0] == second[0]);
    EXPECT_FALSE(first[0] == first[1]);
    EXPECT_FALSE(first[0] == CFirmwareUpdateInfo());
    EXPECT_FALSE(CFirmwareUpdateInfo() == first[0]);
    EXPECT_TRUE(CFirmwareUpdateInfo() == CFirmwareUpdateInfo());
    EXPECT_FALSE(first[0] == ReadAll(WithControl(Control(Procedure("") + Update() + Update()))).at(0));
}

TEST(FirmwareUpdateInfo, ExtractsTheInstalledVersion)
{
    const CFirmwareUpdateInfo info = ReadEntries(Entry("VersionExtractionPattern", "V(\\d+(?:\\.\\d+)*)"));
    EXPECT_STREQ(info.ExtractVersionFromDeviceFirmwareVersion("id=7;V1.22.333;x").c_str(), "1.22.333");
    EXPECT_STREQ(
        ReadEntries(Entry("VersionExtractionPattern", "\\d+\\.\\d+"))
            .ExtractVersionFromDeviceFirmwareVersion("V1.22")
            .c_str(),
        "1.22");
}

TEST(FirmwareUpdateInfo, VersionThatIsNotFoundIsARuntimeError)
{
    const CFirmwareUpdateInfo info = ReadEntries(Entry("VersionExtractionPattern", "V(\\d+)"));
    EXPECT_EQ(
        Thrown([&] { info.ExtractVersionFromDeviceFirmwareVersion("1.22"); }),
        "RuntimeException: The pattern 'V(\\d+)' finds no version in '1.22'");
    EXPECT_EQ(
        Thrown(
            [] { ReadEntries(Entry("VersionExtractionPattern", "(")).ExtractVersionFromDeviceFirmwareVersion("1"); }),
        "RuntimeException: The pattern '(' is broken at byte 1: missing closing parenthesis");
}

TEST(FirmwareUpdateInfo, UpdateWithoutExtractionPatternIsALogicalError)
{
    const std::string refusal = "LogicalErrorException: The update has no entry 'VersionExtractionPattern'";
    EXPECT_EQ(Thrown([] { ReadEntries("").ExtractVersionFromDeviceFirmwareVersion("1"); }), refusal);
    EXPECT_EQ(Thrown([] { CFirmwareUpdateInfo().ExtractVersionFromDeviceFirmwareVersion("1"); }), refusal);
}

// Counts, and stops or throws at one call.
class Collector : public IFirmwareUpdateInfoCollector
{
public:
    bool OnUpdateRead(const CFirmwareUpdateInfo& info) override
    {
        versions.push_back(info.GetInfo("Version"));
        if (versions.size() == throwAt) throw 5;
        return versions.size() != stopAt;
    }

    std::string Read(const std::string& rules)
    {
        const UpdateFileOnDisk file = WithControl(Control(rules));
        return Thrown([&] { CFirmwareUpdater().ReadFirmwareUpdateInfos(file.path.c_str(), *this); });
    }

    std::vector<std::string> versions;
    size_t stopAt = 0;
    size_t throwAt = 0;
};

std::string Versioned(const std::string& version)
{
    return Update(Entry("Version", version) + Entry("Description", "D"));
}

TEST(ReadFirmwareUpdateInfos, GivesTheUpdatesInTheOrderOfTheFile)
{
    Collector collector;
    EXPECT_EQ(collector.Read(Procedure("") + Versioned("1") + Versioned("3") + Versioned("2")), "nothing");
    EXPECT_THAT(collector.versions, ElementsAre("1", "3", "2"));
}

TEST(ReadFirmwareUpdateInfos, FaultFurtherDownComesAfterTheUpdatesAboveIt)
{
    Collector collector;
    EXPECT_THAT(
        collector.Read(Procedure("") + Versioned("1") + "<Oops/>" + Versioned("2")),
        testing::StartsWith("RuntimeException: Error while parsing XML stream at line 2 and column "));
    EXPECT_THAT(collector.versions, ElementsAre("1"));
}

TEST(ReadFirmwareUpdateInfos, FormatErrorFurtherDownComesAfterTheUpdatesAboveIt)
{
    Collector collector;
    EXPECT_EQ(
        collector.Read(Procedure("") + Versioned("1") + Update("")),
        "FormatException: An update has no entry 'Version'");
    EXPECT_THAT(collector.versions, ElementsAre("1"));
}

TEST(ReadFirmwareUpdateInfos, FalseEndsTheReadingBeforeAFault)
{
    Collector collector;
    collector.stopAt = 2;
    EXPECT_EQ(collector.Read(Procedure("") + Versioned("1") + Versioned("2") + Versioned("3") + "<Oops/>"), "nothing");
    EXPECT_THAT(collector.versions, ElementsAre("1", "2"));
}

TEST(ReadFirmwareUpdateInfos, ExceptionOfTheCollectorGoesThrough)
{
    Collector collector;
    collector.throwAt = 1;
    EXPECT_EQ(collector.Read(Procedure("") + Versioned("1") + Versioned("2")), "something else");
    EXPECT_THAT(collector.versions, ElementsAre("1"));
}

TEST(ReadFirmwareUpdateInfos, UnknownProcedureIsNoFault)
{
    Collector collector;
    EXPECT_EQ(collector.Read(Procedure("") + Update(neededEntries, "<Condition Feature=\"A\"/>", "Other")), "nothing");
    EXPECT_THAT(collector.versions, ElementsAre("2.0"));
}

} // namespace
