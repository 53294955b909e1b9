// IPortRecorder: a port that records its writes and replays them. Implemented by the application.
#pragma once

#include <GenApi/IPort.h>

namespace GENAPI_NAMESPACE
{

// A list of writes.
GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPortWriteList
{
    virtual void Write(const void* pBuffer, int64_t Address, int64_t Length) = 0;
    virtual void Replay(IPort * pPort) = 0;
    virtual void SetCookie(const int64_t Value) = 0;
    virtual int64_t GetCookie() = 0;

protected:
    ~IPortWriteList() = default;
};

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPortReplay : virtual public IPort
{
    virtual void Replay(IPortWriteList * pPortRecorder, bool Invalidate = true) = 0;
};

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IPortRecorder : public IPortReplay
{
    virtual void StartRecording(IPortWriteList * pPortRecorder) = 0;
    virtual void StopRecording() = 0;
};

} // namespace GENAPI_NAMESPACE
