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
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <ios>
#include <iterator>
#include <optional>
#include <string>
#include <sys/mman.h>
#include <system_error>
#include <type_traits>
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

    bool HasSelectors() const { return Value().size() < text.size() - text.find('\t') - 1; }
    std::string Value() const
    {
        const std::string behindName = text.substr(text.find('\t') + 1);
        const size_t end = behindName.front() == '{' ? behindName.find("}\t") : std::string::npos;
        return end == std::string::npos ? behindName : behindName.substr(end + 2);
    }
};

// Empty for a file that cannot be read, as a folder.
inline std::optional<std::string> ReadSettingsText(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::string text;
    try
    {
        for (std::istreambuf_iterator<char> next(file), end; next != end; ++next)
        {
            if (text.size() >= maxBytesSize) throw Error(KORO_RETURN_CODE_ERROR, "The settings file is too large!");
            if (*next == '\0') break; // here the library ends too
            if (*next != '\r') text.push_back(*next);
        }
    }
    catch (const std::ios_base::failure&) // of the stream's buffer, which fails like this for any stream
    {
        return std::nullopt;
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

inline std::string SettingsFileOf(const std::vector<SettingsRecord>& records)
{
    std::string text = std::string("# ") + settingsMagic + "\n";
    for (const SettingsRecord& record : records)
        text += record.text + "\n";
    return text;
}

inline bool IsSettingsText(const std::string& text)
{
    return text.substr(0, text.find('\n')).find(settingsMagic) != std::string::npos;
}

// Files keep few digits of a real number.
inline bool IsSameReal(double left, double right)
{
    return std::abs(left - right) <= 1e-6 * std::max(std::abs(left), std::abs(right));
}

// Of a whole number in decimal, or in hexadecimal behind 0x, or of a real one. Empty for any other text.
template <typename Number>
std::optional<Number> NumberIn(const std::string& text, int base = 10)
{
    Number number = 0;
    const char* const end = text.data() + text.size();
    std::from_chars_result result{};
    if constexpr (std::is_floating_point_v<Number>)
        result = std::from_chars(text.data(), end, number);
    else
        result = std::from_chars(text.data(), end, number, base);
    return result.ec == std::errc() && result.ptr == end ? std::optional<Number>(number) : std::nullopt;
}

inline std::string LowerCase(std::string text)
{
    for (char& c : text)
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
}

inline bool IsSameInteger(int64_t value, const std::string& text)
{
    if (text.substr(0, 2) != "0x") return NumberIn<int64_t>(text) == value;
    return NumberIn<uint64_t>(text.substr(2), 16) == static_cast<uint64_t>(value);
}

inline bool IsSameFlag(bool value, const std::string& text)
{
    return value ? text == "1" || text == "true" : text == "0" || text == "false";
}

inline bool IsSameBytes(const std::vector<uint8_t>& value, const std::string& text)
{
    const std::string digits = text.substr(0, 2) == "0x" ? text.substr(2) : text;
    bool isSame = digits.size() == 2 * value.size();
    for (size_t i = 0; isSame && i < value.size(); ++i)
        isSame = NumberIn<uint8_t>(digits.substr(2 * i, 2), 16) == value[i];
    return isSame;
}

// Whether a number, a flag or bytes have the value that a text names, in any of the forms of such a value.
inline bool HasValue(const Node& node, const std::string& text)
{
    switch (node.Type())
    {
    case KORO_NODE_TYPE_INTEGER:
        return IsSameInteger(node.ToInteger().Value(CachePolicy::IgnoreCache), LowerCase(text));
    case KORO_NODE_TYPE_FLOAT: {
        const auto number = NumberIn<double>(text);
        return number && IsSameReal(node.ToFloat().Value(CachePolicy::IgnoreCache), *number);
    }
    case KORO_NODE_TYPE_BOOLEAN:
        return IsSameFlag(node.ToBoolean().Value(CachePolicy::IgnoreCache), LowerCase(text));
    case KORO_NODE_TYPE_REGISTER:
        return IsSameBytes(node.ToRegister().Read(CachePolicy::IgnoreCache), LowerCase(text));
    default:
        return false;
    }
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
    std::vector<SettingFailure> failures;     // of each of those
    std::vector<SettingsRecord> inOtherWords; // taken, and read back as another text

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
            features.LoadFromFile(MemoryFile(SettingsFileOf({record})).Path());
            failedTransfers = 0;
        }
        catch (const Error& error)
        {
            if (IsTaken(record, error))
            {
                inOtherWords.push_back(record);
                failedTransfers = 0;
                return;
            }
            const bool ofTransfer =
                error.Code() == KORO_RETURN_CODE_IO_ERROR || std::strstr(error.what(), "GC_ERR_TIMEOUT") != nullptr;
            failedTransfers = ofTransfer ? failedTransfers + 1 : 0;
            lastFailure = error;
            Note(record, error);
        }
    }
    // The library compares texts when it has written, and a camera may write 3 as 3.00. The selectors of the record are
    // still set then.
    bool IsTaken(const SettingsRecord& record, const Error& error) const
    {
        const std::string comparison = "Error while verifying node '" + record.feature + "': expected '";
        if (std::string(error.what()).find(comparison) == std::string::npos) return false;
        try
        {
            return HasValue(features.Node(record.feature), record.Value());
        }
        catch (const Error&)
        {
            return false;
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

// Reads all back and compares, now that nothing is in the way: the library compares what the camera writes as the file
// does, and the rest is compared by value. What has selectors was compared when they were set.
inline void CheckLoaded(
    const NodeMap& features, const std::vector<SettingsRecord>& records,
    const std::vector<SettingsRecord>& inOtherWords)
{
    const auto isSameText = [&](const SettingsRecord& record) {
        return std::none_of(inOtherWords.begin(), inOtherWords.end(), [&](const SettingsRecord& other) {
            return other.line == record.line;
        });
    };
    std::vector<SettingsRecord> compared;
    std::copy_if(records.begin(), records.end(), std::back_inserter(compared), isSameText);
    features.LoadFromFile(MemoryFile(SettingsFileOf(compared)).Path());
    for (const SettingsRecord& record : inOtherWords)
    {
        if (record.HasSelectors() || HasValue(features.Node(record.feature), record.Value())) continue;
        throw Error(
            KORO_RETURN_CODE_ERROR, "Line " + std::to_string(record.line) + ": the value of " + record.feature +
                                        " was changed by another line of the file!");
    }
}

// The rounds over the records, until one changes nothing.
inline std::vector<SettingFailure> LoadRecords(const NodeMap& features, const std::vector<SettingsRecord>& records)
{
    std::vector<SettingsRecord> left = records;
    std::vector<SettingsRecord> inOtherWords;
    while (!left.empty())
    {
        SettingsRound round(features, left);
        inOtherWords.insert(inOtherWords.end(), round.inOtherWords.begin(), round.inOtherWords.end());
        if (round.left.size() == left.size()) return std::move(round.failures);
        left = std::move(round.left);
    }
    try
    {
        CheckLoaded(features, records, inOtherWords);
        return {};
    }
    catch (const Error& error)
    {
        return {{0, "", error.what(), error.Code()}};
    }
}

} // namespace detail

// Loads a settings file as NodeMap::LoadFromFile does, and where that fails goes on: each record is written for itself,
// and those that fail are tried again until a round changes nothing, since a value may wait for another one, as a Width
// that is too large for an offset that comes later in the file. Values are compared, where the library compares texts:
// a camera that writes 3 as 3.00 has taken a 3. Returns what is left, in the order of the file; empty when the camera
// has all values. Throws Error for a file that cannot be read or is no settings file, and writes nothing then.
inline std::vector<SettingFailure> LoadSettings(const NodeMap& features, const std::string& path)
{
    try
    {
        features.LoadFromFile(path);
        return {};
    }
    catch (const Error& error)
    {
        const auto text = detail::ReadSettingsText(path);
        if (error.Code() == KORO_RETURN_CODE_INVALID_HANDLE || !text || !detail::IsSettingsText(*text)) throw;
        return detail::LoadRecords(features, detail::RecordsOf(*text));
    }
}

} // namespace koro

#endif
