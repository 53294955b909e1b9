#include "producers/simulator/settings/connection_record.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace koro::simulator
{
namespace
{

constexpr std::size_t shortBytes = 100;

} // namespace

void SetDeviceId(ConnectionRecord& record, const std::string& id) noexcept
{
    std::memset(record.deviceId, 0, sizeof record.deviceId);
    std::copy_n(id.begin(), std::min(id.size(), sizeof record.deviceId - 1), record.deviceId);
}

std::string RecordBlock(ConnectionRecord record, const RecordChanges& changes, std::size_t bytes)
{
    if (changes.id) SetDeviceId(record, *changes.id);
    if (changes.changeKind) record.changeKind = *changes.changeKind;
    if (changes.deviceFlag) record.deviceFlag = *changes.deviceFlag;
    if (changes.reconnectFlag1) record.reconnectFlag1 = *changes.reconnectFlag1;
    if (changes.reconnectFlag2) record.reconnectFlag2 = *changes.reconnectFlag2;
    if (changes.reconnectValue) record.reconnectValue = *changes.reconnectValue;
    if (changes.shape == RecordShape::Unterminated)
        std::replace(std::begin(record.deviceId), std::end(record.deviceId), '\0', 'x');
    if (changes.shape == RecordShape::OtherInterface) record.interface = nullptr;

    std::string block(reinterpret_cast<const char*>(&record), sizeof record);
    block.resize(changes.shape == RecordShape::Short ? std::min(bytes, shortBytes) : bytes);
    return block;
}

} // namespace koro::simulator
