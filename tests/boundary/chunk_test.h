// ChunkTest: a described camera whose stream runs, and buffers of the test's memory that come back with chunks.
#pragma once

#include "tests/boundary/described_camera.h"
#include "tests/boundary/producer_errors.h"
#include "tests/support/chunk_buffers.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace koro::test
{

// A port for the chunk of this id, and an integer over its first bytes.
inline std::string ChunkFeature(const std::string& name, const std::string& id, std::size_t length = 4)
{
    return "<Port Name=\"" + name + "Port\"><ChunkID>" + id + "</ChunkID></Port><IntReg Name=\"" + name +
           "\"><Address>0</Address><Length>" + std::to_string(length) + "</Length><AccessMode>RW</AccessMode><pPort>" +
           name + "Port</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
}

class ChunkTest : public DescribedCamera
{
protected:
    // An id that stands in a register of the camera: it is read each time that a buffer is attached, and not when a
    // buffer of the same layout takes the short road.
    static constexpr std::uint64_t attachRegister = 32;
    static inline const std::string idHex = "000102030405060708090a0b0c0d0e0f";
    static inline const std::string idBytes{"\0\1\2\3\4\5\6\7\10\11\12\13\14\15\16\17", 16};
    static inline const std::string chunkFeatures =
        ChunkFeature("Counter", "a1") + ChunkFeature("Gain", "000000B2") + ChunkFeature("Wide", idHex) +
        "<Port Name=\"Watched\"><pChunkID>WatchedID</pChunkID></Port>" + "<StringReg Name=\"WatchedID\"><Address>" +
        std::to_string(attachRegister) +
        "</Address><Length>4</Length><AccessMode>RO</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>"
        "</StringReg>";

    ChunkTest() { Open(chunkFeatures); }

    void Open(const std::string& nodes)
    {
        map = Describe(nodes);
        OpenStream();
    }
    void OpenStream()
    {
        tree.streamDescriptor =
            Get<KORO_DataStreamDescriptorHandle>(KORO_Device_GetDataStream, tree.device, std::size_t{0});
        tree.stream = Get<KORO_DataStreamHandle>(KORO_DataStreamDescriptor_OpenDataStream, tree.streamDescriptor);
        Require(KORO_DataStream_StartAcquisitionInfinite(tree.stream, KORO_ACQ_START_FLAGS_DEFAULT));
    }

    static std::string Chunks(std::uint32_t counter, std::uint32_t gain)
    {
        return GEVChunk(1, "image") + GEVChunk(0xa1, LittleEndian(counter, 4)) + GEVChunk(0xb2, LittleEndian(gain, 4));
    }

    static scripted::Frame FrameOf(
        const std::string& bytes, const std::string& tlType = "GEV", std::uint64_t layoutID = 1)
    {
        scripted::Frame frame;
        frame.bytes = bytes;
        frame.info = {
            {GenTL::BUFFER_INFO_TLTYPE, scripted::Text(tlType)},
            {GenTL::BUFFER_INFO_CHUNKLAYOUTID, scripted::UInt64(layoutID)},
            {GenTL::BUFFER_INFO_CONTAINS_CHUNKDATA, scripted::Bool8(true)}};
        return frame;
    }

    // In a heap block of exactly its size, so that a checker sees what lies behind it.
    KORO_BufferHandle Announce(std::size_t size)
    {
        memory.emplace_back(new char[std::max<std::size_t>(size, 1)]);
        KORO_BufferHandle buffer = nullptr;
        Require(
            KORO_DataStream_AnnounceBuffer(tree.stream, memory.back().get(), size, nullptr, nullptr, nullptr, &buffer));
        return buffer;
    }
    void Fill(KORO_BufferHandle buffer, const scripted::Frame& frame) const
    {
        Require(KORO_DataStream_QueueBuffer(tree.stream, buffer));
        if (!producer->Deliver("if0-dev0-stream0", frame)) throw std::runtime_error("nothing was delivered");
        const auto finished =
            Get<KORO_BufferHandle>(KORO_DataStream_WaitForFinishedBuffer, tree.stream, std::uint64_t{0});
        if (finished != buffer) throw std::runtime_error("another buffer was delivered");
    }
    // A new buffer of the frame's size.
    KORO_BufferHandle Deliver(const scripted::Frame& frame)
    {
        const auto buffer = Announce(frame.bytes.size());
        Fill(buffer, frame);
        return buffer;
    }
    KORO_BufferHandle Deliver(const std::string& chunks) { return Deliver(FrameOf(chunks)); }
    void Revoke(KORO_BufferHandle buffer) const { Require(KORO_DataStream_RevokeBuffer(tree.stream, buffer)); }

    Error Update(KORO_BufferHandle buffer) const { return Outcome(KORO_NodeMap_UpdateChunkNodes(map, buffer)); }
    bool IsSupported(KORO_BufferHandle buffer) const
    {
        return Get<KORO_Bool8>(KORO_NodeMap_GetHasBufferSupportedChunks, map, buffer) != 0;
    }
    Error OutcomeOfSupport(KORO_BufferHandle buffer) const
    {
        KORO_Bool8 ignored = 0;
        return Outcome(KORO_NodeMap_GetHasBufferSupportedChunks(map, buffer, &ignored));
    }

    // Empty when the node cannot be read.
    std::optional<std::int64_t> Value(const std::string& name) const
    {
        const auto node = Find(map, name);
        const auto status = Get<KORO_NodeAccessStatus>(KORO_Node_GetAccessStatus, node);
        if (status != KORO_NODE_ACCESS_STATUS_READ_ONLY && status != KORO_NODE_ACCESS_STATUS_READ_WRITE) return {};
        const auto integer = Get<KORO_IntegerNodeHandle>(KORO_Node_ToIntegerNode, node);
        return Get<std::int64_t>(
            KORO_IntegerNode_GetValue, integer, static_cast<std::int32_t>(KORO_NODE_CACHE_POLICY_USE_CACHE));
    }

    // How often a buffer was attached since the journal was cleared; making the adapter counts, too.
    std::size_t Attaches() const
    {
        const auto reads = Reads();
        return static_cast<std::size_t>(std::count_if(reads.begin(), reads.end(), [](const std::string& line) {
            return line == "GCReadPort(if0-dev0-remote, " + std::to_string(attachRegister) + ", 4)";
        }));
    }

    static Error BrokenAt(std::size_t position, const std::string& reason)
    {
        return {
            KORO_RETURN_CODE_ERROR,
            "The chunk layout of the buffer is broken at " + std::to_string(position) + ": " + reason};
    }

    KORO_NodeMapHandle map = nullptr;
    std::vector<std::unique_ptr<char[]>> memory; // ends before the library, which has stopped using it: see the stream
};

} // namespace koro::test
