// INodeMapDyn: a node map as a virtual base class. In this runtime it offers nothing beyond INodeMap.
#pragma once

#include <GenApi/INodeMap.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT INodeMapDyn : virtual public INodeMap
{
protected:
    ~INodeMapDyn() = default;
};

} // namespace GENAPI_NAMESPACE
