#include "modules/gvcp_command_length.h"

#include "base/exceptions.h"
#include "base/failures.h"
#include "modules/device.h"
#include "modules/remote_device.h"
#include "nodes/integer_node.h"
#include "nodes/node_map.h"
#include "nodes/register_node.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace koro::internal
{

namespace
{

constexpr const char* testNodeName = "GevGVCPCMDLengthTest";
constexpr const char* lengthNodeName = "GevGVCPCMDLength";

constexpr std::int64_t firstLength = 536;
constexpr std::int64_t granularity = 256;
constexpr std::int64_t headerLength = 36; // the transport layer counts the header, the camera does not
// A command is one datagram, so none is longer, regardless of what a camera reports.
constexpr std::int64_t longestDatagram = 65'535;

struct TestNodes
{
    std::shared_ptr<RegisterNode> test;
    std::shared_ptr<IntegerNode> limit;  // of the camera
    std::shared_ptr<IntegerNode> length; // of the transport layer

    bool AreComplete() const { return test && limit && length; }
};

template <class TypedNode>
std::shared_ptr<TypedNode> Find(NodeMap& map, const char* name)
{
    return std::dynamic_pointer_cast<TypedNode>(map.TryFindNode(name));
}

// A camera without a usable description can be opened and can stream: errors in it are reported when its nodes are
// requested.
template <class Step>
auto NothingIfItFails(Step&& step) -> decltype(step())
{
    decltype(step()) result{};
    Succeeds([&] { result = step(); });
    return result;
}

TestNodes FindNodes(Device& device)
{
    const auto localMaps = NothingIfItFails([&] { return device.NodeMaps(); });
    const auto remoteDevice = device.GetRemoteDevice();
    const auto remoteMaps = NothingIfItFails([&] { return remoteDevice->NodeMaps(); });
    if (localMaps.empty() || remoteMaps.empty()) return {};

    NodeMap& remote = *remoteMaps.front();
    NodeMap& local = *localMaps.front();
    return NothingIfItFails([&] {
        return TestNodes{
            Find<RegisterNode>(remote, testNodeName), Find<IntegerNode>(remote, lengthNodeName),
            Find<IntegerNode>(local, lengthNodeName)};
    });
}

std::int64_t StepToNextMultiple(std::int64_t length)
{
    return granularity - length % granularity;
}

} // namespace

void TestGVCPCommandLength(Device& device)
{
    const TestNodes nodes = FindNodes(device);
    if (!nodes.AreComplete()) return;

    std::int64_t length = firstLength;
    std::int64_t step = granularity;
    const bool hasPassed = Succeeds([&] {
        for (;;)
        {
            const std::vector<std::uint8_t> payload(static_cast<std::size_t>(length), '0');
            nodes.test->Write(payload.data(), payload.size());
            step = StepToNextMultiple(length);
            length += step;
            if (length > std::min(nodes.limit->Value(CachePolicy::UseCache), longestDatagram)) return;
            nodes.length->SetValue(length + headerLength);
        }
    });
    if (hasPassed || length <= firstLength) return;
    length -= step; // the last length that succeeded
    nodes.length->SetValue(std::min(nodes.limit->Value(CachePolicy::UseCache), length + headerLength));
}

} // namespace koro::internal
