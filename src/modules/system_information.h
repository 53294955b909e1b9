// SystemInformation: the information that a producer reports about its system, common to System and SystemDescriptor.
//
// Each function queries the producer at each call. Thread-safe.
#pragma once

#include "gentl/info_accessor.h"

#include <cstdint>
#include <string>

namespace koro::internal
{

class SystemInformation : public TGenTLInfoAccessor<GenTL::TL_INFO_CMD_LIST>
{
public:
    std::string DisplayName() const;
    std::string VendorName() const;
    std::string ModelName() const;
    std::string Version() const;
    std::string TLType() const;
    std::string CTIFileName() const;
    std::string CTIFullPath() const;
    std::int32_t CharacterEncoding() const; // TL_CHAR_ENCODING
    std::uint32_t GenTLVersionMajor() const;
    std::uint32_t GenTLVersionMinor() const;

protected:
    using TGenTLInfoAccessor::TGenTLInfoAccessor;
};

} // namespace koro::internal
