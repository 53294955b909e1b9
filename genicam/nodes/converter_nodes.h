// ConverterNode: the value of another node, converted to other units. IntegerConverter, FloatConverter: the elements
// IntConverter and Converter.
#pragma once

#include "nodes/knife_nodes.h"

namespace GENAPI_NAMESPACE::runtime
{

// Number is int64_t or double, Base the node class for it.
template <class Base, class Number>
class ConverterNode : public Base
{
public:
    using Base::Base;
    void Resolve() override;

protected:
    Number Read(ReadOptions options) override;
    void Write(Number written, bool verify) override;
    EAccessMode LinkedMode() const override;
    ECachingMode NaturalCaching() const override;

    Number Limit(bool upper);
    Number FromTarget(Number number, ReadOptions options) { return from->Compute(number, options); }
    Node& Target() const { return *value; }
    bool Falls() const { return slope == Decreasing; }

private:
    Number LimitThroughFormula(bool upper);

    Node* value = nullptr;
    KnifeNode<Base, Number>* to = nullptr;
    KnifeNode<Base, Number>* from = nullptr;
    ESlope slope = Automatic; // an automatic slope is determined when a limit is first queried, and then stays
};

extern template class ConverterNode<IntegerBase, int64_t>;
extern template class ConverterNode<FloatBase, double>;

class IntegerConverter : public ConverterNode<IntegerBase, int64_t>
{
public:
    using ConverterNode::ConverterNode;
    int64_t IntegerMin() override { return Limit(false); }
    int64_t IntegerMax() override { return Limit(true); }
};

class FloatConverter : public ConverterNode<FloatBase, double>
{
public:
    using ConverterNode::ConverterNode;
    double RealMin() override { return Limit(false); }
    double RealMax() override { return Limit(true); }
    bool HasRealInc() override;
    double RealInc() override;
};

} // namespace GENAPI_NAMESPACE::runtime
