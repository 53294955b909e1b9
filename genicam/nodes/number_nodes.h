// IntegerNode, FloatNode: the elements Integer and Float. A limit is a number, a node, or the limit of the underlying
// value.
#pragma once

#include "nodes/number_base.h"
#include "nodes/value_source.h"

namespace GENAPI_NAMESPACE::runtime
{

class IntegerNode : public IntegerBase
{
public:
    using IntegerBase::IntegerBase;
    void Resolve() override;
    int64_t IntegerMin() override;
    int64_t IntegerMax() override;
    int64_t IntegerInc() override;
    std::vector<int64_t> ValidValues() const override;
    Node* ValueTarget() const override { return source.Target(); }

protected:
    int64_t Read(ReadOptions options) override { return source.Read(options); }
    void Write(int64_t value, bool verify) override { source.Write(value, verify); }
    EAccessMode LinkedMode() const override;
    ECachingMode NaturalCaching() const override { return source.Caching(WriteThrough); }

private:
    ValueSource<int64_t> source;
};

class FloatNode : public FloatBase
{
public:
    using FloatBase::FloatBase;
    void Resolve() override;
    double RealMin() override;
    double RealMax() override;
    bool HasRealInc() override;
    double RealInc() override;
    Node* ValueTarget() const override { return source.Target(); }

protected:
    double Read(ReadOptions options) override { return source.Read(options); }
    void Write(double value, bool verify) override { source.Write(value, verify); }
    EAccessMode LinkedMode() const override;
    ECachingMode NaturalCaching() const override;

private:
    ValueSource<double> source;
};

} // namespace GENAPI_NAMESPACE::runtime
