// Descriptions with recorded feature files of the reference runtime, each over the memory of a simulated camera: what
// is stored is what was recorded, and a camera that is loaded from it stores the same again, byte by byte. They lie in
// the folder that KORO_REFERENCE_DATA names.
#include "tests/boundary/recorded_files.h"
#include "tests/support/boundary.h"
#include "tests/support/environment_variable.h"
#include "tests/support/scripted_producer.h"
#include "tests/support/temporary_folder.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <iostream>
#include <regex>
#include <sstream>
#include <string>
#include <utility>

namespace koro::test
{

namespace
{

namespace fs = std::filesystem;

// What was recorded about one description.
struct RecordedSettings
{
    explicit RecordedSettings(const std::string& answer, const std::string& nodes)
    {
        if (answer.rfind("FAILED ", 0) == 0) failure = answer.substr(7, answer.find('\n') - 7);
        const std::string load = "== load ";
        const auto loaded = answer.find("\n" + load);
        isStored = answer.rfind("== store ", 0) == 0 && loaded != std::string::npos;
        if (isStored)
        {
            file = FileIn(answer, 0, loaded);
            again = FileIn(answer, loaded + 1, answer.size());
            isLoaded = answer.compare(loaded + 1, load.size() + 1, load + "1") == 0;
        }
        std::istringstream lines(nodes);
        for (std::string line; std::getline(lines, line);)
        {
            if (line.rfind("FAILED ", 0) == 0) failureOfTheMap = line.substr(7, line.find(':') - 7);
            if (line.rfind("connect ", 0) != 0) continue;
            ++ports;
            hasDevicePort = hasDevicePort || line.rfind("connect Device ", 0) == 0;
        }
    }

    // Of a storing that failed the words alone were recorded.
    std::string ClassOfTheFailure() const
    {
        if (!failureOfTheMap.empty()) return failureOfTheMap;
        const std::pair<const char*, const char*> classes[] = {
            {"Failed to evaluate formula", "LogicalErrorException"},
            {"Node is not writable", "AccessException"},
            {"cannot convert value", "InvalidArgumentException"},
            {"must be equal or", "OutOfRangeException"}};
        for (const auto& [words, name] : classes)
        {
            if (failure.find(words) != std::string::npos) return name;
        }
        return "unknown";
    }
    // "Feature 'A' : ..." and "A : ..." name it; empty for all else.
    std::string NodeOfTheFailure() const
    {
        std::smatch found;
        const bool isNamed = std::regex_search(failure, found, std::regex("^(?:Feature ('\\w+')|(\\w+)) : "));
        return isNamed && failureOfTheMap.empty() ? found.str(found[1].matched ? 1 : 2) : "";
    }

    // The recorded bag did not go through a file, which has no empty values.
    bool CanBeRead() const { return file.find("\t\n") == std::string::npos; }

    bool isStored = false;
    bool isLoaded = false;
    std::string failure;         // the text why it is not stored
    std::string failureOfTheMap; // the class, of a description that makes none
    std::string file;
    std::string again; // stored by the camera that was loaded
    std::size_t ports = 0;
    bool hasDevicePort = false;

private:
    // Between the headline and the end, in the version of our files.
    static std::string FileIn(const std::string& answer, std::size_t headline, std::size_t end)
    {
        const auto begin = answer.find('\n', headline) + 1;
        std::string text = answer.substr(begin, end + 1 - begin);
        const std::string version = "(version 3.4.0)";
        const auto place = text.find(version);
        if (place != std::string::npos) text.replace(place, version.size(), "(version 3.4.1)");
        return text;
    }
};

// A camera that has just been plugged in, all its memory zero, with this description.
class NewCamera
{
public:
    NewCamera() : tree(BuiltProducer("zvr_koro_simulator")) {}

    KORO_NodeMapHandle Map() const
    {
        const auto module = Get<KORO_ModuleHandle>(KORO_RemoteDevice_ToModule, tree.remoteDevice);
        return Get<KORO_NodeMapHandle>(KORO_Module_GetNodeMap, module, std::size_t{0});
    }
    Error Store(const std::string& path) const
    {
        return Outcome(KORO_NodeMap_StoreToFile(Map(), path.c_str(), path.size() + 1));
    }
    Error Load(const std::string& path) const
    {
        return Outcome(KORO_NodeMap_LoadFromFile(Map(), path.c_str(), path.size() + 1));
    }

private:
    const KoroLibrary library;
    const OpenTree tree;
};

class SettingsRoundTrip : public testing::Test
{
protected:
    void SetUp() override
    {
        const char* const data = std::getenv("KORO_REFERENCE_DATA");
        if (!data) GTEST_SKIP() << "KORO_REFERENCE_DATA does not name a folder";
        descriptions = data;
    }

    bool HasSubject(const std::string& subject) const { return fs::exists(descriptions / subject); }

