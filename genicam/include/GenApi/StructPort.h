// CTestPortStruct<Struct>: a port whose registers are the fields of a structure; the first field is at a base address.
//
//     struct Registers { uint32_t Width; uint32_t Height; };
//     CTestPortStruct<Registers> port(0x1000);
//     port.Height = 480; // what a node reads at 0x1004
//
// Not thread-safe. The bytes are those in memory: numbers have the byte order of the machine.
#pragma once

#include <GenApi/PortImpl.h>
#include <string.h>
#include <type_traits>

namespace GENAPI_NAMESPACE
{

template <class Struct>
class CTestPortStruct : public Struct, public CPortImpl
{
    static_assert(std::is_trivially_copyable<Struct>::value, "registers are bytes");

public:
    // All fields are 0.
    explicit CTestPortStruct(int64_t BaseAddress = 0) : Struct(), baseAddress(BaseAddress) {}

    EAccessMode GetAccessMode() const override { return RW; }
    // Throws OutOfRangeException outside of the structure.
    void Read(void* buffer, int64_t address, int64_t length) override
    {
        const char* const source = Place(address, length);
        if (length > 0) memcpy(buffer, source, static_cast<size_t>(length));
    }
    void Write(const void* buffer, int64_t address, int64_t length) override
    {
        char* const target = Place(address, length);
        if (length > 0) memcpy(target, buffer, static_cast<size_t>(length));
    }

private:
    char* Place(int64_t address, int64_t length)
    {
        // Unsigned: an address below the base results in a distance beyond any structure.
        const uint64_t distance = static_cast<uint64_t>(address) - static_cast<uint64_t>(baseAddress);
        if (length < 0 || distance > sizeof(Struct) || static_cast<uint64_t>(length) > sizeof(Struct) - distance)
        {
            throw OUT_OF_RANGE_EXCEPTION(
                "%" FMT_I64 "d bytes at address %" FMT_I64 "d lie outside of the structure", length, address);
        }
        return reinterpret_cast<char*>(static_cast<Struct*>(this)) + distance;
    }

    int64_t baseAddress;
};

} // namespace GENAPI_NAMESPACE
