// DeviceInformation: the information that a producer reports about a device, common to Device and DeviceDescriptor.
//
// Each function queries the producer at each call. Thread-safe.
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
