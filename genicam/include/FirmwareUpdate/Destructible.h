// IDestructible: objects that are destroyed through a pointer to their interface.
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
