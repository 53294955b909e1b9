// StringBase: nodes with a text. StringNode: the element String.
#pragma once

#include "nodes/value_node.h"

#include <GenApi/IString.h>

namespace GENAPI_NAMESPACE::runtime
{

class StringBase : public ValueNode, public IString
{
public:
    using ValueNode::ValueNode;

    void SetValue(const GENICAM_NAMESPACE::gcstring& Value, bool Verify = true) override;
    IString& operator=(const GENICAM_NAMESPACE::gcstring& Value) override;
    GENICAM_NAMESPACE::gcstring GetValue(bool Verify = false, bool IgnoreCache = false) override;
    GENICAM_NAMESPACE::gcstring operator()() override { return GetValue(); }
    GENICAM_NAMESPACE::gcstring operator*() override { return GetValue(); }
    int64_t GetMaxLength(bool Verify = false) override;

    // For a string whose pValue is this node.
    GENICAM_NAMESPACE::gcstring ReadText(ReadOptions options);
    void WriteText(const GENICAM_NAMESPACE::gcstring& value, bool verify);
    // The maximum number of bytes that can be written; for a read-only node the length of its text.
    int64_t MaxLength();

protected:
    // The number of bytes that fit.
    virtual int64_t Capacity() = 0;
    virtual int64_t TextLength() { return static_cast<int64_t>(ReadText({}).size()); }
    virtual GENICAM_NAMESPACE::gcstring Read(ReadOptions options) = 0;
    virtual void Write(const GENICAM_NAMESPACE::gcstring& value, bool verify) = 0;

    GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) override;
    void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) override;
};

class StringNode : public StringBase
{
public:
    using StringBase::StringBase;
    void Resolve() override;

protected:
    int64_t Capacity() override;
    int64_t TextLength() override;
    GENICAM_NAMESPACE::gcstring Read(ReadOptions options) override;
    void Write(const GENICAM_NAMESPACE::gcstring& written, bool verify) override;
    EAccessMode LinkedMode() const override { return target ? target->AccessMode() : RW; }
    ECachingMode NaturalCaching() const override { return target ? target->CachingMode() : WriteThrough; }

private:
    StringBase* target = nullptr;
    GENICAM_NAMESPACE::gcstring constant;
};

} // namespace GENAPI_NAMESPACE::runtime
