// Included only for the magic numbers; the stream operators are those of node_map_settings.cpp.
#define GENAPI_DONT_USE_DEFAULT_PERSISTENCE_FILE_FORMAT

#include "nodes/feature_file.h"

#include <GenApi/GenApiVersion.h>
#include <GenApi/Persistence.h>
#include <algorithm>
#include <string_view>

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;
using GENICAM_NAMESPACE::gcstring;

namespace
{

// Readers accept at most 1024 bytes of a comment line, including "# " and the line feed.
constexpr std::size_t maxComment = 1021;

void Put(std::ostream& stream, std::string_view text)
{
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::string_view ToView(const gcstring& text)
{
    return {text.c_str(), text.size()};
}

// Writes as many lines as the text needs, none of which can be read as a record.
void PutComment(std::ostream& stream, std::string_view text)
{
    do
    {
        const std::string_view line = text.substr(0, std::min(text.find_first_of({"\r\n\0", 3}), maxComment));
        const bool endsByItself = line.size() < text.size() && line.size() < maxComment;
        Put(stream, "# ");
        Put(stream, line);
        Put(stream, "\n");
        text.remove_prefix(line.size() + endsByItself);
    } while (!text.empty());
}

void PutPair(std::ostream& stream, CSelectorState& selectors)
{
    Put(stream, ToView(selectors.GetNodeName()));
    Put(stream, "=");
    Put(stream, ToView(selectors.GetNodeValue()));
}

} // namespace

void WriteFeatureFileHead(std::ostream& stream, const gcstring& info)
{
    Put(stream, "# " GENAPI_PERSISTENCE_MAGIC "\n");
    if (info.empty()) return;
    // A constant of the format, independent of the version of the runtime.
    Put(stream, "# GenApi persistence file (version 3.4.1)\n");
    PutComment(stream, ToView(info));
}

void WriteFeatureRecord(std::ostream& stream, const gcstring& name, const gcstring& value, CSelectorState& selectors)
{
    Put(stream, ToView(name));
    Put(stream, "\t");
    if (!selectors.IsEmpty())
    {
        selectors.SetFirst();
        Put(stream, "{");
        PutPair(stream, selectors);
        while (selectors.SetNext())
        {
            Put(stream, "\t");
            PutPair(stream, selectors);
        }
        Put(stream, "}\t");
    }
    Put(stream, ToView(value));
    Put(stream, "\n");
}

} // namespace koro::internal
