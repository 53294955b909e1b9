// CPortImpl: a base for port classes of the application, which override the functions that they implement. The
// functions of the base forward to the port that was passed to SetPortImpl, and report "not implemented" without one.
// Does not own that port.
#pragma once

#include <Base/GCException.h>
#include <GenApi/IPortConstruct.h>
#include <GenApi/IPortRecorder.h>

namespace GENAPI_NAMESPACE
{

class CPortImpl : public IPortConstruct, public IPortReplay
{
public:
    CPortImpl() : m_pPort(nullptr) {}

    EAccessMode GetAccessMode() const override { return m_pPort ? m_pPort->GetAccessMode() : NI; }
    void Read(void* buffer, int64_t address, int64_t length) override { Port().Read(buffer, address, length); }
    void Write(const void* buffer, int64_t address, int64_t length) override { Port().Write(buffer, address, length); }
    void SetPortImpl(IPort* pPort) override { m_pPort = pPort; }
    EYesNo GetSwapEndianess() override { return No; }
    // This port has no nodes to invalidate.
    void Replay(IPortWriteList* pPortRecorder, bool Invalidate = true) override
    {
        static_cast<void>(Invalidate);
        if (!pPortRecorder) throw INVALID_ARGUMENT_EXCEPTION("The list of writes must not be NULL");
        pPortRecorder->Replay(this);
    }

protected:
    IPort* m_pPort;

private:
    IPort& Port() const
    {
        if (!m_pPort) throw ACCESS_EXCEPTION("The port is not connected");
        return *m_pPort;
    }
};

} // namespace GENAPI_NAMESPACE
