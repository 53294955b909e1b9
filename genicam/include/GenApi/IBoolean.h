// IBoolean: a boolean value. Belongs to the node map.
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

// A reference to this interface.
template <class T>
class CBooleanRefT : public CValueRefT<T, IBoolean>
{
public:
    void SetValue(bool Value, bool Verify = true) override { this->Target().SetValue(Value, Verify); }
    IBoolean& operator=(bool Value) override
    {
        this->Target() = Value;
        return *this;
    }
    bool GetValue(bool Verify = false, bool IgnoreCache = false) const override
    {
        return this->Target().GetValue(Verify, IgnoreCache);
    }
    bool operator()() const override { return this->Target().operator()(); }
};

typedef CBooleanRefT<IBoolean> CBooleanRef;

} // namespace GENAPI_NAMESPACE
