// The register elements: IntReg, MaskedIntReg and struct entries, FloatReg, StringReg, Register, AdvFeatureLock and
// SmartFeature.
#pragma once

#include "nodes/number_base.h"
#include "nodes/register_part.h"
#include "nodes/string_nodes.h"

namespace GENAPI_NAMESPACE::runtime
{

// A field of the register, or all of it.
class IntegerRegister : public RegisterOf<IntegerBase>
{
public:
    using RegisterOf<IntegerBase>::RegisterOf;
    void Resolve() override;
    // Other nodes also see the imposed limits.
    int64_t IntegerMin() override { return std::max(MinOfWrites(), imposedMin); }
    int64_t IntegerMax() override { return std::min(MaxOfWrites(), imposedMax); }

protected:
    int64_t MinOfWrites() override;
    int64_t MaxOfWrites() override;
    int64_t Read(ReadOptions options) override;
    void Write(int64_t value, bool verify) override;
    int64_t CheckedLength() override;

private:
    struct Field
    {
        unsigned shift;
        unsigned width; // bits
    };

    unsigned LengthOfWord() { return static_cast<unsigned>(CheckedLength()); }
    Field FieldIn(unsigned length) const;
    Field LimitField();
    uint64_t ReadWord(unsigned length, ReadOptions options);

    bool masked = false;
    bool isSigned = false;
    bool big = false;
    int64_t lsb = 0;
    int64_t msb = 0;
};

class FloatRegister : public RegisterOf<FloatBase>
{
public:
    using RegisterOf<FloatBase>::RegisterOf;
    double RealMin() override { return std::max(MinOfWrites(), imposedMin); }
    double RealMax() override { return std::min(MaxOfWrites(), imposedMax); }

protected:
    double MinOfWrites() override { return -MaxOfWrites(); }
    double MaxOfWrites() override;
    double Read(ReadOptions options) override;
    void Write(double value, bool verify) override;
    ECachingMode NaturalCaching() const override { return place.Caching(WriteAround); }
    int64_t CheckedLength() override;
};

class StringRegister : public RegisterOf<StringBase>
{
public:
    using RegisterOf<StringBase>::RegisterOf;

protected:
    GENICAM_NAMESPACE::gcstring Read(ReadOptions options) override;
    void Write(const GENICAM_NAMESPACE::gcstring& value, bool verify) override;
    int64_t Capacity() override { return place.Length(); }

private:
    int64_t LengthOfText();
};

class RegisterNode : public RegisterOf<ValueNode>
{
public:
    using RegisterOf<ValueNode>::RegisterOf;

protected:
    GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) override;
    void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) override;
};

// The entries of a configuration ROM. No supported bus has one: the nodes exist and cannot be read.
class RomText : public StringBase
{
public:
    using StringBase::StringBase;

protected:
    int64_t Capacity() override { return 0; }
    GENICAM_NAMESPACE::gcstring Read(ReadOptions options) override;
    void Write(const GENICAM_NAMESPACE::gcstring& value, bool verify) override;
    EAccessMode KindMode() const override { return RO; }
};

class RomNumber : public IntegerBase
{
public:
    using IntegerBase::IntegerBase;

protected:
    int64_t Read(ReadOptions options) override;
    void Write(int64_t value, bool verify) override;
    EAccessMode KindMode() const override { return RO; }
};

// Both are read-only integers: AdvFeatureLock returns 1, SmartFeature the address at its end.
class FeatureLockNode : public RegisterOf<IntegerBase>
{
public:
    using RegisterOf<IntegerBase>::RegisterOf;

    int64_t IntegerMin() override { return 0; }

protected:
    int64_t Read(ReadOptions options) override;
    void Write(int64_t value, bool verify) override;
    EAccessMode LinkedMode() const override { return place.LinkedMode() == WO ? RO : place.LinkedMode(); }
    EAccessMode KindMode() const override { return RO; }
};

} // namespace GENAPI_NAMESPACE::runtime
