// NumberBase: what nodes with a number have in common, regardless of the source of the number. Number is int64_t or
// double, Interface is IInteger or IFloat, List is the type of their list of valid values.
//
// Derived classes implement Read and Write, which are called while the lock is held.
#pragma once

#include "nodes/number_access.h"
#include "nodes/value_node.h"

#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>
#include <limits>
#include <string>
#include <string_view>

namespace GENAPI_NAMESPACE::runtime
{

template <class Number, class Interface, class List>
class NumberBase : public ValueNode, public Interface
{
public:
    using ValueNode::ValueNode;

    void SetValue(Number Value, bool Verify = true) override;
    Interface& operator=(Number Value) override;
    Number GetValue(bool Verify = false, bool IgnoreCache = false) override;
    Number operator()() override { return GetValue(); }
    Number operator*() override { return GetValue(); }
    Number GetMin() override;
    Number GetMax() override;
    EIncMode GetIncMode() override;
    Number GetInc() override;
    List GetListOfValidValues(bool bounded = true) override;
    ERepresentation GetRepresentation() override;
    void ImposeMin(Number Value) override;
    void ImposeMax(Number Value) override;

    ERepresentation Representation() const override;

protected:
    // Reads the value itself, bypassing the cache of this node.
    virtual Number Read(ReadOptions options) = 0;
    virtual void Write(Number value, bool verify) = 0;
    // The limits for writing the node itself; other nodes use IntegerMin, RealMin and so on.
    virtual Number MinOfWrites() { return MinOf<Number>(*this); }
    virtual Number MaxOfWrites() { return MaxOf<Number>(*this); }
    // Throws OutOfRangeException for a value between two increments; the limits are checked before.
    virtual void CheckStep(Number, Number) {}
    virtual std::string Shown(Number value) = 0;
    // Returns false for a text that is not a number.
    virtual bool Parse(std::string_view text, Number& value) const = 0;

    Number ReadNumber(ReadOptions options);
    void WriteNumber(Number value, bool verify);

    GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) override;
    void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) override;

    static constexpr Number infinity = std::numeric_limits<Number>::infinity();

    // Imposed by the application.
    Number imposedMin = isInteger<Number> ? std::numeric_limits<Number>::lowest() : -infinity;
    Number imposedMax = isInteger<Number> ? std::numeric_limits<Number>::max() : infinity;

private:
    void CheckRange(Number value);

    Number cachedValue = 0;
};

class IntegerBase : public NumberBase<int64_t, IInteger, int64_autovector_t>
{
public:
    using NumberBase::NumberBase;
    using NumberBase::operator=;

    GENICAM_NAMESPACE::gcstring GetUnit() override;

    int64_t ReadInteger(ReadOptions options) override { return ReadNumber(options); }
    double ReadReal(ReadOptions options) override { return static_cast<double>(ReadInteger(options)); }
    void WriteInteger(int64_t value, bool verify) override { WriteNumber(value, verify); }
    // To the nearest step.
    void WriteReal(double value, bool verify) override;
    double RealMin() override { return static_cast<double>(IntegerMin()); }
    double RealMax() override { return static_cast<double>(IntegerMax()); }
    bool HasRealInc() override { return true; }
    double RealInc() override { return static_cast<double>(IntegerInc()); }

protected:
    void CheckStep(int64_t value, int64_t min) override;
    std::string Shown(int64_t value) override;
    bool Parse(std::string_view text, int64_t& value) const override;
};

class FloatBase : public NumberBase<double, IFloat, double_autovector_t>
{
public:
    using NumberBase::NumberBase;
    using NumberBase::operator=;

    bool HasInc() override;
    GENICAM_NAMESPACE::gcstring GetUnit() const override;
    EDisplayNotation GetDisplayNotation() const override;
    int64_t GetDisplayPrecision() const override;

    int64_t ReadInteger(ReadOptions options) override { return Rounded(ReadReal(options)); }
    double ReadReal(ReadOptions options) override { return ReadNumber(options); }
    void WriteInteger(int64_t value, bool verify) override { WriteReal(static_cast<double>(value), verify); }
    void WriteReal(double value, bool verify) override { WriteNumber(value, verify); }
    int64_t IntegerMin() override { return Rounded(RealMin()); }
    int64_t IntegerMax() override { return Rounded(RealMax()); }
    int64_t IntegerInc() override;
    EDisplayNotation Notation() const override;
    int64_t Precision() const override;

protected:
    std::string Shown(double value) override;
    bool Parse(std::string_view text, double& value) const override;
    // Rounds half away from zero; throws RuntimeException outside of 64 bits.
    int64_t Rounded(double value) const;
};

} // namespace GENAPI_NAMESPACE::runtime
