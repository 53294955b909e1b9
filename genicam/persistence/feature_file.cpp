// The default file format of feature bags: one line for each record, as documented in docs/genicam-runtime.md.
#include <Base/GCException.h>
#include <GenApi/Persistence.h>
#include <GenICamVersion.h>
#include <algorithm>
#include <streambuf>
#include <string>
#include <string_view>

namespace GENAPI_NAMESPACE
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

const size_t maxLine = 16 << 20;  // bytes
const size_t maxFile = 128 << 20; // bytes

gcstring ToText(std::string_view text)
{
    return gcstring(text.data(), text.size());
}

bool Holds(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

std::string_view Trimmed(std::string_view text)
{
    const char* const space = " \t\n\v\f\r";
    const size_t first = text.find_first_not_of(space);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(space) - first + 1);
}

// Reads lines and counts them. Carriage returns are skipped everywhere.
class Lines
{
public:
    explicit Lines(std::streambuf& source) : bytes(source) {}

    // False at the end.
    bool Next(std::string& line)
    {
        line.clear();
        bool any = false;
        for (int letter = bytes.sbumpc(); letter != std::streambuf::traits_type::eof(); letter = bytes.sbumpc())
        {
            any = true;
            if (++taken > maxFile) throw RUNTIME_EXCEPTION("The stream holds more than %zu bytes", maxFile);
            if (letter == '\n') break;
            if (letter == '\r') continue;
            if (letter == 0) throw RUNTIME_EXCEPTION("The stream holds a zero byte");
            if (line.size() == maxLine)
                throw RUNTIME_EXCEPTION("The stream holds a line of more than %zu bytes", maxLine);
            line += static_cast<char>(letter);
        }
        return any;
    }

private:
    std::streambuf& bytes;
    size_t taken = 0;
};

void CheckMagic(const std::string& line)
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

// "{A=1 <tab> B=2}" in front of a tab goes into the state. A value may begin with a brace, too: without all of that it
// is left where it is.
std::string_view TakeSelectors(std::string_view rest, CSelectorState& state)
{
    if (rest.empty() || rest[0] != '{') return rest;
    const size_t end = rest.find("}\t");
    if (end == std::string_view::npos || end == 1) return rest;
    CSelectorState found;
    std::string_view list = rest.substr(1, end - 1);
    while (!list.empty())
    {
        const std::string_view pair = list.substr(0, list.find('\t'));
        const size_t sign = pair.rfind('=');
        if (sign == std::string_view::npos) return rest;
        found.AddSelector(ToText(pair.substr(0, sign)), ToText(pair.substr(sign + 1)));
        list.remove_prefix(std::min(pair.size() + 1, list.size()));
    }
    state = found;
    return rest.substr(end + 2);
}

// A comment may not end before its line.
gcstring OnOneLine(gcstring text)
{
    std::string bytes(text.c_str(), text.size());
    std::replace_if(
        bytes.begin(), bytes.end(), [](char letter) { return letter == '\n' || letter == '\r' || letter == '\0'; },
        ' ');
    return ToText(bytes);
}

void Put(std::ostream& stream, const gcstring& text)
{
    stream.write(text.c_str(), static_cast<std::streamsize>(text.size()));
}

} // namespace

void CFeatureBag::ReadFrom(std::istream& stream)
{
    if (stream.eof()) throw RUNTIME_EXCEPTION("The stream is eof");
    if (!stream.good()) throw RUNTIME_EXCEPTION("The stream cannot be read");
    CFeatureBag read;
    read.bagName = bagName;
    Lines lines(*stream.rdbuf());
    std::string line;
    lines.Next(line);
    CheckMagic(line);
    while (lines.Next(line))
    {
        const std::string_view view(line);
        if (Trimmed(view).empty() || Trimmed(view)[0] == '#') continue;
        const size_t tab = view.find('\t');
        if (tab == std::string_view::npos) throw RUNTIME_EXCEPTION("The stream holds excess data");
        CSelectorState* const state = read.AllocateSelector();
        const std::string_view name = Trimmed(view.substr(0, tab));
        const std::string_view value = TakeSelectors(view.substr(tab + 1), *state);
        if (name.empty() || value.empty())
        {
            throw RUNTIME_EXCEPTION("The stream holds incomplete key - value - set");
        }
        read.Append(ToText(name), ToText(value), state);
    }
    Swap(read);
    stream.setstate(std::ios_base::eofbit);
}

void CFeatureBag::WriteTo(std::ostream& stream) const
{
    stream << "# " GENAPI_PERSISTENCE_MAGIC "\n";
    if (!info.empty())
    {
        stream << "# GenApi persistence file (version " << GENICAM_VERSION_MAJOR << "." << GENICAM_VERSION_MINOR << "."
               << GENICAM_VERSION_SUBMINOR << ")\n# ";
        Put(stream, OnOneLine(info));
        stream << "\n";
    }
    for (const Triplet& triplet : triplets)
    {
        Put(stream, triplet.name);
        stream << "\t";
        const std::vector<CSelectorState::Selector>& selectors = triplet.pState->selectors;
        for (size_t i = 0; i < selectors.size(); ++i)
        {
            stream << (i == 0 ? "{" : "\t");
            Put(stream, selectors[i].name);
            stream << "=";
            Put(stream, selectors[i].value);
        }
        if (!selectors.empty()) stream << "}\t";
        Put(stream, triplet.value);
        stream << "\n";
    }
}

} // namespace GENAPI_NAMESPACE
