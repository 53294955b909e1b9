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
    // Bytes that the node takes; for a node that is only readable the length of the present text.
    virtual int64_t GetMaxLength(bool Verify = false) = 0;
};

} // namespace GENAPI_NAMESPACE
