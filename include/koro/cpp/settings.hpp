// Settings of a camera from a file, written as far as they go, with the reasons of what is left.
//
// Included by <koro/koro.hpp>, which is the header for programs.
#ifndef KORO_CPP_SETTINGS_HPP
#define KORO_CPP_SETTINGS_HPP

#include <koro/cpp/nodes.hpp>
#include <koro/cpp/support.hpp>
#include <koro/koro.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace koro
{

// A record of a settings file that the camera did not take.
struct SettingFailure
{
    size_t line = 0; // in the file, from 1; 0 when all records were taken one by one, but not the file as a whole
    std::string feature;
    std::string reason; // the library's text, or the producer's
    KORO_ReturnCode code = KORO_RETURN_CODE_ERROR;
};

namespace detail
{

constexpr const char* settingsMagic = "{05D8C294-F295-4dfb-9D01-096BD04049F4}";

// One record of a settings file as it stands there: name, selectors and value, with the tabs between them.
struct SettingsRecord
{
    size_t line;
    std::string feature;
    std::string text;
};

inline std::string ReadSettingsText(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::string text;
    for (std::istreambuf_iterator<char> next(file), end; next != end; ++next)
    {
        if (text.size() >= maxBytesSize) throw Error(KORO_RETURN_CODE_ERROR, "The settings file is too large!");
        if (*next == '\0') break; // here the library ends too
        if (*next != '\r') text.push_back(*next);
    }
    return text;
}

// Each is a line; blank ones and comments stand between them. Throws Error, with the number, for any other line: a file
// that is broken is not written in parts.
inline std::vector<SettingsRecord> RecordsOf(const std::string& text)
{
    std::vector<SettingsRecord> records;
    size_t number = 0;
    for (size_t begin = 0; begin < text.size();)
    {
        const size_t end = std::min(text.find('\n', begin), text.size());
        const std::string line = text.substr(begin, end - begin);
        begin = end + 1;
        ++number;
        const size_t name = line.find_first_not_of(" \t\v\f");
        if (name == std::string::npos || line.front() == '#') continue;
        const size_t tab = line.find('\t', name);
        if (tab == std::string::npos || line.back() == '\t')
            throw Error(
                KORO_RETURN_CODE_ERROR, "Line " + std::to_string(number) + " of the settings file is no setting!");
        records.push_back(
            {number, line.substr(name, line.find_last_not_of(" \v\f", tab - 1) + 1 - name), line.substr(name)});
    }
    return records;
}

inline bool IsSettingsText(const std::string& text)
{
    return text.substr(0, text.find('\n')).find(settingsMagic) != std::string::npos;
}

// A file in memory that the library reads by its path.
class MemoryFile
{
public:
    explicit MemoryFile(const std::string& content) : file(memfd_create("koro-settings", MFD_CLOEXEC))
    {
        if (file < 0) Fail();
        for (size_t size = 0; size < content.size();)
        {
            const ssize_t part = write(file, content.data() + size, content.size() - size);
            if (part < 0 && errno == EINTR) continue;
            if (part <= 0) Fail();
            size += static_cast<size_t>(part);
        }
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile()
    {
        if (file >= 0) close(file);
    }

    std::string Path() const { return "/proc/self/fd/" + std::to_string(file); }

private:
    [[noreturn]] void Fail()
    {
        const std::string reason = std::generic_category().message(errno);
        if (file >= 0) close(std::exchange(file, -1));
        throw Error(KORO_RETURN_CODE_ERROR, "No memory for a settings file: " + reason + "!");
    }

    int file;
};

// One round over records: those that fail, with their reasons. A camera that has stopped answering is not asked for
// each of its features.
class SettingsRound
{
public:
    SettingsRound(const NodeMap& nodes, const std::vector<SettingsRecord>& records) : features(nodes)
    {
        for (const SettingsRecord& record : records)
            Write(record);
    }

    std::vector<SettingsRecord> left;
    std::vector<SettingFailure> failures; // of each of those

private:
    static constexpr int mostFailedTransfers = 8; // in a row

    void Write(const SettingsRecord& record)
    {
        if (failedTransfers >= mostFailedTransfers)
        {
            Note(record, lastFailure);
            return;
        }
        try
        {
            features.LoadFromFile(MemoryFile(std::string("# ") + settingsMagic + "\n" + record.text + "\n").Path());
            failedTransfers = 0;
        }
        catch (const Error& error)
        {
            const bool ofTransfer =
                error.Code() == KORO_RETURN_CODE_IO_ERROR || std::strstr(error.what(), "GC_ERR_TIMEOUT") != nullptr;
            failedTransfers = ofTransfer ? failedTransfers + 1 : 0;
            lastFailure = error;
            Note(record, error);
        }
    }
    void Note(const SettingsRecord& record, const Error& error)
    {
        left.push_back(record);
        failures.push_back({record.line, record.feature, error.what(), error.Code()});
    }

    NodeMap features;
    Error lastFailure{KORO_RETURN_CODE_ERROR, ""};
    int failedTransfers = 0;
};

// The rounds over the records, until one changes nothing.
inline std::vector<SettingFailure> LoadRecords(const NodeMap& features, std::vector<SettingsRecord> records)
{
    for (;;)
    {
        SettingsRound round(features, records);
        if (round.left.empty() || round.left.size() == records.size()) return std::move(round.failures);
        records = std::move(round.left);
    }
}

} // namespace detail

// Loads a settings file as NodeMap::LoadFromFile does, and where that fails goes on: each record is written for itself,
// and those that fail are tried again until a round changes nothing, since a value may wait for another one, as a Width
// that is too large for an offset that comes later in the file. Returns what is left, in the order of the file; empty
// when the camera has all values. Throws Error for a file that is missing or no settings file, and writes nothing then.
inline std::vector<SettingFailure> LoadSettings(const NodeMap& features, const std::string& path)
{
    try
    {
        features.LoadFromFile(path);
        return {};
    }
    catch (const Error& error)
    {
        const std::string text = detail::ReadSettingsText(path);
        if (error.Code() == KORO_RETURN_CODE_INVALID_HANDLE || !detail::IsSettingsText(text)) throw;
        const auto failures = detail::LoadRecords(features, detail::RecordsOf(text));
        if (!failures.empty()) return failures;
    }
    try
    {
        features.LoadFromFile(path); // now that nothing is in the way, all is read back and compared
        return {};
    }
    catch (const Error& error)
    {
        return {{0, "", error.what(), error.Code()}};
    }
}

} // namespace koro

#endif
