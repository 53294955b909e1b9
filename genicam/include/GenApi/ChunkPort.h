// CChunkPort: the data of one chunk as the registers of a chunk port. Address 0 is the first byte of the data.
//
// Created and owned by a chunk adapter, which calls it while it holds the lock of the node map; other users must take
// that lock themselves. The attached memory is not owned: it must stay valid until the next attach or detach. The port
// may outlive the node map.
#pragma once

#include <GenApi/IPortConstruct.h>
#include <memory>

namespace GENAPI_NAMESPACE
{

namespace runtime
{
class ChunkPorts;
}

class GENAPI_DECL CChunkPort : public IPortConstruct
{
public:
    explicit CChunkPort(IPort* pPort = NULL);
    ~CChunkPort() override;
    CChunkPort(const CChunkPort&) = delete;
    CChunkPort& operator=(const CChunkPort&) = delete;

    // Becomes the object behind a port node. False, and nothing done, for a port without a chunk id.
    bool AttachPort(IPort* pPort);
    // Leaves the port node, which is not available from then on.
    void DetachPort();

    // The data from `ChunkOffset` on, `Length` bytes. A copy is kept when both `Cache` and the port ask for one.
    // InvalidateNode makes the nodes see it.
    void AttachChunk(uint8_t* pBaseAddress, int64_t ChunkOffset, int64_t Length, bool Cache);
    void DetachChunk();
    // Moves an attached chunk to another base address, with its offset and its length.
    void UpdateBuffer(uint8_t* pBaseAddress);
    // Drops the copy: the data is read from the buffer again.
    void ClearCache();
    void InvalidateNode();

    // Bytes of the id as the description writes it.
    int GetChunkIDLength();
    // Ids are numbers: leading zeros do not count. The bytes are in the order in which the digits are written.
    bool CheckChunkID(uint8_t* pChunkIDBuffer, int ChunkIDLength);
    bool CheckChunkID(uint64_t ChunkID);

    // NA without a chunk, RW with one.
    EAccessMode GetAccessMode() const override;
    // RuntimeException outside of the data. 8 bytes at 2^63-1 are the address of the data in memory, 8 bytes at 2^63-16
    // its length.
    void Read(void* pBuffer, int64_t Address, int64_t Length) override;
    void Write(const void* pBuffer, int64_t Address, int64_t Length) override;
    // As AttachPort, after leaving the port node of before; null just leaves it.
    void SetPortImpl(IPort* pPort) override;
    EYesNo GetSwapEndianess() override;

private:
    friend class runtime::ChunkPorts;
    struct Data;

    std::unique_ptr<Data> data;
};

} // namespace GENAPI_NAMESPACE
