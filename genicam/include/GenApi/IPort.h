// IPort: access to the registers. Implemented by the application, which owns it and keeps it alive while it is
// connected; exceptions of its operations pass through the nodes unchanged.
#pragma once

#include <GenApi/IBase.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPort : virtual public IBase
{
    // Reads `length` bytes from `address` into `buffer`.
    virtual void Read(void* buffer, int64_t address, int64_t length) = 0;
    // Writes `length` bytes from `buffer` to `address`.
    virtual void Write(const void* buffer, int64_t address, int64_t length) = 0;
};

// A reference to this interface.
template <class T>
class CPortRefT : public CBaseRefT<T, IPort>
{
public:
    void Read(void* buffer, int64_t address, int64_t length) override { this->Target().Read(buffer, address, length); }
    void Write(const void* buffer, int64_t address, int64_t length) override
    {
        this->Target().Write(buffer, address, length);
    }
};

typedef CPortRefT<IPort> CPortRef;

} // namespace GENAPI_NAMESPACE
