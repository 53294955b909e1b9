// InterfaceInformation: what a producer tells of an interface, common to Interface and InterfaceDescriptor.
//
// Each is one query, made at each call. Any thread.
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
