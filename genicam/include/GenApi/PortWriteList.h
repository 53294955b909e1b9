// CPortWriteList: records writes with copies of their bytes, to replay them into a port. A value; not thread-safe.
#pragma once

#include <Base/GCException.h>
#include <GenApi/IPortRecorder.h>
#include <vector>

namespace GENAPI_NAMESPACE
{

class CPortWriteList : public IPortWriteList
{
public:
    CPortWriteList() : cookie(0) {}
    virtual ~CPortWriteList() {}
    CPortWriteList(const CPortWriteList&) = default;
    CPortWriteList& operator=(const CPortWriteList&) = default;

    void Write(const void* pBuffer, int64_t Address, int64_t Length) override
    {
        if (Length < 0 || (!pBuffer && Length > 0)) throw INVALID_ARGUMENT_EXCEPTION("The write has no bytes");
        const uint8_t* const bytes = static_cast<const uint8_t*>(pBuffer);
        Entry entry = {Address, std::vector<uint8_t>(bytes, bytes + Length)};
        entries.push_back(entry);
    }
    // Replays in the order of the writes; the list does not change.
    void Replay(IPort* pPort) override
    {
        if (!pPort) throw INVALID_ARGUMENT_EXCEPTION("The port must not be NULL");
        for (const Entry& entry : entries)
            pPort->Write(entry.bytes.data(), entry.address, static_cast<int64_t>(entry.bytes.size()));
    }
    // A number that the application stores with the list.
    void SetCookie(const int64_t Value) override { cookie = Value; }
    int64_t GetCookie() override { return cookie; }

private:
    struct Entry
    {
        int64_t address;
        std::vector<uint8_t> bytes;
    };

    std::vector<Entry> entries;
    int64_t cookie;
};

} // namespace GENAPI_NAMESPACE
