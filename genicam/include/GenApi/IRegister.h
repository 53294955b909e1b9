// IRegister: the bytes of a register node. Belongs to the node map.
#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IRegister : virtual public IValue
{
    // Accesses the first bytes of the register, at most its length.
    virtual void Set(const uint8_t* pBuffer, int64_t Length, bool Verify = true) = 0;
    virtual void Get(uint8_t * pBuffer, int64_t Length, bool Verify = false, bool IgnoreCache = false) = 0;
    virtual int64_t GetLength(bool Verify = false) = 0;
    virtual int64_t GetAddress(bool Verify = false) = 0;
};

// A reference to this interface.
template <class T>
class CRegisterRefT : public CValueRefT<T, IRegister>
{
public:
    void Set(const uint8_t* pBuffer, int64_t Length, bool Verify = true) override
    {
        this->Target().Set(pBuffer, Length, Verify);
    }
    void Get(uint8_t* pBuffer, int64_t Length, bool Verify = false, bool IgnoreCache = false) override
    {
        this->Target().Get(pBuffer, Length, Verify, IgnoreCache);
    }
    int64_t GetLength(bool Verify = false) override { return this->Target().GetLength(Verify); }
    int64_t GetAddress(bool Verify = false) override { return this->Target().GetAddress(Verify); }
};

typedef CRegisterRefT<IRegister> CRegisterRef;

} // namespace GENAPI_NAMESPACE
