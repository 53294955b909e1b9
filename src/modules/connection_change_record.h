// The record of a producer's custom event 1000: a device was disconnected or connected.
//
// This format is not part of the GenTL standard; its bytes are fixed. The meaning of the last fields is known only to
// the producer.
#pragma once

#include "gentl/api/gentl.h"

#include <cstddef>
#include <cstdint>

namespace ZVR_GenTL
{

#pragma pack(push, 1)
struct S_EVENT_DEVICE_CONNECTION_CHANGE_DATA
{
    GenTL::IF_HANDLE interface; // the interface to which the record belongs
    std::uint8_t notRead8[8];
    char deviceID[256];       // as IFGetDeviceID returns it
    std::uint16_t changeKind; // 1: connected; any other number: disconnected
    std::uint8_t deviceFlag;  // 0: only the list has changed
    std::uint8_t reconnectFlag1;
    std::uint8_t reconnectFlag2;
    std::uint8_t notRead277[6];
    std::uint32_t reconnectValue;
    std::uint8_t notRead287[64];
};
#pragma pack(pop)

static_assert(sizeof(S_EVENT_DEVICE_CONNECTION_CHANGE_DATA) == 351);
static_assert(offsetof(S_EVENT_DEVICE_CONNECTION_CHANGE_DATA, deviceID) == 16);
static_assert(offsetof(S_EVENT_DEVICE_CONNECTION_CHANGE_DATA, changeKind) == 272);
static_assert(offsetof(S_EVENT_DEVICE_CONNECTION_CHANGE_DATA, deviceFlag) == 274);
static_assert(offsetof(S_EVENT_DEVICE_CONNECTION_CHANGE_DATA, reconnectFlag1) == 275);
static_assert(offsetof(S_EVENT_DEVICE_CONNECTION_CHANGE_DATA, reconnectFlag2) == 276);
static_assert(offsetof(S_EVENT_DEVICE_CONNECTION_CHANGE_DATA, reconnectValue) == 283);

} // namespace ZVR_GenTL