    void TryAllOf(const std::string& subject)
    {
        for (const auto& entry : fs::directory_iterator(descriptions / subject))
        {
            if (entry.path().extension() != ".xml") continue;
            SCOPED_TRACE(entry.path().filename().string());
            const RecordedSettings recorded(
                RecordedAnswer(entry.path(), ".persist"), RecordedAnswer(entry.path(), ".nodes"));
            Try(entry.path(), recorded);
        }
        std::cout << stored << " descriptions stored, " << same << " as recorded, " << roundTrips
                  << " loaded and stored again, " << refused << " refused\n";
    }

    std::size_t stored = 0;
    std::size_t same = 0;
    std::size_t roundTrips = 0;
    std::size_t refused = 0;

private:
    void Try(const fs::path& description, const RecordedSettings& recorded)
    {
        std::string bytes = ContentOf(description);
        if (bytes.empty()) return; // no camera serves that
        // The runtime connects maps with this port alone. What the answers knew of others cannot be known here.
        const bool hasDevicePort = recorded.hasDevicePort || bytes.find("<Port Name=\"Device\"") != std::string::npos;
        const auto end = bytes.rfind("</RegisterDescription>");
        if (!hasDevicePort && end == std::string::npos && recorded.isStored) return;
        if (!hasDevicePort && end != std::string::npos) bytes.insert(end, "<Port Name=\"Device\"/>");
        const std::string path = folder.MakeFile("camera.xml", bytes);
        const EnvironmentVariable settings(
            "KORO_SIMULATOR_CONFIG",
            folder.MakeFile(
                "simulator.json",
                "{\"interfaces\": [{\"id\": \"if\", \"cameras\": [{\"serial\": \"cam\", \"description\": \"" + path +
                    "\"}]}]}"));
        const std::string first = folder.MakeFile("first.txt", "before");
        if (recorded.isStored)
            TryStored(recorded, first);
        else
            TryRefused(description, recorded, first);
    }

    void TryStored(const RecordedSettings& recorded, const std::string& first)
    {
        ASSERT_EQ(NewCamera().Store(first), Error{});
        ++stored;
        const bool hasOwnPort = recorded.ports == 0 || (recorded.ports == 1 && recorded.hasDevicePort);
        if (hasOwnPort)
        {
            EXPECT_EQ(ContentOf(first), recorded.file);
            ++same;
        }

        const NewCamera camera;
        const Error loading = camera.Load(first);
        if (!recorded.CanBeRead())
        {
            EXPECT_EQ(loading.text.rfind("The stream holds incomplete key - value - set", 0), 0u) << loading;
            ++refused;
            return;
        }
        EXPECT_EQ(loading.code, recorded.isLoaded ? KORO_RETURN_CODE_SUCCESS : KORO_RETURN_CODE_ERROR) << loading;
        const std::string again = folder.File("again.txt");
        EXPECT_EQ(camera.Store(again), Error{});
        EXPECT_EQ(ContentOf(again), hasOwnPort ? recorded.again : ContentOf(first));
        roundTrips += ContentOf(again) == ContentOf(first);
    }

    void TryRefused(const fs::path& description, const RecordedSettings& recorded, const std::string& first)
    {
        // Accidents of the build that was recorded, and what our runtime takes more leniently on purpose.
        for (const std::string lenient :
             {"quirk-", "refused-child-order", "refused-unknown-", "malformed-no-namespace"})
        {
            if (description.filename().string().rfind(lenient, 0) == 0) return;
        }
        const Error storing = NewCamera().Store(first);
        EXPECT_NE(storing.code, KORO_RETURN_CODE_SUCCESS);
        EXPECT_THAT(storing.text, testing::HasSubstr(" : " + recorded.ClassOfTheFailure() + " thrown"))
            << recorded.failure;
        EXPECT_THAT(storing.text, testing::HasSubstr(recorded.NodeOfTheFailure())) << recorded.failure;
        ++refused;
    }

    fs::path descriptions;
    const TemporaryFolder folder;
};

} // namespace

TEST_F(SettingsRoundTrip, OfSmallDescriptionsStoresWhatWasRecordedAndTheSameAgain)
{
    TryAllOf("conformance");
    EXPECT_GT(roundTrips, 80u);
    EXPECT_GT(refused, 50u);
}

TEST_F(SettingsRoundTrip, OfDescriptionsFoundByComparisonStoresWhatWasRecordedAndTheSameAgain)
{
    if (!HasSubject("conformance-second")) GTEST_SKIP() << "the folder has no conformance-second";
    TryAllOf("conformance-second");
    EXPECT_GT(roundTrips, 10u);
}

TEST_F(SettingsRoundTrip, OfRealCamerasStoresWhatWasRecordedAndTheSameAgain)
{
    TryAllOf("camera-descriptions");
    EXPECT_GT(roundTrips, 5u);
}

} // namespace koro::test
