#include "tests/unit/simulator/feature_map.h"

#include <gtest/gtest.h>

namespace koro::simulator::test
{

namespace GenApi = GENAPI_NAMESPACE;

class FeatureMap::Port : public GenApi::IPort
{
public:
    Port(const Producer& loaded, PORT_HANDLE openedPort) : producer(loaded), port(openedPort) {}

    void Read(void* buffer, std::int64_t address, std::int64_t length) override
    {
        auto size = static_cast<std::size_t>(length);
        Check(producer.GCReadPort(port, static_cast<std::uint64_t>(address), buffer, &size));
    }
    void Write(const void* buffer, std::int64_t address, std::int64_t length) override
    {
        auto size = static_cast<std::size_t>(length);
        Check(producer.GCWritePort(port, static_cast<std::uint64_t>(address), buffer, &size));
    }
    GenApi::EAccessMode GetAccessMode() const override { return GenApi::RW; }

private:
    void Check(GC_ERROR result) const
    {
        if (result != GC_ERR_SUCCESS) throw PortFailure(result, producer.Last().text);
    }

    const Producer& producer;
    const PORT_HANDLE port;
};

std::string FetchDescription(const Producer& producer, PORT_HANDLE port, std::uint32_t url)
{
    std::size_t size = producer.Get<std::uint64_t>(producer.GCGetPortURLInfo, port, url, URL_INFO_FILE_SIZE);
    const auto address =
        producer.Get<std::uint64_t>(producer.GCGetPortURLInfo, port, url, URL_INFO_FILE_REGISTER_ADDRESS);
    std::string text(size, '\0');
    if (producer.GCReadPort(port, address, text.data(), &size) != GC_ERR_SUCCESS)
        throw std::runtime_error(producer.Last().text);
    return text;
}

FeatureMap::FeatureMap(const Producer& loaded, PORT_HANDLE openedPort, std::uint32_t url)
    : port(new Port(loaded, openedPort))
{
    const std::string text = FetchDescription(loaded, openedPort, url);
    const std::string file = loaded.Get(loaded.GCGetPortURLInfo, openedPort, url, URL_INFO_FILENAME);
    const auto type = file.find(".zip") == std::string::npos ? GenApi::ContentType_Xml : GenApi::ContentType_ZippedXml;
    GenApi::CNodeMapFactory factory(type, text.data(), text.size());
    map = factory.CreateNodeMap();
    const std::string name = loaded.Get(loaded.GCGetPortInfo, openedPort, PORT_INFO_PORTNAME);
    if (!map->Connect(port, name.c_str())) throw std::runtime_error("the description has no port " + name);
}

FeatureMap::~FeatureMap()
{
    GenApi::CastToIDestroy(map)->Destroy();
    delete port;
}

GenApi::INode& FeatureMap::Node(const std::string& name) const
{
    GenApi::INode* const node = map->GetNode(name.c_str());
    if (node == nullptr) throw std::runtime_error("there is no node " + name);
    return *node;
}

std::vector<GenApi::INode*> FeatureMap::Nodes() const
{
    GenApi::NodeList_t nodes;
    map->GetNodes(nodes);
    return {nodes.begin(), nodes.end()};
}

namespace
{

bool IsReadable(const GenApi::INode& node)
{
    return GenApi::IsReadable(node.GetAccessMode());
}

void CheckInteger(GenApi::IInteger& integer)
{
    const std::int64_t value = integer.GetValue();
    EXPECT_LE(integer.GetMin(), value);
    EXPECT_GE(integer.GetMax(), value);
    EXPECT_GT(integer.GetInc(), 0);
    integer.GetValue(true);
}

void CheckFloat(GenApi::IFloat& number)
{
    const double value = number.GetValue(true);
    EXPECT_LE(number.GetMin(), value);
    EXPECT_GE(number.GetMax(), value);
}

void CheckEnumeration(GenApi::IEnumeration& enumeration)
{
    GenApi::IEnumEntry* const entry = enumeration.GetCurrentEntry();
    ASSERT_NE(entry, nullptr);
    EXPECT_TRUE(GenApi::IsAvailable(entry));
    GenApi::StringList_t symbolics;
    enumeration.GetSymbolics(symbolics);
    EXPECT_GT(symbolics.size(), 0U);
}

// Selectors say what their selected nodes show; a command would act.
bool MayBeWrittenBack(GenApi::INode& node)
{
    if (!GenApi::IsWritable(node.GetAccessMode()) || !IsReadable(node)) return false;
    switch (node.GetPrincipalInterfaceType())
    {
    case GenApi::intfICommand:
    case GenApi::intfIPort:
    case GenApi::intfICategory:
        return false;
    default:
        return true;
    }
}

} // namespace

void CheckEveryNode(const FeatureMap& map)
{
    for (GenApi::INode* const node : map.Nodes())
    {
        const std::string name = node->GetName().c_str();
        SCOPED_TRACE(name);
        try
        {
            if (!IsReadable(*node)) continue;
            if (auto* const value = dynamic_cast<GenApi::IValue*>(node)) value->ToString();
            if (auto* const integer = dynamic_cast<GenApi::IInteger*>(node)) CheckInteger(*integer);
            if (auto* const number = dynamic_cast<GenApi::IFloat*>(node)) CheckFloat(*number);
            if (auto* const enumeration = dynamic_cast<GenApi::IEnumeration*>(node)) CheckEnumeration(*enumeration);
        }
        catch (const std::exception& error)
        {
            ADD_FAILURE() << name << ": " << error.what();
        }
    }
}

void WriteEveryNodeBack(const FeatureMap& map)
{
    for (GenApi::INode* const node : map.Nodes())
    {
        const std::string name = node->GetName().c_str();
        try
        {
            if (!MayBeWrittenBack(*node)) continue;
            auto& value = dynamic_cast<GenApi::IValue&>(*node);
            const GENICAM_NAMESPACE::gcstring text = value.ToString();
            value.FromString(text);
            EXPECT_EQ(text, value.ToString(false, true)) << name;
        }
        catch (const std::exception& error)
        {
            ADD_FAILURE() << name << ": " << error.what();
        }
    }
}

void CheckCaches(const FeatureMap& map, const std::string& after)
{
    for (GenApi::INode* const node : map.Nodes())
    {
        const std::string name = node->GetName().c_str();
        try
        {
            auto* const value = dynamic_cast<GenApi::IValue*>(node);
            if (value == nullptr || !IsReadable(*node) || node->GetCachingMode() == GenApi::NoCache) continue;
            const GENICAM_NAMESPACE::gcstring cached = value->ToString();
            EXPECT_EQ(cached, value->ToString(false, true)) << name << " after " << after;
        }
        catch (const std::exception& error)
        {
            ADD_FAILURE() << name << " after " << after << ": " << error.what();
        }
    }
}

} // namespace koro::simulator::test
