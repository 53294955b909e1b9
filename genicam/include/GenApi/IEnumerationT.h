// IEnumerationT<EnumT>: an enumeration whose entries are the enumerators of a C++ enumeration. CEnumerationTRef<EnumT>:
// the reference that provides it for any enumeration node. For generated parameter classes.
#pragma once

#include <GenApi/IEnumeration.h>
#include <GenApi/Reference.h>
#include <vector>

namespace GENAPI_NAMESPACE
{

template <class EnumT>
GENICAM_INTERFACE IEnumerationT : virtual public IEnumeration
{
    virtual void SetValue(EnumT Value, bool Verify = true) = 0;
    virtual IEnumeration& operator=(EnumT Value) = 0;
    virtual EnumT GetValue(bool Verify = false, bool IgnoreCache = false) = 0;
    virtual EnumT operator()() = 0;
    virtual IEnumEntry* GetEntry(const EnumT Value) = 0;
    using IEnumeration::operator=;
    using IEnumeration::GetEntry;
};

// Enumerators and entries are matched by their texts, regardless of the number of an entry in the device.
template <class EnumT>
class CEnumerationTRef : public CValueRefT<IEnumeration, IEnumerationT<EnumT>>, public IEnumReference
{
public:
    // IEnumReference
    void SetEnumReference(int Index, GENICAM_NAMESPACE::gcstring Name) override
    {
        if (Index < 0 || static_cast<size_t>(Index) >= names.size())
        {
            throw OUT_OF_RANGE_EXCEPTION("The enumerator %d is out of range", Index);
        }
        names[static_cast<size_t>(Index)] = Name;
    }
    void SetNumEnums(int NumEnums) override { names.resize(NumEnums < 0 ? 0 : static_cast<size_t>(NumEnums)); }

    // IEnumerationT
    void SetValue(EnumT Value, bool Verify = true) override { this->FromString(NameOf(Value), Verify); }
    IEnumeration& operator=(EnumT Value) override
    {
        SetValue(Value);
        return *this;
    }
    // Throws RuntimeException when the entry has no enumerator.
    EnumT GetValue(bool Verify = false, bool IgnoreCache = false) override
    {
        const GENICAM_NAMESPACE::gcstring name = this->ToString(Verify, IgnoreCache);
        for (size_t i = 0; i < names.size(); ++i)
        {
            if (names[i] == name) return static_cast<EnumT>(i);
        }
        throw RUNTIME_EXCEPTION("The entry '%s' has no enumerator", name.c_str());
    }
    EnumT operator()() override { return GetValue(); }
    IEnumEntry* GetEntry(const EnumT Value) override { return this->Target().GetEntryByName(NameOf(Value)); }

    // IEnumeration
    void GetSymbolics(StringList_t& Symbolics) override { this->Target().GetSymbolics(Symbolics); }
    void GetEntries(NodeList_t& Entries) override { this->Target().GetEntries(Entries); }
    IEnumeration& operator=(const GENICAM_NAMESPACE::gcstring& ValueStr) override
    {
        this->Target() = ValueStr;
        return *this;
    }
    void SetIntValue(int64_t Value, bool Verify = true) override { this->Target().SetIntValue(Value, Verify); }
    GENICAM_NAMESPACE::gcstring operator*() override { return *this->Target(); }
    int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) override
    {
        return this->Target().GetIntValue(Verify, IgnoreCache);
    }
    IEnumEntry* GetEntryByName(const GENICAM_NAMESPACE::gcstring& Symbolic) override
    {
        return this->Target().GetEntryByName(Symbolic);
    }
    IEnumEntry* GetEntry(const int64_t IntValue) override { return this->Target().GetEntry(IntValue); }
    IEnumEntry* GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) override
    {
        return this->Target().GetCurrentEntry(Verify, IgnoreCache);
    }

private:
    const GENICAM_NAMESPACE::gcstring& NameOf(EnumT value) const
    {
        const size_t index = static_cast<size_t>(value);
        if (index >= names.size()) throw OUT_OF_RANGE_EXCEPTION("The enumerator has no entry");
        return names[index];
    }

    std::vector<GENICAM_NAMESPACE::gcstring> names; // by enumerator
};

} // namespace GENAPI_NAMESPACE
