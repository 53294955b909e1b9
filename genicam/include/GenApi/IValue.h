// IValue: the value of a node as a text. Belongs to the node map; every operation takes the lock of the map.
#pragma once

#include <GenApi/INode.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IValue : virtual public IBase
{
    virtual INode* GetNode()
    {
        return dynamic_cast<INode*>(this);
    }
    // Verify checks limits and error nodes; IgnoreCache always reads from the port.
    virtual GENICAM_NAMESPACE::gcstring ToString(bool Verify = false, bool IgnoreCache = false) = 0;
    // Without Verify locks and availability are not checked either: a text from a file is written unchanged.
    virtual void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify = true) = 0;
    virtual bool IsValueCacheValid() const = 0;
};

// A reference to this interface.
template <class T, class I>
class CValueRefT : public CBaseRefT<T, I>
{
public:
    INode* GetNode() override { return this->Target().GetNode(); }
    GENICAM_NAMESPACE::gcstring ToString(bool Verify = false, bool IgnoreCache = false) override
    {
        return this->Target().ToString(Verify, IgnoreCache);
    }
    void FromString(const GENICAM_NAMESPACE::gcstring& ValueStr, bool Verify = true) override
    {
        this->Target().FromString(ValueStr, Verify);
    }
    bool IsValueCacheValid() const override { return this->Target().IsValueCacheValid(); }
};

typedef CValueRefT<IValue, IValue> CValueRef;

} // namespace GENAPI_NAMESPACE
