// Included only for the magic numbers; the stream operators are those of node_map_settings.cpp.
#define GENAPI_DONT_USE_DEFAULT_PERSISTENCE_FILE_FORMAT

#include "nodes/feature_file.h"

#include <Base/GCException.h>
#include <GenApi/GenApiVersion.h>
#include <GenApi/Persistence.h>
#include <algorithm>
#include <string>
#include <string_view>

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

namespace
{

constexpr std::size_t maxFile = 256 << 20;    // bytes
constexpr std::size_t maxSelectors = 4 << 20; // of all records
constexpr std::size_t maxCommentPiece = 1024; // skipped at once, including the line feed
constexpr const char* whiteSpace = " \t\n\v\f\r";

// The rest of the stream as the format sees it: without carriage returns, up to the first zero byte.
std::string ReadRest(std::istream& stream)
{
    std::string text;
    char part[65536];
    for (std::streamsize count; (count = stream.rdbuf()->sgetn(part, sizeof part)) > 0;)
    {
        text.append(part, static_cast<std::size_t>(count));
        if (text.size() > maxFile) throw RUNTIME_EXCEPTION("The stream holds more than %zu bytes", maxFile);
    }
    stream.seekg(0);
    text.erase(std::remove(text.begin(), text.end(), '\r'), text.end());
    text.resize(std::min(text.find('\0'), text.size()));
    return text;
}

// The remaining part of a text.
class Rest
{
public:
    explicit Rest(std::string_view text) : left(text) {}

    bool IsAtEnd() const { return left.empty(); }
    bool BeginsWith(char letter) const { return !left.empty() && left.front() == letter; }

    // Reads up to and including the end character. Returns false when there is none: `part` is then the whole rest.
    bool TakeUpTo(char end, std::string_view* part)
    {
        const auto length = left.find(end);
        *part = left.substr(0, length);
        left.remove_prefix(std::min(part->size() + 1, left.size()));
        return length != std::string_view::npos;
    }

    void SkipComments()
    {
        while (BeginsWith('#'))
        {
            const auto lineEnd = left.substr(0, maxCommentPiece).find('\n');
            left.remove_prefix(
                lineEnd == std::string_view::npos ? std::min(maxCommentPiece, left.size()) : lineEnd + 1);
        }
    }

private:
    std::string_view left;
};

bool Holds(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

std::string_view Trimmed(std::string_view text)
{
    const auto first = text.find_first_not_of(whiteSpace);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

GENICAM_NAMESPACE::gcstring ToGenApiText(std::string_view text)
{
    return {text.data(), text.size()};
}

void CheckMagic(std::string_view line)
{
    if (Holds(line, GENAPI_PERSISTENCE_MAGIC)) return;
    if (Holds(line, GENAPI_PERSISTENCE_MAGIC_FEATUREBAGGER))
    {
        throw RUNTIME_EXCEPTION("The stream has been created using the CFeatureBagger class thus must be restored "
                                "using the CFeatureBagger class as well");
    }
    throw RUNTIME_EXCEPTION(
        "The stream is not a GenApi feature stream since it is missing the magic GUID in the first line");
}

class Reader
{
public:
    Reader(std::string_view text, FeatureRecords& sink) : rest(text), records(sink) {}

    void Run()
    {
        std::string_view line;
        rest.TakeUpTo('\n', &line);
        CheckMagic(line);
        rest.SkipComments();
        while (!rest.IsAtEnd() && ReadRecord())
        {}
    }

private:
    // Returns false when the text ends within the selectors: reading then stops, which is not an error.
    bool ReadRecord()
    {
        std::string_view field;
        if (!rest.TakeUpTo('\t', &field)) throw RUNTIME_EXCEPTION("The stream holds excess data");
        const std::string name(Trimmed(field));
        if (name.empty()) return true;

        CSelectorState* selectors = records.AllocateSelector();
        if (!selectors) throw RUNTIME_EXCEPTION("Unable to allocate SelectorState");
        if (rest.BeginsWith('{') && !ReadSelectors(*selectors)) return false;

        rest.TakeUpTo('\n', &field);
        if (field.empty())
        {
            records.DeleteSelector(selectors);
            throw RUNTIME_EXCEPTION("The stream holds incomplete key - value - set");
        }
        records.Push(name.c_str(), std::string(field).c_str(), selectors);
        rest.SkipComments();
        return true;
    }

    // Reads pairs up to the one with a closing brace, or up to the first field that is not a pair. Returns false when
    // there is not even one field.
    bool ReadSelectors(CSelectorState& selectors)
    {
        std::string_view field;
        if (!rest.TakeUpTo('\t', &field)) return false;
        while (TakePair(field, selectors) && rest.TakeUpTo('\t', &field))
        {}
        return true;
    }

    // "{A=1" or "B=2}". Returns false when no further pair is expected.
    bool TakePair(std::string_view field, CSelectorState& selectors)
    {
        const auto sign = field.rfind('=');
        if (sign == std::string_view::npos) return false;
        if (++selectorCount > maxSelectors)
            throw RUNTIME_EXCEPTION("The stream holds more than %zu selectors", maxSelectors);

        const std::size_t begin = field.front() == '{' ? 1 : 0;
        const auto brace = field.rfind('}');
        const bool endsBehindSign = brace != std::string_view::npos && brace > sign;
        const std::size_t end = endsBehindSign ? brace : field.size();
        selectors.AddSelector(
            ToGenApiText(field.substr(begin, sign - begin)), ToGenApiText(field.substr(sign + 1, end - sign - 1)));
        return brace == std::string_view::npos;
    }

    Rest rest;
    FeatureRecords& records;
    std::size_t selectorCount = 0;
};

} // namespace

void ReadFeatureFile(std::istream& stream, FeatureRecords& records)
{
    if (stream.eof()) throw RUNTIME_EXCEPTION("The stream is eof");
    records.Clear();
    const std::string text = ReadRest(stream);
    Reader(text, records).Run();
}

std::string TextOfRefusedLoad(const GENICAM_NAMESPACE::gcstring_vector& errors)
{
    if (errors.empty()) return "An error occurred!";
    const auto& first = errors.at(0);
    return {first.c_str(), first.size()};
}

} // namespace koro::internal
