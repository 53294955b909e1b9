#include "nodes/register_node.h"

#include "base/exceptions.h"

#include <string>

namespace koro::internal
{

namespace
{

// GenApi's lengths are signed.
std::int64_t ToLength(std::size_t size)
{
    if (size > static_cast<std::size_t>(INT64_MAX))
    {
        throw InvalidArgumentException("A register has no " + std::to_string(size) + " bytes!");
    }
    return static_cast<std::int64_t>(size);
}

} // namespace

std::uint64_t RegisterNode::Address() const
{
    return static_cast<std::uint64_t>(Ask([&] { return bytes->GetAddress(false); }));
}

std::size_t RegisterNode::Length() const
{
    return static_cast<std::size_t>(Ask([&] { return bytes->GetLength(false); }));
}

void RegisterNode::Read(std::uint8_t* data, std::size_t size, CachePolicy policy) const
{
    Ask([&] { bytes->Get(data, ToLength(size), IgnoresCache(policy), false); });
}

void RegisterNode::Write(const std::uint8_t* data, std::size_t size)
{
    AskLocked([&] { bytes->Set(data, ToLength(size), true); });
}

} // namespace koro::internal
