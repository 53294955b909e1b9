// Zip archives: their entries lie inside and contain what they claim; as a camera description an archive loads or is
// refused.
#include "archive/archive.h"
#include "archive/inflate.h"
#include "fuzz/fuzz_target.h"

#include <Base/GCException.h>
#include <GenApi/NodeMapFactory.h>
#include <GenApi/NodeMapRef.h>

namespace
{

using namespace GENAPI_NAMESPACE;
using GENAPI_NAMESPACE::runtime::Archive;
using koro::fuzz::Require;

const size_t maxExpanded = 1u << 20; // bytes of one entry
const size_t maxRead = 20;           // entries of one archive

template <class Act>
bool Succeeds(const Act& act)
{
    try
    {
        act();
        return true;
    }
    catch (const GENICAM_NAMESPACE::GenericException& exception)
    {
        Require(exception.GetDescription()[0] != '\0', "a refusal says why");
        return false;
    }
}

void ReadEntries(std::string_view bytes)
{
    const Archive archive(bytes);
    size_t count = 0;
    for (const Archive::Entry& entry : archive.Entries())
    {
        if (++count > maxRead) break;
        Require(archive.Find(entry.name) != nullptr, "an entry is found by its name");
        const bool inside = Succeeds([&] {
            const Archive::Place place = archive.PlaceOf(entry);
            Require(place.offset <= bytes.size() && place.size <= bytes.size() - place.offset, "an entry lies inside");
        });
        Succeeds([&] {
            const std::string content = archive.Read(entry, maxExpanded);
            Require(inside, "what is read has a place");
            Require(!entry.folder && !entry.encrypted, "folders and secrets are not read");
            Require(content.size() == entry.size && content.size() <= maxExpanded, "an entry has the claimed size");
            Require(GENAPI_NAMESPACE::runtime::Checksum(content) == entry.checksum, "and the claimed check sum");
        });
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Succeeds([&] { ReadEntries({reinterpret_cast<const char*>(data), size}); });
    if (size == 0) return 0;
    Succeeds([&] {
        CNodeMapFactory factory(ContentType_ZippedXml, data, size);
        CastToIDestroy(factory.CreateNodeMap())->Destroy();
    });
    return 0;
}
