// IPortStacked: a port that takes several writes at once. Implemented by the application.
#pragma once

#include <GenApi/IPort.h>

namespace GENAPI_NAMESPACE
{

struct PORT_REGISTER_STACK_ENTRY
{
    uint64_t Address;
    void* pBuffer;
    size_t Size;
};

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPortStacked : virtual public IPort
{
    using IPort::Write;
    virtual void Write(PORT_REGISTER_STACK_ENTRY * pEntries, size_t numEntries) = 0;
};

// Connects a port node to a stacked port.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPortStackedConstruct
{
    virtual void SetPortImpl(IPortStacked * pPort) = 0;
    virtual EYesNo GetSwapEndianess() = 0;

protected:
    ~IPortStackedConstruct() = default;
};

} // namespace GENAPI_NAMESPACE
