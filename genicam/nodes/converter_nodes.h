// IntegerConverter, FloatConverter: the elements IntConverter and Converter: a value that is kept elsewhere in other
// units.
#pragma once

#include "nodes/knife_nodes.h"

namespace GENAPI_NAMESPACE::runtime
{

class IntegerConverter : public IntegerBase
{
public:
    using IntegerBase::IntegerBase;
    void Resolve() override;
    int64_t IntegerMin() override { return Limit(false); }
    int64_t IntegerMax() override { return Limit(true); }

protected:
    int64_t Read(ReadOptions options) override;
    void Write(int64_t value, bool verify) override;
    EAccessMode NaturalMode() const override;
    ECachingMode NaturalCaching() const override;

private:
    int64_t Limit(bool upper);
    int64_t LimitThroughFormula(bool upper);

    Node* value = nullptr;
    IntegerKnife* to = nullptr;
    IntegerKnife* from = nullptr;
    ESlope slope = Automatic;
};

class FloatConverter : public FloatBase
{
public:
    using FloatBase::FloatBase;
    void Resolve() override;
    double RealMin() override { return Limit(false); }
    double RealMax() override { return Limit(true); }
    bool HasRealInc() override;
    double RealInc() override;

protected:
    double Read(ReadOptions options) override;
    void Write(double written, bool verify) override;
    EAccessMode NaturalMode() const override;
    ECachingMode NaturalCaching() const override;

private:
    double Limit(bool upper);
    double LimitThroughFormula(bool upper);

    Node* value = nullptr;
    FloatKnife* to = nullptr;
    FloatKnife* from = nullptr;
    ESlope slope = Automatic;
};

} // namespace GENAPI_NAMESPACE::runtime
