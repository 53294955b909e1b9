// IValue: the value of a node as text. Belongs to the node map; every operation takes the map's lock.
#pragma once

#include <GenApi/IBase.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IValue : virtual public IBase
{
    virtual INode* GetNode();
    // Verify checks limits and error nodes; IgnoreCache always asks the port.
    virtual GENICAM_NAMESPACE::gcstring ToString(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify = true) = 0;
    virtual bool IsValueCacheValid() const = 0;
};

} // namespace GENAPI_NAMESPACE
