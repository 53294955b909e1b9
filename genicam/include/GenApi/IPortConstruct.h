// IPortConstruct: connects a port node to a port object. Belongs to the node map.
#pragma once

#include <GenApi/IPort.h>
#include <GenApi/IPortStacked.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPortConstruct : virtual public IPort
{
    virtual void SetPortImpl(IPort * pPort) = 0;
    virtual EYesNo GetSwapEndianess() = 0;
};

} // namespace GENAPI_NAMESPACE
