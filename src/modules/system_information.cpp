#include "modules/system_information.h"

namespace koro::internal
{

using namespace GenTL;

std::string SystemInformation::DisplayName() const
{
    return StringInfo(TL_INFO_DISPLAYNAME);
}

std::string SystemInformation::VendorName() const
{
    return StringInfo(TL_INFO_VENDOR);
}

std::string SystemInformation::ModelName() const
{
    return StringInfo(TL_INFO_MODEL);
}

std::string SystemInformation::Version() const
{
    return StringInfo(TL_INFO_VERSION);
}

std::string SystemInformation::TLType() const
{
    return StringInfo(TL_INFO_TLTYPE);
}

std::string SystemInformation::CTIFileName() const
{
    return StringInfo(TL_INFO_NAME);
}

std::string SystemInformation::CTIFullPath() const
{
    return StringInfo(TL_INFO_PATHNAME);
}

std::int32_t SystemInformation::CharacterEncoding() const
{
    return NumericInfo<std::int32_t>(TL_INFO_CHAR_ENCODING, INFO_DATATYPE_INT32);
}

std::uint32_t SystemInformation::GenTLVersionMajor() const
{
    return NumericInfo<std::uint32_t>(TL_INFO_GENTL_VER_MAJOR, INFO_DATATYPE_UINT32);
}

std::uint32_t SystemInformation::GenTLVersionMinor() const
{
    return NumericInfo<std::uint32_t>(TL_INFO_GENTL_VER_MINOR, INFO_DATATYPE_UINT32);
}

} // namespace koro::internal
