// IEnumeration: a value that is one of a list of named entries. Belongs to the node map.
#pragma once

#include <GenApi/IEnumEntry.h>
#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IEnumeration : virtual public IValue
{
    // Returns only the available entries.
    virtual void GetSymbolics(StringList_t & Symbolics) = 0;
    // All entries.
    virtual void GetEntries(NodeList_t & Entries) = 0;
    virtual IEnumeration& operator=(const GENICAM_NAMESPACE::gcstring& ValueStr) = 0;
    virtual void SetIntValue(int64_t Value, bool Verify = true) = 0;
    virtual GENICAM_NAMESPACE::gcstring operator*() = 0;
    virtual int64_t GetIntValue(bool Verify = false, bool IgnoreCache = false) = 0;
    // Null when there is no such entry; entries that are not available are found too.
    virtual IEnumEntry* GetEntryByName(const GENICAM_NAMESPACE::gcstring& Symbolic) = 0;
    virtual IEnumEntry* GetEntry(const int64_t IntValue) = 0;
    virtual IEnumEntry* GetCurrentEntry(bool Verify = false, bool IgnoreCache = false) = 0;
};

} // namespace GENAPI_NAMESPACE
