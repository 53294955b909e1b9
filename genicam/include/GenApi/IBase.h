// IBase: the root of all interfaces. Objects belong to their node map, ports to the application.
#pragma once

#include <Base/GCLinkage.h>
#include <GenApi/Types.h>
#include <GenICamFwd.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IBase
{
    virtual EAccessMode GetAccessMode() const = 0;
    virtual ~IBase() = 0;
};

inline IBase::~IBase() {}

} // namespace GENAPI_NAMESPACE
