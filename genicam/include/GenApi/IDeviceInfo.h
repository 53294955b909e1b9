// IDeviceInfo: the information of a description about its device. Belongs to the node map.
#pragma once

#include <Base/GCLinkage.h>
#include <Base/GCString.h>
#include <Base/GCTypes.h>
#include <GenICamFwd.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IDeviceInfo
{
    virtual GENICAM_NAMESPACE::gcstring GetModelName() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetVendorName() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetToolTip() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetStandardNameSpace() = 0;
    virtual void GetGenApiVersion(Version_t & Version, uint16_t & Build) = 0;
    virtual void GetSchemaVersion(Version_t & Version) = 0;
    virtual void GetDeviceVersion(Version_t & Version) = 0;
    virtual GENICAM_NAMESPACE::gcstring GetProductGuid() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetVersionGuid() = 0;

protected:
    ~IDeviceInfo() = default;
};

} // namespace GENAPI_NAMESPACE
