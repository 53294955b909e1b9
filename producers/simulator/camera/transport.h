// What the descriptions say of transport: the number of a type in their enumerations, and addresses made up for GigE
// Vision.
#pragma once

#include <cstdint>
#include <string_view>

namespace koro::simulator
{

// Of the enumerations TLType, InterfaceType, DeviceType and StreamType.
constexpr std::uint64_t TransportTypeNumber(std::string_view tlType)
{
    if (tlType == "GEV") return 0;
    if (tlType == "CL") return 1;
    if (tlType == "CLHS") return 2;
    if (tlType == "CXP") return 3;
    if (tlType == "U3V") return 4;
    if (tlType == "Mixed") return 6;
    return 5; // custom, as everything that has no name there
}

// Interface i is host 10.i.0.1 of a network of its own, its first camera is 10.i.1.1.
struct NetworkAddress
{
    std::uint64_t mac = 0; // locally administered
    std::uint32_t ip = 0;
    std::uint32_t mask = 0xFFFF0000;
    std::uint32_t gateway = 0;

    static constexpr NetworkAddress OfInterface(std::uint32_t interface)
    {
        const std::uint32_t net = 10U << 24 | interface << 16;
        return {0x020000000000 | std::uint64_t{interface} << 16, net | 1, 0xFFFF0000, net | 254};
    }
    static constexpr NetworkAddress OfCamera(std::uint32_t interface, std::uint32_t camera)
    {
        NetworkAddress address = OfInterface(interface);
        address.mac += 0x100 + camera;
        address.ip += 0xFF + camera + 1;
        return address;
    }
};

} // namespace koro::simulator
