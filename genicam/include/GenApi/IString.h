// IString: a text. Belongs to the node map.
#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IString : virtual public IValue
{
    virtual void SetValue(const GENICAM_NAMESPACE::gcstring& Value, bool Verify = true) = 0;
    virtual IString& operator=(const GENICAM_NAMESPACE::gcstring& Value) = 0;
    virtual GENICAM_NAMESPACE::gcstring GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual GENICAM_NAMESPACE::gcstring operator()() = 0;
    virtual GENICAM_NAMESPACE::gcstring operator*() = 0;
    // The number of bytes that the node accepts; for a read-only node the length of the current text.
    virtual int64_t GetMaxLength(bool Verify = false) = 0;
};

// A reference to this interface.
template <class T>
class CStringRefT : public CValueRefT<T, IString>
{
public:
    void SetValue(const GENICAM_NAMESPACE::gcstring& Value, bool Verify = true) override
    {
        this->Target().SetValue(Value, Verify);
    }
    IString& operator=(const GENICAM_NAMESPACE::gcstring& Value) override
    {
        this->Target() = Value;
        return *this;
    }
    GENICAM_NAMESPACE::gcstring GetValue(bool Verify = false, bool IgnoreCache = false) override
    {
        return this->Target().GetValue(Verify, IgnoreCache);
    }
    GENICAM_NAMESPACE::gcstring operator()() override { return this->Target().operator()(); }
    GENICAM_NAMESPACE::gcstring operator*() override { return this->Target().operator*(); }
    int64_t GetMaxLength(bool Verify = false) override { return this->Target().GetMaxLength(Verify); }
};

typedef CStringRefT<IString> CStringRef;

} // namespace GENAPI_NAMESPACE
