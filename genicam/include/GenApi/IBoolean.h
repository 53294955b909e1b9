// IBoolean: a truth value. Belongs to the node map.
#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IBoolean : virtual public IValue
{
    virtual void SetValue(bool Value, bool Verify = true) = 0;
    virtual IBoolean& operator=(bool Value)
    {
        SetValue(Value);
        return *this;
    }
    virtual bool GetValue(bool Verify = false, bool IgnoreCache = false) const = 0;
    virtual bool operator()() const
    {
        return GetValue();
    }
};

} // namespace GENAPI_NAMESPACE
