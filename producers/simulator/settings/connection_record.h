// ConnectionRecord: what event 1000 of the system delivers when a camera goes or comes, whole or spoilt on request.
#pragma once

#include "producers/kit/gentl.h"
#include "producers/simulator/kit.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace koro::simulator
{

inline constexpr EVENT_TYPE connectionEvent = EVENT_CUSTOM_ID;

#pragma pack(push, 1)
struct ConnectionRecord
{
    void* interface = nullptr; // its handle
    std::uint8_t reserved1[8] = {};
    char deviceId[256] = {};
    std::uint16_t changeKind = 0;
    std::uint8_t deviceFlag = 0; // 0: about the list only
    std::uint8_t reconnectFlag1 = 0;
    std::uint8_t reconnectFlag2 = 0;
    std::uint8_t reserved2[6] = {};
    std::uint32_t reconnectValue = 0;
    std::uint8_t reserved3[64] = {};
};
#pragma pack(pop)

static_assert(sizeof(ConnectionRecord) == 351);
static_assert(offsetof(ConnectionRecord, changeKind) == 272);
static_assert(offsetof(ConnectionRecord, reconnectValue) == 283);

inline constexpr std::uint16_t cameraCame = 1;
inline constexpr std::uint16_t cameraWent = 2;

enum class RecordShape
{
    Whole,
    Unterminated,   // the id fills its field
    OtherInterface, // for a handle that is no interface's
    Short           // ends within the id
};

// What a script has put in place of the truth.
struct RecordChanges
{
    RecordShape shape = RecordShape::Whole;
    std::optional<std::string> id;
    std::optional<std::uint16_t> changeKind;
    std::optional<std::uint8_t> deviceFlag;
    std::optional<std::uint8_t> reconnectFlag1;
    std::optional<std::uint8_t> reconnectFlag2;
    std::optional<std::uint32_t> reconnectValue;
};

// Cut when it is too long; the terminator stays.
void SetDeviceId(ConnectionRecord& record, const std::string& id) noexcept;

// The block of the event: `bytes` of them, unless it is spoilt.
std::string RecordBlock(ConnectionRecord record, const RecordChanges& changes, std::size_t bytes);

} // namespace koro::simulator
