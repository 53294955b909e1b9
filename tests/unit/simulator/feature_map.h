// FeatureMap: a node map of the GenICam runtime over a port of the simulator, as an application would have it.
#pragma once

#include "tests/unit/simulator/producer.h"

#include <GenApi/GenApi.h>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace koro::simulator::test
{

// A register access that the producer refused.
struct PortFailure : std::runtime_error
{
    PortFailure(GC_ERROR result, const std::string& text) : std::runtime_error(text), code(result) {}
    GC_ERROR code;
};

// The description that the URL of that index leads to, as it lies in the registers.
std::string FetchDescription(const Producer& producer, PORT_HANDLE port, std::uint32_t url = 0);

class FeatureMap
{
public:
    FeatureMap(const Producer& loaded, PORT_HANDLE openedPort, std::uint32_t url = 0);
    ~FeatureMap();
    FeatureMap(const FeatureMap&) = delete;
    FeatureMap& operator=(const FeatureMap&) = delete;

    // All throw std::runtime_error for a node that does not exist or is of another kind.
    GENAPI_NAMESPACE::INode& Node(const std::string& name) const;
    GENAPI_NAMESPACE::IValue& Value(const std::string& name) const { return As<GENAPI_NAMESPACE::IValue>(name); }
    GENAPI_NAMESPACE::IInteger& Integer(const std::string& name) const { return As<GENAPI_NAMESPACE::IInteger>(name); }
    GENAPI_NAMESPACE::IFloat& Float(const std::string& name) const { return As<GENAPI_NAMESPACE::IFloat>(name); }
    GENAPI_NAMESPACE::IEnumeration& Enumeration(const std::string& name) const
    {
        return As<GENAPI_NAMESPACE::IEnumeration>(name);
    }

    std::string Text(const std::string& name) const { return Value(name).ToString(false, false).c_str(); }
    void Set(const std::string& name, const std::string& text) const { Value(name).FromString(text.c_str()); }
    void Execute(const std::string& name) const { As<GENAPI_NAMESPACE::ICommand>(name).Execute(); }
    GENAPI_NAMESPACE::EAccessMode Access(const std::string& name) const { return Node(name).GetAccessMode(); }
    std::vector<GENAPI_NAMESPACE::INode*> Nodes() const;
    bool Has(const std::string& name) const { return map->GetNode(name.c_str()) != nullptr; }

    GENAPI_NAMESPACE::INodeMap& Map() const { return *map; }

private:
    class Port;

    template <typename T>
    T& As(const std::string& name) const
    {
        auto* found = dynamic_cast<T*>(&Node(name));
        if (found == nullptr) throw std::runtime_error(name + " is of another kind");
        return *found;
    }

    Port* port;
    GENAPI_NAMESPACE::INodeMap* map = nullptr;
};

// What a careful reader of any description may expect of every node: it reads, its value lies within its limits, its
// texts are there. Failures name the node.
void CheckEveryNode(const FeatureMap& map);
// Every writable node but commands takes its own value back.
void WriteEveryNodeBack(const FeatureMap& map);
// What the caches hold is what the registers say.
void CheckCaches(const FeatureMap& map, const std::string& after);

} // namespace koro::simulator::test
