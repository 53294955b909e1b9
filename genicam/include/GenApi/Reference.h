// CReferenceT<T, I>: represents a feature that may or may not exist, as a member of a generated parameter class. It has
// the interface I and forwards each operation to the object that was assigned to it. Does not own it: nodes belong to
// their map.
//
// The templates for the individual interfaces are in their headers: CIntegerRefT in IInteger.h.
#pragma once

#include <Base/GCException.h>
#include <Base/GCString.h>
#include <GenICamFwd.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IReference
{
    // Null, or an object without the interface, means that the feature does not exist.
    virtual void SetReference(IBase * pBase) = 0;

protected:
    ~IReference() = default;
};

// Passes to a reference to an enumeration the texts that belong to the numbers of a C++ enumeration.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IEnumReference
{
    virtual void SetEnumReference(int Index, GENICAM_NAMESPACE::gcstring Name) = 0;
    virtual void SetNumEnums(int NumEnums) = 0;

protected:
    ~IEnumReference() = default;
};

template <class T, class I>
class CReferenceT : public I, public IReference
{
public:
    CReferenceT() : m_Ptr(nullptr) {}

    void SetReference(IBase* pBase) override { m_Ptr = dynamic_cast<T*>(pBase); }
    bool IsValid() const { return m_Ptr != nullptr; }

protected:
    // Throws AccessException without an object.
    T& Target() const
    {
        if (!m_Ptr) throw ACCESS_EXCEPTION("Feature not present (reference not valid)");
        return *m_Ptr;
    }

    T* m_Ptr;
};

} // namespace GENAPI_NAMESPACE
