// INodeMapDyn: a node map as a virtual base. No map of this runtime offers more by it than INodeMap does.
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
