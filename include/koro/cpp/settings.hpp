// Loads the settings of a camera from a file as far as possible, and reports the reasons for those that fail.
//
// Programs include <koro/koro.hpp>, which includes this header.
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

// A record of a settings file that the camera did not accept.
struct SettingFailure
{
    size_t line = 0; // in the file, from 1; 0 when each record was accepted, but not the file as a whole
    std::string feature;
    std::string reason; // the error text of the library or the producer
    KORO_ReturnCode code = KORO_RETURN_CODE_ERROR;
};

namespace detail
{

constexpr const char* settingsMagic = "{05D8C294-F295-4dfb-9D01-096BD04049F4}";

// One record of a settings file as it is written there: name, selectors and value, separated by tabs.
struct SettingsRecord
{
    size_t line;
    std::string feature;
    std::string text;

    bool HasSelectors() const { return Value().size() < text.size() - text.find('\t') - 1; }
    std::string Value() const { return text.substr(BeginOfValue()); }
    // The names in front of the value, the outermost selector first.
    std::vector<std::string> Selectors() const
    {
        std::vector<std::string> names;
        BeginOfValue(&names);
        return names;
    }
    // At the end of the text for a record without a value.
    size_t BeginOfValue(std::vector<std::string>* selectors = nullptr) const
    {
        size_t begin = text.find('\t') + 1;
        const bool hasBrace = begin < text.size() && text[begin] == '{';
        for (bool isSelector = hasBrace; isSelector;)
        {
            const size_t end = text.find('\t', begin);
            if (end == std::string::npos) return text.size();
            const std::string field = text.substr(begin, end - begin);
            const size_t sign = field.rfind('=');
            const size_t brace = field.front() == '{' ? 1 : 0;
            isSelector = sign != std::string::npos && field.find('}') == std::string::npos;
            if (selectors && sign != std::string::npos) selectors->push_back(field.substr(brace, sign - brace));
            begin = end + 1;
        }
        return begin;
    }
};

// Empty for a file that cannot be read, such as a folder.
inline std::optional<std::string> ReadSettingsText(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::string text;
    try
    {
        for (std::istreambuf_iterator<char> next(file), end; next != end; ++next)
        {
            if (text.size() >= maxBytesSize) throw Error(KORO_RETURN_CODE_ERROR, "The settings file is too large!");
            if (*next == '\0') break; // the library ends the text here, too
            if (*next != '\r') text.push_back(*next);
        }
    }
    catch (const std::ios_base::failure&) // thrown by the stream's buffer, for any stream
    {
        return std::nullopt;
    }
    return text;
}

// Each record is one line; blank lines and comments may stand between them. Throws Error with the line number for any
// other line: a broken file is not written in parts.
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
        if (tab != std::string::npos)
            records.push_back(
                {number, line.substr(name, line.find_last_not_of(" \v\f", tab - 1) + 1 - name), line.substr(name)});
        if (tab == std::string::npos || records.back().Value().empty())
            throw Error(
                KORO_RETURN_CODE_ERROR, "Line " + std::to_string(number) + " of the settings file is no setting!");
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

// Files store few digits of a floating-point number.
inline bool IsSameReal(double left, double right)
{
    return std::abs(left - right) <= 1e-6 * std::max(std::abs(left), std::abs(right));
}

// The number that a text names: a decimal integer, a hexadecimal integer after 0x, or a floating-point number. Empty
// for any other text.
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

// Whether a number, a boolean or bytes have the value that a text names, in any form of writing it.
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

// A file in memory that the library can open by a path.
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

// One round over the records: collects those that fail, with their reasons. When the camera has stopped responding, the
// remaining records are not tried and get the last reason.
class SettingsRound
{
public:
    SettingsRound(const NodeMap& nodes, const std::vector<SettingsRecord>& records) : features(nodes)
    {
        for (const SettingsRecord& record : records)
            Write(record);
    }

    std::vector<SettingsRecord> left;
    std::vector<SettingFailure> failures;     // the reason for each of the records
    std::vector<SettingsRecord> inOtherWords; // accepted, but read back as another text

private:
    static constexpr int mostFailedTransfers = 8; // one after the other

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
    // After writing, the library compares texts, and a camera may write 3 as 3.00. The selectors of the record are
    // still set at that time.
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

// Reads all values back and compares them after all records are written. The library compares values that the camera
// writes in the same form as the file; the others are compared as numbers. Records with selectors were compared when
// they were written.
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

// Repeats rounds over the records until a round changes nothing.
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

inline bool IsCommand(const NodeMap& features, const std::string& name)
{
    const Node node = features.TryNode(name);
    return node && node.Type() == KORO_NODE_TYPE_COMMAND;
}

// Removes the records whose writing would execute a command, as a feature or as a selector. Returns their failures.
inline std::vector<SettingFailure> TakeOutCommands(const NodeMap& features, std::vector<SettingsRecord>& records)
{
    std::vector<SettingFailure> failures;
    const auto executes = [&](const SettingsRecord& record) {
        std::vector<std::string> names = record.Selectors();
        names.push_back(record.feature);
        const auto command =
            std::find_if(names.begin(), names.end(), [&](const auto& name) { return IsCommand(features, name); });
        if (command == names.end()) return false;
        const std::string reason = *command + " is a command, and loading settings executes no command!";
        failures.push_back({record.line, record.feature, reason, KORO_RETURN_CODE_ERROR});
        return true;
    };
    const auto isLeftOut = [&](const SettingsRecord& record) { return executes(record); };
    std::vector<SettingsRecord> kept;
    std::remove_copy_if(records.begin(), records.end(), std::back_inserter(kept), isLeftOut);
    records = std::move(kept);
    return failures;
}

} // namespace detail

// Loads a settings file as NodeMap::LoadFromFile does. If that fails, each record is written separately, and records
// that fail are tried again until a round changes nothing, because a value may depend on another one: a Width may be
// too large until an offset that comes later in the file is set. Values are compared as numbers, while the library
// compares texts: a camera that writes 3 as 3.00 has accepted 3. Records that name a command are not written, since
// writing to a command executes it. Returns the records that were not accepted, in the order of the file; empty when
// the camera has all values. Throws Error for a file that cannot be read or is not a settings file, and writes nothing
// in that case.
inline std::vector<SettingFailure> LoadSettings(const NodeMap& features, const std::string& path)
{
    const auto text = detail::ReadSettingsText(path);
    if (!text || !detail::IsSettingsText(*text))
    {
        features.LoadFromFile(path); // throws the reason
        throw Error(KORO_RETURN_CODE_ERROR, "The file is no settings file!");
    }
    std::vector<detail::SettingsRecord> records = detail::RecordsOf(*text);
    std::vector<SettingFailure> failures = detail::TakeOutCommands(features, records);
    try
    {
        features.LoadFromFile(detail::MemoryFile(detail::SettingsFileOf(records)).Path());
    }
    catch (const Error& error)
    {
        if (error.Code() == KORO_RETURN_CODE_INVALID_HANDLE) throw;
        const std::vector<SettingFailure> left = detail::LoadRecords(features, records);
        failures.insert(failures.end(), left.begin(), left.end());
        std::stable_sort(failures.begin(), failures.end(), [](const SettingFailure& one, const SettingFailure& other) {
            return one.line < other.line;
        });
    }
    return failures;
}

} // namespace koro

#endif
