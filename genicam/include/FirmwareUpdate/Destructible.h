// IDestructible: what can be ended through a pointer to its interface.
#pragma once

#include <Base/GCLinkage.h>
#include <Base/GCNamespace.h>

namespace GENAPI_NAMESPACE
{

class GENFW_DECL_ABSTRACT IDestructible
{
public:
    virtual ~IDestructible() {}
};

} // namespace GENAPI_NAMESPACE
