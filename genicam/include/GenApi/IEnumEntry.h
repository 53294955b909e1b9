// IEnumEntry: one entry of an enumeration. Belongs to the node map.
#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IEnumEntry : virtual public IValue
{
    virtual int64_t GetValue() = 0;
    virtual GENICAM_NAMESPACE::gcstring GetSymbolic() const = 0;
    virtual double GetNumericValue() = 0;
    // Whether the device resets the enumeration by itself after this entry was selected.
    virtual bool IsSelfClearing() = 0;
};

// A reference to this interface.
template <class T>
class CEnumEntryRefT : public CValueRefT<T, IEnumEntry>
{
public:
    int64_t GetValue() override { return this->Target().GetValue(); }
    GENICAM_NAMESPACE::gcstring GetSymbolic() const override { return this->Target().GetSymbolic(); }
    double GetNumericValue() override { return this->Target().GetNumericValue(); }
    bool IsSelfClearing() override { return this->Target().IsSelfClearing(); }
};

typedef CEnumEntryRefT<IEnumEntry> CEnumEntryRef;

} // namespace GENAPI_NAMESPACE
