#include "map/description_source.h"

#include "archive/archive.h"
#include "archive/read_file.h"
#include "xml/parser.h"

#include <Base/GCException.h>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

// The first entry is the description; its name does not matter. A folder has no bytes, so the parser refuses it.
std::string Unpacked(const Archive& archive)
{
    if (archive.Entries().empty()) throw RUNTIME_EXCEPTION("Invalid zip archive: it has no entries");
    const Archive::Entry& first = archive.Entries().front();
    return first.folder ? std::string() : archive.Read(first, maxDescriptionSize);
}

} // namespace

DescriptionSource DescriptionSource::OfFile(EContentType_t type, const std::string& path)
{
    DescriptionSource source;
    source.given = true;
    source.type = type;
    source.path = path;
    return source;
}

DescriptionSource DescriptionSource::OfMemory(EContentType_t type, std::string_view bytes)
{
    DescriptionSource source;
    source.given = true;
    source.type = type;
    source.memory = bytes;
    return source;
}

DescriptionSource DescriptionSource::OfText(std::string_view text)
{
    DescriptionSource source;
    source.given = true;
    source.text = text;
    source.ready = true;
    return source;
}

std::string_view DescriptionSource::Text()
{
    if (!given) throw LOGICAL_ERROR_EXCEPTION("The factory has no camera description");
    if (released) throw LOGICAL_ERROR_EXCEPTION("The camera description was released before it was read");
    if (ready) return text;
    if (type == ContentType_ZippedXml)
    {
        text = Unpacked(path.empty() ? Archive(memory) : Archive::FromFile(path));
    }
    else if (!path.empty())
    {
        text = ReadFile(path, maxDescriptionSize);
    }
    else
    {
        return memory;
    }
    ready = true;
    return text;
}

void DescriptionSource::Release()
{
    if (!given) return;
    released = true;
    memory = std::string_view();
    text = std::string();
}

} // namespace GENAPI_NAMESPACE::runtime
