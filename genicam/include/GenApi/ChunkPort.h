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

    // Connects this object to a port node. Returns false and does nothing for a port without a chunk id.
    bool AttachPort(IPort* pPort);
    // Disconnects from the port node, which is then not available.
    void DetachPort();

    // Attaches `Length` bytes from `ChunkOffset` on. A copy is kept when both `Cache` and the port request one. Call
    // InvalidateNode so that the nodes read the new data.
    void AttachChunk(uint8_t* pBaseAddress, int64_t ChunkOffset, int64_t Length, bool Cache);
    void DetachChunk();
    // Moves an attached chunk to another base address; its offset and length stay.
    void UpdateBuffer(uint8_t* pBaseAddress);
    // Discards the copy: the data is read from the buffer again.
    void ClearCache();
    void InvalidateNode();

    // Number of bytes of the id as the description writes it.
    int GetChunkIDLength();
    // Ids are numbers: leading zeros are ignored. The bytes are in the order in which the digits are written.
    bool CheckChunkID(uint8_t* pChunkIDBuffer, int ChunkIDLength);
    bool CheckChunkID(uint64_t ChunkID);

    // NA without a chunk, RW with one.
    EAccessMode GetAccessMode() const override;
    // Throws RuntimeException outside of the data. 8 bytes at 2^63-1 are the address of the data in memory, 8 bytes at
    // 2^63-16 its length.
    void Read(void* pBuffer, int64_t Address, int64_t Length) override;
    void Write(const void* pBuffer, int64_t Address, int64_t Length) override;
    // Works like AttachPort, after disconnecting from the previous port node; null only disconnects.
    void SetPortImpl(IPort* pPort) override;
    EYesNo GetSwapEndianess() override;

private:
    friend class runtime::ChunkPorts;
    struct Data;

    std::unique_ptr<Data> data;
};

} // namespace GENAPI_NAMESPACE
