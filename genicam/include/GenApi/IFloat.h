// IFloat: a floating-point number with a range. Belongs to the node map.
#pragma once

#include <GenApi/Autovector.h>
#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IFloat : virtual public IValue
{
    virtual void SetValue(double Value, bool Verify = true) = 0;
    virtual IFloat& operator=(double Value) = 0;
    virtual double GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual double operator()() = 0;
    virtual double operator*() = 0;
    virtual double GetMin() = 0;
    virtual double GetMax() = 0;
    virtual bool HasInc() = 0;
    virtual EIncMode GetIncMode() = 0;
    // Throws RuntimeException when there is no increment.
    virtual double GetInc() = 0;
    virtual double_autovector_t GetListOfValidValues(bool bounded = true) = 0;
    virtual ERepresentation GetRepresentation() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetUnit() const = 0;
    virtual EDisplayNotation GetDisplayNotation() const = 0;
    virtual int64_t GetDisplayPrecision() const = 0;
    // Narrow the range, never widen it.
    virtual void ImposeMin(double Value) = 0;
    virtual void ImposeMax(double Value) = 0;
};

// A reference to this interface.
template <class T>
class CFloatRefT : public CValueRefT<T, IFloat>
{
public:
    void SetValue(double Value, bool Verify = true) override { this->Target().SetValue(Value, Verify); }
    IFloat& operator=(double Value) override
    {
        this->Target() = Value;
        return *this;
    }
    double GetValue(bool Verify = false, bool IgnoreCache = false) override
    {
        return this->Target().GetValue(Verify, IgnoreCache);
    }
    double operator()() override { return this->Target().operator()(); }
    double operator*() override { return this->Target().operator*(); }
    double GetMin() override { return this->Target().GetMin(); }
    double GetMax() override { return this->Target().GetMax(); }
    bool HasInc() override { return this->Target().HasInc(); }
    EIncMode GetIncMode() override { return this->Target().GetIncMode(); }
    double GetInc() override { return this->Target().GetInc(); }
    double_autovector_t GetListOfValidValues(bool bounded = true) override
    {
        return this->Target().GetListOfValidValues(bounded);
    }
    ERepresentation GetRepresentation() override { return this->Target().GetRepresentation(); }
    GENICAM_NAMESPACE::gcstring GetUnit() const override { return this->Target().GetUnit(); }
    EDisplayNotation GetDisplayNotation() const override { return this->Target().GetDisplayNotation(); }
    int64_t GetDisplayPrecision() const override { return this->Target().GetDisplayPrecision(); }
    void ImposeMin(double Value) override { this->Target().ImposeMin(Value); }
    void ImposeMax(double Value) override { this->Target().ImposeMax(Value); }
};

typedef CFloatRefT<IFloat> CFloatRef;

} // namespace GENAPI_NAMESPACE
