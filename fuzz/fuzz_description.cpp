// Camera descriptions: each one loads or is refused with a reason, and every node of one that loads survives every
// query and every write, over memory and over a port that fails. After a leading "&" come two texts, divided at the
// first "]]": the second is injected into the first.
#include "fuzz/fuzz_target.h"
#include "tests/unit/genicam/use_of_nodes.h"

#include <string.h>
#include <string_view>

namespace
{

using namespace GENAPI_NAMESPACE;
using koro::fuzz::Require;
using koro::test::UseNode;

const size_t maxUsed = 60; // nodes of one description

// Stores one byte for all addresses, so that registers at any address and of any length cost nothing; fails now and
// then.
class FickleMemory : public IPort
{
public:
    explicit FickleMemory(int every) : failsEvery(every) {}
    void Read(void* buffer, int64_t address, int64_t length) override
    {
        Count();
        memset(buffer, static_cast<int>(address & 1) ^ byte, static_cast<size_t>(length));
    }
    void Write(const void* buffer, int64_t, int64_t length) override
    {
        Count();
        byte = length > 0 ? *static_cast<const uint8_t*>(buffer) : byte;
    }
    EAccessMode GetAccessMode() const override { return RW; }

private:
    void Count()
    {
        if (failsEvery > 0 && ++calls % failsEvery == 0) throw RUNTIME_EXCEPTION("the port fails");
    }

    const int failsEvery; // 0: never
    int calls = 0;
    uint8_t byte = 1;
};

void CheckNode(INodeMap& map, INode* node)
{
    Require(map.GetNode(node->GetName(true)) == node, "a node is found by its whole name");
    NodeList_t children;
    const bool read = koro::test::Survives([&] { node->GetChildren(children, ctReadingChildren); });
    Require(read, "the children of a node are known without reading");
    for (INode* const child : children)
    {
        NodeList_t parents;
        child->GetParents(parents);
        bool found = false;
        for (INode* const parent : parents)
            found = found || parent == node;
        Require(found, "who reads a node is its parent");
    }
}

void Use(INodeMap& map, int failsEvery)
{
    FickleMemory memory(failsEvery);
    if (!koro::test::Survives([&] { map.Connect(&memory); })) return;
    NodeList_t nodes;
    map.GetNodes(nodes);
    Require(nodes.size() == map.GetNumNodes(), "the nodes are counted");
    if (nodes.size() > maxUsed) nodes.resize(maxUsed);
    for (INode* const node : nodes)
    {
        CheckNode(map, node);
        UseNode(node);
    }
    koro::test::Survives([&] { map.ParseSwissKnifes(); });
    koro::test::Survives([&] { map.Poll(1000); });
    koro::test::Survives([&] { map.InvalidateNodes(); });
    Require(map.GetLock().TryLock(), "no lock is left");
    map.GetLock().Unlock();
    map.Connect(nullptr);
}

void Load(CNodeMapFactory factory)
{
    INodeMap* map = nullptr;
    try
    {
        map = factory.CreateNodeMap("Device");
    }
    catch (const GENICAM_NAMESPACE::GenericException& exception)
    {
        Require(exception.GetDescription()[0] != '\0', "a refusal says why");
        Require(!factory.IsLoaded(), "what is refused is not half loaded");
        return;
    }
    Use(*map, 0);
    Use(*map, 3);
    CastToIDestroy(map)->Destroy();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0) return 0;
    std::string_view text(reinterpret_cast<const char*>(data), size);
    const size_t split = text[0] == '&' ? text.find("]]") : std::string_view::npos;
    if (split == std::string_view::npos)
    {
        Load(CNodeMapFactory(ContentType_Xml, text.data(), text.size()));
        return 0;
    }
    const std::string_view first = text.substr(1, split - 1);
    const std::string_view second = text.substr(split + 2);
    koro::test::Survives([&] {
        CNodeMapFactory factory(ContentType_Xml, first.data(), first.size());
        CNodeMapFactory injected(ContentType_Xml, second.data(), second.size());
        factory.AddInjectionData(injected);
        Load(factory);
    });
    return 0;
}
