// INode: what all nodes of a map have in common: names, access, caching, links and callbacks. Belongs to the node map.
#pragma once

#include <Base/GCString.h>
#include <GenApi/IBase.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT INode : virtual public IBase
{
    virtual GENICAM_NAMESPACE::gcstring GetName(bool FullQualified = false) const = 0;
    virtual ENameSpace GetNameSpace() const = 0;
    virtual EVisibility GetVisibility() const = 0;
    // Discards the caches of the node and of all its dependents, and calls their callbacks.
    virtual void InvalidateNode() = 0;
    virtual bool IsCachable() const = 0;
    virtual EYesNo IsAccessModeCacheable() const = 0;
    virtual ECachingMode GetCachingMode() const = 0;
    // Milliseconds; -1: not polled.
    virtual int64_t GetPollingTime() const = 0;
    virtual GENICAM_NAMESPACE::gcstring GetToolTip() const = 0;
    virtual GENICAM_NAMESPACE::gcstring GetDescription() const = 0;
    virtual GENICAM_NAMESPACE::gcstring GetDisplayName() const = 0;
    virtual GENICAM_NAMESPACE::gcstring GetDeviceName() const = 0;
    virtual void GetChildren(NodeList_t & Children, ELinkType LinkType = ctReadingChildren) const = 0;
    virtual void GetParents(NodeList_t & Parents) const = 0;
    // Takes ownership of the callback, which is destroyed when it is deregistered or with the node.
    virtual CallbackHandleType RegisterCallback(CNodeCallback * pCallback) = 0;
    virtual bool DeregisterCallback(CallbackHandleType hCallback) = 0;
    virtual INodeMap* GetNodeMap() const = 0;
    virtual GENICAM_NAMESPACE::gcstring GetEventID() const = 0;
    virtual bool IsStreamable() const = 0;
    virtual void GetPropertyNames(GENICAM_NAMESPACE::gcstring_vector & PropertyNames) const = 0;
    virtual bool GetProperty(
        const GENICAM_NAMESPACE::gcstring& PropertyName, GENICAM_NAMESPACE::gcstring& ValueStr,
        GENICAM_NAMESPACE::gcstring& AttributeStr) = 0;
    virtual void ImposeAccessMode(EAccessMode ImposedAccessMode) = 0;
    virtual void ImposeVisibility(EVisibility ImposedVisibility) = 0;
    virtual INode* GetAlias() const = 0;
    virtual INode* GetCastAlias() const = 0;
    virtual GENICAM_NAMESPACE::gcstring GetDocuURL() const = 0;
    virtual bool IsDeprecated() const = 0;
    virtual EInterfaceType GetPrincipalInterfaceType() const = 0;
    // Whether the node can be reached from the category "Root".
    virtual bool IsFeature() const = 0;
};

inline bool IsReadable(EAccessMode mode)
{
    return mode == RO || mode == RW;
}

inline bool IsWritable(EAccessMode mode)
{
    return mode == WO || mode == RW;
}

inline bool IsImplemented(EAccessMode mode)
{
    return mode != NI;
}

inline bool IsAvailable(EAccessMode mode)
{
    return mode != NI && mode != NA;
}

inline bool IsReadable(const IBase* p)
{
    return p && IsReadable(p->GetAccessMode());
}

inline bool IsWritable(const IBase* p)
{
    return p && IsWritable(p->GetAccessMode());
}

inline bool IsImplemented(const IBase* p)
{
    return p && IsImplemented(p->GetAccessMode());
}

inline bool IsAvailable(const IBase* p)
{
    return p && IsAvailable(p->GetAccessMode());
}

inline bool IsReadable(const IBase& r)
{
    return IsReadable(r.GetAccessMode());
}

inline bool IsWritable(const IBase& r)
{
    return IsWritable(r.GetAccessMode());
}

inline bool IsImplemented(const IBase& r)
{
    return IsImplemented(r.GetAccessMode());
}

inline bool IsAvailable(const IBase& r)
{
    return IsAvailable(r.GetAccessMode());
}

// The access mode that results from two modes that both apply.
inline EAccessMode Combine(EAccessMode a, EAccessMode b)
{
    if (a == NI || b == NI) return NI;
    if (a == NA || b == NA) return NA;
    if ((a == RO && b == WO) || (a == WO && b == RO)) return NA;
    if (a == WO || b == WO) return WO;
    if (a == RO || b == RO) return RO;
    return RW;
}

// The more hidden of two visibilities.
inline EVisibility Combine(EVisibility a, EVisibility b)
{
    return a > b ? a : b;
}

inline ECachingMode Combine(ECachingMode a, ECachingMode b)
{
    if (a == NoCache || b == NoCache) return NoCache;
    if (a == WriteAround || b == WriteAround) return WriteAround;
    return WriteThrough;
}

inline bool IsVisible(EVisibility visibility, EVisibility maximum)
{
    return visibility <= maximum;
}

inline bool IsCacheable(ECachingMode mode)
{
    return mode != NoCache;
}

} // namespace GENAPI_NAMESPACE

#include <GenApi/IValue.h> // behind INode, which it needs: whoever has nodes has their values
