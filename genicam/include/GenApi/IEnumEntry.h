// IEnumEntry: one choice of an enumeration. Belongs to the node map.
#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IEnumEntry : virtual public IValue
{
    virtual int64_t GetValue() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetSymbolic() const = 0;
    virtual double GetNumericValue() = 0;
    // The device leaves this choice by itself.
    virtual bool IsSelfClearing() = 0;
};

} // namespace GENAPI_NAMESPACE
