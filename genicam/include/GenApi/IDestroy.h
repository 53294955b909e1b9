// IDestroy: destroys a node map.
#pragma once

#include <Base/GCLinkage.h>
#include <GenICamFwd.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IDestroy
{
    virtual void Destroy() = 0;

protected:
    ~IDestroy() = default;
};

} // namespace GENAPI_NAMESPACE
