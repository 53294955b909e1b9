// DeviceInformation: what a producer tells of a device, common to Device and DeviceDescriptor.
//
// Each is one query, made at each call. Any thread.
#pragma once

#include "gentl/info_accessor.h"

#include <cstdint>

namespace koro::internal
{

class DeviceInformation : public TGenTLInfoAccessor<GenTL::DEVICE_INFO_CMD_LIST>
{
public:
    // DEVICE_ACCESS_STATUS of the standard.
    std::int32_t AccessStatus() const
    {
        return NumericInfo<std::int32_t>(GenTL::DEVICE_INFO_ACCESS_STATUS, GenTL::INFO_DATATYPE_INT32);
    }
    // Ticks per second.
    std::uint64_t TimestampTickFrequency() const
    {
        return NumericInfo<std::uint64_t>(GenTL::DEVICE_INFO_TIMESTAMP_FREQUENCY, GenTL::INFO_DATATYPE_UINT64);
    }

protected:
    using TGenTLInfoAccessor::TGenTLInfoAccessor;
};

} // namespace koro::internal
