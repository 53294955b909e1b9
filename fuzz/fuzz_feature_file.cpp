// Feature files: a file that was read reads the same after it was written again, and any contents can be loaded.
#include "fuzz/fuzz_target.h"
#include "fuzz/stored_features.h"

#include <GenApi/NodeMapFactory.h>
#include <GenICam.h>
#include <map>
#include <sstream>
#include <string>

namespace
{

using namespace GENAPI_NAMESPACE;
using koro::fuzz::Require;

class Memory : public IPort
{
public:
    void Read(void* buffer, int64_t address, int64_t length) override
    {
        for (int64_t i = 0; i < length; ++i)
            static_cast<uint8_t*>(buffer)[i] = bytes[address + i];
    }
    void Write(const void* buffer, int64_t address, int64_t length) override
    {
        for (int64_t i = 0; i < length; ++i)
            bytes[address + i] = static_cast<const uint8_t*>(buffer)[i];
    }
    EAccessMode GetAccessMode() const override { return RW; }

private:
    std::map<int64_t, uint8_t> bytes;
};

// Exceptions of the runtime state an error; any other exception ends the process.
template <class Act>
bool Succeeds(const Act& act)
{
    try
    {
        act();
        return true;
    }
    catch (const GENICAM_NAMESPACE::GenericException&)
    {
        return false;
    }
}

void Load(CFeatureBag& bag)
{
    static CNodeMapFactory factory(koro::fuzz::storedFeatures);
    Memory memory;
    INodeMap* const map = factory.CreateNodeMap();
    map->Connect(&memory);
    GENICAM_NAMESPACE::gcstring_vector errors;
    const bool good = bag.LoadFromBag(map, true, &errors);
    Require(good == errors.empty(), "the result tells whether there are errors");
    CFeatureBag stored;
    Succeeds([&] { stored.StoreToBag(map); });
    CastToIDestroy(map)->Destroy();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::istringstream file(std::string(reinterpret_cast<const char*>(data), size));
    CFeatureBag bag;
    if (!Succeeds([&] { file >> bag; })) return 0;
    std::stringstream written;
    written << bag;
    CFeatureBag again;
    Require(Succeeds([&] { written >> again; }), "what was written can be read");
    Require(again == bag, "and holds the same");
    Load(bag);
    return 0;
}
