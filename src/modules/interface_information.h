// InterfaceInformation: the information that a producer reports about an interface, common to Interface and
// InterfaceDescriptor.
//
// Each function queries the producer at each call. Thread-safe.
#pragma once

#include "gentl/info_accessor.h"

#include <string>

namespace koro::internal
{

class InterfaceInformation : public TGenTLInfoAccessor<GenTL::INTERFACE_INFO_CMD_LIST>
{
public:
    std::string DisplayName() const { return StringInfo(GenTL::INTERFACE_INFO_DISPLAYNAME); }
    std::string TLType() const { return StringInfo(GenTL::INTERFACE_INFO_TLTYPE); }

protected:
    using TGenTLInfoAccessor::TGenTLInfoAccessor;
};

} // namespace koro::internal
