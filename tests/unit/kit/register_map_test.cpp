#include "producers/kit/failure.h"
#include "producers/kit/register_map.h"

#include <array>
#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

namespace
{
using namespace koro::kit;

GC_ERROR CodeOfAccess(const std::function<void()>& act)
{
    try
    {
        act();
        return GC_ERR_SUCCESS;
    }
    catch (const Failure& failure)
    {
        return failure.Code();
    }
}

std::string Bytes(const RegisterMap& map, std::uint64_t address, std::size_t length)
{
    std::string bytes(length, '?');
    map.Read(address, std::as_writable_bytes(std::span(bytes)));
    return bytes;
}

void Write(RegisterMap& map, std::uint64_t address, const std::string& bytes)
{
    map.Write(address, std::as_bytes(std::span(bytes)));
}

TEST(KitRegisterMap, EncodesIntegersInTheOrderOfTheMap)
{
    RegisterMap little;
    little.AddInteger(0x10, 4, 0x01020304);
    EXPECT_EQ(Bytes(little, 0x10, 4), "\4\3\2\1");
    RegisterMap big(ByteOrder::Big);
    big.AddInteger(0x10, 4, 0x01020304);
    EXPECT_EQ(Bytes(big, 0x10, 4), "\1\2\3\4");
}

TEST(KitRegisterMap, CrossesAdjacentRegisters)
{
    RegisterMap map;
    map.AddInteger(0, 2, 0x6261);
    map.AddText(2, 2, "cd");
    EXPECT_EQ(Bytes(map, 1, 2), "bc");
}

TEST(KitRegisterMap, KeepsWhatAWriteLeavesOutOfARegister)
{
    RegisterMap map;
    std::uint64_t value = 0x04030201;
    map.AddInteger(
        0, 4, [&] { return value; }, [&](std::uint64_t wanted) { value = wanted; });
    Write(map, 1, "\7");
    EXPECT_EQ(value, 0x04030701U);
}

TEST(KitRegisterMap, RefusesWhatARegisterHasNoFunctionFor)
{
    RegisterMap map;
    map.AddInteger(0, 4, 1);
    map.AddCommand(4, [] {});
    EXPECT_EQ(CodeOfAccess([&] { Write(map, 0, "abcd"); }), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(CodeOfAccess([&] { Bytes(map, 4, 4); }), GC_ERR_ACCESS_DENIED);
    EXPECT_EQ(CodeOfAccess([&] { Bytes(map, 8, 1); }), GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(CodeOfAccess([&] { Bytes(map, UINT64_MAX, 2); }), GC_ERR_INVALID_ADDRESS);
}

TEST(KitRegisterMap, TakesNothingOfAWriteThatFailsHalfWay)
{
    RegisterMap map;
    std::uint64_t first = 1;
    map.AddInteger(
        0, 1, [&] { return first; }, [&](std::uint64_t wanted) { first = wanted; });
    map.AddInteger(
        1, 1, [] { return std::uint64_t{0}; }, [](std::uint64_t) { RefuseValue("never"); });
    map.SetSnapshot([&] { return [&first, before = first] { first = before; }; });
    EXPECT_EQ(CodeOfAccess([&] { Write(map, 0, "ab"); }), GC_ERR_INVALID_VALUE);
    EXPECT_EQ(first, 1U);
}

TEST(KitRegisterMap, RunsActionsBehindItsLock)
{
    RegisterMap map;
    std::string seen;
    map.AddText(8, 4, "text");
    map.AddAction(0, [&] { seen = Bytes(map, 8, 4); });
    Write(map, 0, std::string("\1\0\0\0", 4));
    EXPECT_EQ(seen, "text");
    EXPECT_EQ(CodeOfAccess([&] { Write(map, 0, std::string("\2\0\0\0", 4)); }), GC_ERR_INVALID_VALUE);
}

TEST(KitRegisterMap, PlacesTheElementsOfAnArrayAtTheirDistance)
{
    constexpr RegisterPlace first{0x20, 2, 4};
    RegisterMap map;
    for (std::uint64_t index = 0; index < 3; ++index)
        map.AddInteger(first.At(index), 0x6161 + index);
    EXPECT_EQ(Bytes(map, 0x20, 2) + Bytes(map, 0x24, 2) + Bytes(map, 0x28, 2), "aabaca");
}

TEST(KitRegisterMap, RefusesRegistersThatOverlap)
{
    RegisterMap map;
    map.AddInteger(4, 4, 1);
    EXPECT_THROW(map.AddInteger(6, 4, 1), std::logic_error);
    EXPECT_THROW(map.AddInteger(2, 4, 1), std::logic_error);
}

} // namespace
