// The file functions of NodeMap: storing features in a file and loading them. The stream operators here replace those
// of the bag, so only this source file may use them.
#define GENAPI_DONT_USE_DEFAULT_PERSISTENCE_FILE_FORMAT

#include "base/exceptions.h"
#include "base/filesystem.h"
#include "nodes/feature_file.h"
#include "nodes/node_map.h"
#include "nodes/translate_genapi_exceptions.h"

#include <GenApi/GenApiVersion.h>
#include <GenApi/Persistence.h>
#include <cerrno>
#include <fstream>
#include <string>
#include <system_error>

namespace GENAPI_NAMESPACE
{

// Local, because only these two operators are friends of the bag.
std::istream& operator>>(std::istream& stream, CFeatureBag& bag)
{
    class RecordsOfBag final : public koro::internal::FeatureRecords
    {
    public:
        explicit RecordsOfBag(CFeatureBag& filled) : target(filled) {}

        void Clear() override { target.Clear(); }
        CSelectorState* AllocateSelector() override { return target.AllocateSelector(); }
        void DeleteSelector(CSelectorState*& state) override { target.DeleteSelector(state); }
        void Push(const char* name, const char* value, CSelectorState* state) override
        {
            target.Push(name, value, state);
        }

    private:
        CFeatureBag& target;
    };

    RecordsOfBag records(bag);
    koro::internal::ReadFeatureFile(stream, records);
    return stream;
}

std::ostream& operator<<(std::ostream& stream, const CFeatureBag& bag)
{
    koro::internal::WriteFeatureFileHead(stream, bag.GetInfo());
    for (auto record = bag.GetBegin(); record != bag.GetEnd(); ++record)
        koro::internal::WriteFeatureRecord(stream, record->name, record->value, *record->pState);
    return stream;
}

} // namespace GENAPI_NAMESPACE

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

namespace
{

// Paths are bytes here, so UTF-8 needs no conversion. A zero would end the path early; a folder can be opened and fails
// at the first byte.
template <class File>
File OpenFile(const std::string& path, std::ios::openmode mode)
{
    std::error_code error;
    const bool isPath = path.find('\0') == std::string::npos && !fs::is_directory(path, error);
    File file;
    if (isPath) file.open(path, mode | std::ios::binary);
    if (!file.is_open())
    {
        throw InvalidArgumentException(std::string("The given file path (") + path.c_str() + ") is invalid!");
    }
    return file;
}

void WriteAll(std::ofstream& file, const CFeatureBag& bag, const std::string& path)
{
    errno = 0;
    file << bag;
    file.close();
    if (file) return;
    const std::string reason = errno ? ": " + std::generic_category().message(errno) : "!";
    std::error_code ignored;
    fs::resize_file(path, 0, ignored); // a part of the features would look like all of them
    throw IOException("The features could not be written to the file (" + path + ")" + reason);
}

} // namespace

void NodeMap::StoreToFile(const std::string& filePath)
{
    InBothLayers([&] {
        INodeMap& map = EnsureGenApiMap();
        auto file = OpenFile<std::ofstream>(filePath, std::ios::out | std::ios::trunc);
        CFeatureBag bag;
        bag.StoreToBag(&map, -1, nullptr);
        WriteAll(file, bag, filePath);
    });
}

void NodeMap::LoadFromFile(const std::string& filePath)
{
    InBothLayers([&] {
        INodeMap& map = EnsureGenApiMap();
        auto file = OpenFile<std::ifstream>(filePath, std::ios::in);
        CFeatureBag bag;
        file >> bag;

        GENICAM_NAMESPACE::gcstring_vector errors;
        const AutoLock lock(map.GetLock());
        if (!bag.LoadFromBag(&map, true, &errors)) throw InternalErrorException(TextOfRefusedLoad(errors));
    });
}

} // namespace koro::internal
