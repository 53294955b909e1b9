// IInteger: a 64-bit number with a range. Belongs to the node map.
#pragma once

#include <GenApi/Autovector.h>
#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IInteger : virtual public IValue
{
    virtual void SetValue(int64_t Value, bool Verify = true) = 0;
    virtual IInteger& operator=(int64_t Value) = 0;
    virtual int64_t GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual int64_t operator()() = 0;
    virtual int64_t operator*() = 0;
    virtual int64_t GetMin() = 0;
    virtual int64_t GetMax() = 0;
    virtual EIncMode GetIncMode() = 0;
    virtual int64_t GetInc() = 0;
    // Sorted. With `bounded` only the values within the range. Writing does not check against the list.
    virtual int64_autovector_t GetListOfValidValues(bool bounded = true) = 0;
    virtual ERepresentation GetRepresentation() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetUnit() = 0;
    // Narrow the range, never widen it.
    virtual void ImposeMin(int64_t Value) = 0;
    virtual void ImposeMax(int64_t Value) = 0;
};

// A reference to this interface.
template <class T, class I>
class CIntegerRefT : public CValueRefT<T, I>
{
public:
    void SetValue(int64_t Value, bool Verify = true) override { this->Target().SetValue(Value, Verify); }
    IInteger& operator=(int64_t Value) override
    {
        this->Target() = Value;
        return *this;
    }
    int64_t GetValue(bool Verify = false, bool IgnoreCache = false) override
    {
        return this->Target().GetValue(Verify, IgnoreCache);
    }
    int64_t operator()() override { return this->Target().operator()(); }
    int64_t operator*() override { return this->Target().operator*(); }
    int64_t GetMin() override { return this->Target().GetMin(); }
    int64_t GetMax() override { return this->Target().GetMax(); }
    EIncMode GetIncMode() override { return this->Target().GetIncMode(); }
    int64_t GetInc() override { return this->Target().GetInc(); }
    int64_autovector_t GetListOfValidValues(bool bounded = true) override
    {
        return this->Target().GetListOfValidValues(bounded);
    }
    ERepresentation GetRepresentation() override { return this->Target().GetRepresentation(); }
    GENICAM_NAMESPACE::gcstring GetUnit() override { return this->Target().GetUnit(); }
    void ImposeMin(int64_t Value) override { this->Target().ImposeMin(Value); }
    void ImposeMax(int64_t Value) override { this->Target().ImposeMax(Value); }
};

typedef CIntegerRefT<IInteger, IInteger> CIntegerRef;

} // namespace GENAPI_NAMESPACE
