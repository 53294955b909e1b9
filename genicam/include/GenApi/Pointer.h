// CPointer<T>: a pointer to one interface of a node, found by a dynamic cast. Does not own: the node belongs to its
// map.
#pragma once

#include <Base/GCException.h>
#include <GenApi/IBoolean.h>
#include <GenApi/ICategory.h>
#include <GenApi/IChunkPort.h>
#include <GenApi/ICommand.h>
#include <GenApi/IDeviceInfo.h>
#include <GenApi/IEnumEntry.h>
#include <GenApi/IEnumeration.h>
#include <GenApi/IFloat.h>
#include <GenApi/IInteger.h>
#include <GenApi/INode.h>
#include <GenApi/INodeMap.h>
#include <GenApi/IPort.h>
#include <GenApi/IPortConstruct.h>
#include <GenApi/IPortRecorder.h>
#include <GenApi/IPortStacked.h>
#include <GenApi/IRegister.h>
#include <GenApi/ISelector.h>
#include <GenApi/IString.h>
#include <GenApi/IUserData.h>

namespace GENAPI_NAMESPACE
{

template <class T, class B = IBase>
class CPointer
{
public:
    CPointer() : m_pT(nullptr) {}
    // Null when the object does not have the interface.
    CPointer(B* object) : m_pT(dynamic_cast<T*>(object)) {}
    virtual ~CPointer() {}
    CPointer(const CPointer&) = default;
    CPointer& operator=(const CPointer&) = default;
    CPointer& operator=(B* object)
    {
        m_pT = dynamic_cast<T*>(object);
        return *this;
    }

    operator T*() const { return Checked(); }
    T& operator*() const { return *Checked(); }
    T& operator()() const { return *Checked(); }
    T* operator->() const { return Checked(); }
    bool IsValid() const noexcept { return m_pT != nullptr; }
    operator bool() const noexcept { return m_pT != nullptr; }
    bool operator==(T* other) const { return m_pT == other; }
    bool operator==(const CPointer& other) const { return m_pT == other.m_pT; }
    // Compares only with NULL.
    bool operator==(int mustBeNull) const
    {
        if (mustBeNull != 0) throw LOGICAL_ERROR_EXCEPTION("A pointer can be compared with the number 0 only");
        return m_pT == nullptr;
    }

protected:
    T* m_pT;

private:
    T* Checked() const
    {
        if (!m_pT) throw LOGICAL_ERROR_EXCEPTION("NULL pointer dereferenced");
        return m_pT;
    }
};

typedef CPointer<IBase> CBasePtr;
typedef CPointer<INode> CNodePtr;
typedef CPointer<IValue> CValuePtr;
typedef CPointer<ICategory> CCategoryPtr;
typedef CPointer<IBoolean> CBooleanPtr;
typedef CPointer<IInteger> CIntegerPtr;
typedef CPointer<IString> CStringPtr;
typedef CPointer<IRegister> CRegisterPtr;
typedef CPointer<IEnumeration> CEnumerationPtr;
typedef CPointer<IEnumEntry> CEnumEntryPtr;
typedef CPointer<IPort> CPortPtr;
typedef CPointer<IPortReplay> CPortReplayPtr;
typedef CPointer<IPortRecorder> CPortRecorderPtr;
typedef CPointer<IChunkPort> CChunkPortPtr;
typedef CPointer<ISelector> CSelectorPtr;
typedef CPointer<ICommand> CCommandPtr;
typedef CPointer<IPortConstruct> CPortConstructPtr;
typedef CPointer<IPortStackedConstruct> CPortStackedConstructPtr;
typedef CPointer<IUserData> CNodeUserDataPtr;
typedef CPointer<IPortWriteList, IPortWriteList> CPortWriteListPtr;
typedef CPointer<INodeMap, INodeMap> CNodeMapPtr;
typedef CPointer<IDeviceInfo, INodeMap> CDeviceInfoPtr;
typedef CPointer<IUserData, INodeMap> CNodeMapUserDataPtr;

// CFloatPtr: a pointer to the float interface that also knows the node's cast alias.
class CFloatPtr : public CPointer<IFloat, IBase>
{
public:
    CFloatPtr() {}
    CFloatPtr(IBase* object) : CPointer<IFloat, IBase>(object) {}
    CFloatPtr& operator=(IBase* object)
    {
        CPointer<IFloat, IBase>::operator=(object);
        return *this;
    }

    // Null when the node has no cast alias with that interface.
    IInteger* GetIntAlias() { return dynamic_cast<IInteger*>(CastAlias()); }
    IEnumeration* GetEnumAlias() { return dynamic_cast<IEnumeration*>(CastAlias()); }

private:
    INode* CastAlias() const
    {
        INode* const node = dynamic_cast<INode*>(m_pT);
        return node ? node->GetCastAlias() : nullptr;
    }
};

template <class T, class B>
inline bool IsReadable(const CPointer<T, B>& pointer)
{
    return pointer.IsValid() && IsReadable(pointer->GetAccessMode());
}

template <class T, class B>
inline bool IsWritable(const CPointer<T, B>& pointer)
{
    return pointer.IsValid() && IsWritable(pointer->GetAccessMode());
}

template <class T, class B>
inline bool IsImplemented(const CPointer<T, B>& pointer)
{
    return pointer.IsValid() && IsImplemented(pointer->GetAccessMode());
}

template <class T, class B>
inline bool IsAvailable(const CPointer<T, B>& pointer)
{
    return pointer.IsValid() && IsAvailable(pointer->GetAccessMode());
}

// The name of the principal interface, for example "IInteger".
GENAPI_DECL GENICAM_NAMESPACE::gcstring GetInterfaceName(IBase* object);

} // namespace GENAPI_NAMESPACE
