// ValueNode: a node with a value as text. IntegerBase, FloatBase: nodes with a number, whatever it is made from.
//
// Kinds implement the protected operations; those are called with the lock held.
#pragma once

#include "nodes/node.h"

#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>

namespace GENAPI_NAMESPACE::runtime
{

class ValueNode : public Node, public virtual IValue
{
public:
    using Node::Node;

    GENICAM_NAMESPACE::gcstring ToString(bool Verify = false, bool IgnoreCache = false) override;
    void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify = true) override;
    bool IsValueCacheValid() const override;
    void DropCaches() override;

protected:
    // The text behind ToString; the node is known to be readable.
    virtual GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) = 0;
    // Writes the value that the text stands for; ArgumentError for a text that stands for none.
    virtual void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) = 0;

    bool valueCached = false;
};

class IntegerBase : public ValueNode, public IInteger
{
public:
    using ValueNode::ValueNode;

    void SetValue(int64_t Value, bool Verify = true) override;
    IInteger& operator=(int64_t Value) override;
    int64_t GetValue(bool Verify = false, bool IgnoreCache = false) override;
    int64_t operator()() override { return GetValue(); }
    int64_t operator*() override { return GetValue(); }
    int64_t GetMin() override;
    int64_t GetMax() override;
    EIncMode GetIncMode() override;
    int64_t GetInc() override;
    int64_autovector_t GetListOfValidValues(bool bounded = true) override;
    ERepresentation GetRepresentation() override;
    GENICAM_NAMESPACE::gcstring GetUnit() override;
    void ImposeMin(int64_t Value) override;
    void ImposeMax(int64_t Value) override;

    int64_t ReadInteger(ReadOptions options) override;
    double ReadReal(ReadOptions options) override { return static_cast<double>(ReadInteger(options)); }
    void WriteInteger(int64_t value, bool verify) override;
    void WriteReal(double value, bool verify) override;
    double RealMin() override { return static_cast<double>(IntegerMin()); }
    double RealMax() override { return static_cast<double>(IntegerMax()); }
    bool HasRealInc() override { return true; }
    double RealInc() override { return static_cast<double>(IntegerInc()); }
    ERepresentation Representation() const override;

protected:
    // The value itself, past the cache of this node.
    virtual int64_t Read(ReadOptions options) = 0;
    virtual void Write(int64_t value, bool verify) = 0;

    GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) override;
    void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) override;

private:
    void CheckRange(int64_t value);

    int64_t cachedValue = 0;
    int64_t imposedMin = GC_INT64_MIN;
    int64_t imposedMax = GC_INT64_MAX;
};

class FloatBase : public ValueNode, public IFloat
{
public:
    FloatBase(NodeMap& owner, NodeIndex number);

    void SetValue(double Value, bool Verify = true) override;
    IFloat& operator=(double Value) override;
    double GetValue(bool Verify = false, bool IgnoreCache = false) override;
    double operator()() override { return GetValue(); }
    double operator*() override { return GetValue(); }
    double GetMin() override;
    double GetMax() override;
    bool HasInc() override;
    EIncMode GetIncMode() override;
    double GetInc() override;
    double_autovector_t GetListOfValidValues(bool bounded = true) override;
    ERepresentation GetRepresentation() override;
    GENICAM_NAMESPACE::gcstring GetUnit() const override;
    EDisplayNotation GetDisplayNotation() const override;
    int64_t GetDisplayPrecision() const override;
    void ImposeMin(double Value) override;
    void ImposeMax(double Value) override;

    int64_t ReadInteger(ReadOptions options) override;
    double ReadReal(ReadOptions options) override;
    void WriteInteger(int64_t value, bool verify) override { WriteReal(static_cast<double>(value), verify); }
    void WriteReal(double value, bool verify) override;
    int64_t IntegerMin() override { return Rounded(RealMin()); }
    int64_t IntegerMax() override { return Rounded(RealMax()); }
    ERepresentation Representation() const override;
    EDisplayNotation Notation() const override;
    int64_t Precision() const override;

protected:
    virtual double Read(ReadOptions options) = 0;
    virtual void Write(double value, bool verify) = 0;

    GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) override;
    void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) override;
    // Half away from zero; RuntimeException outside of 64 bits.
    int64_t Rounded(double value) const;

private:
    void CheckRange(double value);

    double cachedValue = 0;
    double imposedMin;
    double imposedMax;
};

} // namespace GENAPI_NAMESPACE::runtime
