// For the tests of adapters. Bytes: what a device sends, put together field by field. HeapBlock: such bytes in a heap
// block of exactly their size, so that a sanitizer sees a read beyond.
#pragma once

#include "tests/unit/genicam/listener.h"
#include "tests/unit/genicam/small_map.h"

#include <GenApi/IPort.h>
#include <algorithm>
#include <initializer_list>
#include <memory>
#include <stddef.h>
#include <stdint.h>
#include <string>
#include <vector>

namespace koro::test
{

class Bytes
{
public:
    Bytes() = default;
    Bytes(std::initializer_list<int> list) { Add(list); }

    Bytes& Add(std::initializer_list<int> list)
    {
        for (const int byte : list)
            bytes.push_back(static_cast<uint8_t>(byte));
        return *this;
    }
    Bytes& Add(const Bytes& more)
    {
        bytes.insert(bytes.end(), more.bytes.begin(), more.bytes.end());
        return *this;
    }
    Bytes& Fill(size_t count, int byte)
    {
        bytes.insert(bytes.end(), count, static_cast<uint8_t>(byte));
        return *this;
    }
    Bytes& Big(uint64_t number, size_t size)
    {
        for (size_t i = size; i-- > 0;)
            bytes.push_back(static_cast<uint8_t>(number >> 8 * i));
        return *this;
    }
    Bytes& Little(uint64_t number, size_t size)
    {
        for (size_t i = 0; i < size; ++i)
            bytes.push_back(static_cast<uint8_t>(number >> 8 * i));
        return *this;
    }
    Bytes& SetBig(size_t offset, uint64_t number, size_t size)
    {
        for (size_t i = size; i-- > 0; number >>= 8)
            bytes.at(offset + i) = static_cast<uint8_t>(number);
        return *this;
    }
    Bytes& SetLittle(size_t offset, uint64_t number, size_t size)
    {
        for (size_t i = 0; i < size; ++i, number >>= 8)
            bytes.at(offset + i) = static_cast<uint8_t>(number);
        return *this;
    }
    Bytes First(size_t count) const
    {
        Bytes part;
        part.bytes.assign(bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(count));
        return part;
    }
    size_t Size() const { return bytes.size(); }
    const uint8_t* Data() const { return bytes.data(); }

private:
    std::vector<uint8_t> bytes;
};

class HeapBlock
{
public:
    HeapBlock(const Bytes& content) : count(content.Size()), block(new uint8_t[count])
    {
        std::copy(content.Data(), content.Data() + count, block.get());
    }

    uint8_t* Data() const { return block.get(); }
    int64_t Size() const { return static_cast<int64_t>(count); }

private:
    size_t count;
    std::unique_ptr<uint8_t[]> block;
};

// "<Port>" with the given children.
inline std::string PortElement(const std::string& name, const std::string& children)
{
    return "<Port Name=\"" + name + "\">" + children + "</Port>";
}

inline std::string ChunkPortElement(const std::string& name, const std::string& id, const std::string& more = "")
{
    return PortElement(name, "<ChunkID>" + id + "</ChunkID>" + more);
}

// An unsigned register on the port.
inline std::string PortRegister(
    const std::string& name, const std::string& port, const std::string& address = "0", int length = 4,
    const std::string& order = "LittleEndian")
{
    return "<IntReg Name=\"" + name + "\"><Address>" + address + "</Address><Length>" + std::to_string(length) +
           "</Length><AccessMode>RW</AccessMode><pPort>" + port + "</pPort><Sign>Unsigned</Sign><Endianess>" + order +
           "</Endianess></IntReg>";
}

inline GENAPI_NAMESPACE::EAccessMode ModeOf(const SmallMap& map, const char* node)
{
    return map.Node(node)->GetAccessMode();
}

// The description of the exception of the type that the call throws; empty, which no exception has, when it throws
// none.
template <class E, class Call>
std::string Refusal(const Call& call)
{
    try
    {
        call();
    }
    catch (const E& exception)
    {
        return exception.GetDescription();
    }
    return "";
}

} // namespace koro::test
