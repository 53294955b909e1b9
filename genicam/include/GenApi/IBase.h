// IBase: the root of all interfaces. Objects belong to their node map, ports to the application.
#pragma once

#include <Base/GCLinkage.h>
#include <GenApi/Reference.h>
#include <GenApi/Types.h>
#include <GenICamFwd.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IBase
{
    virtual EAccessMode GetAccessMode() const = 0;
    virtual ~IBase() = 0;
};

inline IBase::~IBase() {}

// A reference to this interface.
template <class T, class I>
class CBaseRefT : public CReferenceT<T, I>
{
public:
    // NI while there is no object.
    EAccessMode GetAccessMode() const override { return this->m_Ptr ? this->m_Ptr->GetAccessMode() : NI; }
};

typedef CBaseRefT<IBase, IBase> CBaseRef;

} // namespace GENAPI_NAMESPACE
