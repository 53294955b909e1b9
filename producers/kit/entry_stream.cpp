// DS...: buffers, queues, acquisition.
#include "producers/kit/call.h"
#include "producers/kit/data_stream.h"

#include <algorithm>
#include <string>

namespace GenTL
{

using namespace koro::kit; // NOLINT(google-build-using-namespace): entry points are thin wrappers over it

namespace
{

struct StreamAndBuffer
{
    std::shared_ptr<DataStream> stream;
    std::shared_ptr<Buffer> buffer;
};

StreamAndBuffer FindBuffer(DS_HANDLE stream, BUFFER_HANDLE buffer)
{
    auto found = Find<DataStream>(stream);
    return {std::move(found), Find<Buffer>(buffer)};
}

// The result of one entry of a stacked query; it does not touch the last error.
template <typename Query>
GC_ERROR ResultOf(const Query& query)
{
    try
    {
        query();
        return GC_ERR_SUCCESS;
    }
    catch (const Failure& failure)
    {
        return failure.Code();
    }
}

// The entries are packed, so their members must not be pointed to.
template <typename Entry, typename Info>
void AnswerEach(Entry* entries, size_t number, const Info& info)
{
    for (size_t index = 0; index < number; ++index)
    {
        Entry entry = entries[index];
        size_t size = entry.iSize;
        INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
        entry.iResult = ResultOf([&] {
            const InfoOutput output{&type, entry.pBuffer, &size};
            output.Write(info(entry));
        });
        entry.iSize = size;
        entry.iType = type;
        entries[index] = entry;
    }
}

} // namespace

GC_ERROR
DSAnnounceBuffer(DS_HANDLE hDataStream, void* pBuffer, size_t iSize, void* pPrivate, BUFFER_HANDLE* phBuffer)
{
    return Call(__func__, [=] {
        const auto stream = Find<DataStream>(hDataStream);
        RequirePointer(pBuffer, "pBuffer");
        RequirePointer(phBuffer, "phBuffer");
        *phBuffer = stream->Announce(pBuffer, iSize, pPrivate)->Handle();
    });
}

GC_ERROR DSAllocAndAnnounceBuffer(DS_HANDLE hDataStream, size_t iSize, void* pPrivate, BUFFER_HANDLE* phBuffer)
{
    return Call(__func__, [=] {
        const auto stream = Find<DataStream>(hDataStream);
        RequirePointer(phBuffer, "phBuffer");
        *phBuffer = stream->AllocAndAnnounce(iSize, pPrivate)->Handle();
    });
}

GC_ERROR DSFlushQueue(DS_HANDLE hDataStream, ACQ_QUEUE_TYPE iOperation)
{
    return Call(__func__, [=] { Find<DataStream>(hDataStream)->Flush(iOperation); });
}

GC_ERROR DSStartAcquisition(DS_HANDLE hDataStream, ACQ_START_FLAGS iStartFlags, uint64_t iNumToAcquire)
{
    return Call(__func__, [=] { Find<DataStream>(hDataStream)->Start(iStartFlags, iNumToAcquire); });
}

GC_ERROR DSStopAcquisition(DS_HANDLE hDataStream, ACQ_STOP_FLAGS iStopFlags)
{
    return Call(__func__, [=] { Find<DataStream>(hDataStream)->Stop(iStopFlags); });
}

GC_ERROR DSGetInfo(
    DS_HANDLE hDataStream, STREAM_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return Call(__func__, [=, function = __func__] {
        const auto stream = Find<DataStream>(hDataStream);
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, [&] { return stream->Info(iInfoCmd); });
    });
}

GC_ERROR DSGetBufferID(DS_HANDLE hDataStream, uint32_t iIndex, BUFFER_HANDLE* phBuffer)
{
    return Call(__func__, [=] {
        const auto stream = Find<DataStream>(hDataStream);
        RequirePointer(phBuffer, "phBuffer");
        *phBuffer = stream->BufferAt(iIndex)->Handle();
    });
}

GC_ERROR DSRevokeBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, void** ppBuffer, void** ppPrivate)
{
    return Call(__func__, [=] {
        const auto [stream, buffer] = FindBuffer(hDataStream, hBuffer);
        stream->Revoke(*buffer);
        if (ppBuffer != nullptr) *ppBuffer = buffer->IsOurs() ? nullptr : buffer->Memory().data();
        if (ppPrivate != nullptr) *ppPrivate = buffer->UserPointer();
    });
}

GC_ERROR DSQueueBuffer(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer)
{
    return Call(__func__, [=] {
        const auto [stream, buffer] = FindBuffer(hDataStream, hBuffer);
        stream->Queue(*buffer);
    });
}

GC_ERROR DSGetBufferInfo(
    DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, BUFFER_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer,
    size_t* piSize)
{
    return Call(__func__, [=, function = __func__] {
        const auto found = FindBuffer(hDataStream, hBuffer);
        const auto info = [&] { return found.stream->BufferInfo(*found.buffer, iInfoCmd); };
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, info);
    });
}

GC_ERROR
DSGetBufferChunkData(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, SINGLE_CHUNK_DATA* pChunkData, size_t* piNumChunks)
{
    return CallSince({1, 3}, __func__, [=] {
        const auto [stream, buffer] = FindBuffer(hDataStream, hBuffer);
        RequirePointer(piNumChunks, "piNumChunks");
        const auto chunks = stream->Chunks(*buffer);
        if (pChunkData != nullptr && *piNumChunks < chunks.size())
            throw Failure(GC_ERR_BUFFER_TOO_SMALL, std::to_string(chunks.size()) + " entries are needed");
        *piNumChunks = chunks.size();
        if (pChunkData != nullptr) std::copy(chunks.begin(), chunks.end(), pChunkData);
    });
}

GC_ERROR DSGetNumBufferParts(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* piNumParts)
{
    return CallSince({1, 5}, __func__, [=] {
        const auto [stream, buffer] = FindBuffer(hDataStream, hBuffer);
        RequirePointer(piNumParts, "piNumParts");
        *piNumParts = stream->NumParts(*buffer);
    });
}

GC_ERROR DSGetBufferPartInfo(
    DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t iPartIndex, BUFFER_PART_INFO_CMD iInfoCmd,
    INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return CallSince({1, 5}, __func__, [=, function = __func__] {
        const auto found = FindBuffer(hDataStream, hBuffer);
        const auto info = [&] { return found.stream->PartInfo(*found.buffer, iPartIndex, iInfoCmd); };
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, info);
    });
}

GC_ERROR DSAnnounceCompositeBuffer(
    DS_HANDLE hDataStream, size_t iNumSegments, void** ppSegments, size_t* piSizes, void*, BUFFER_HANDLE* phBuffer)
{
    return CallSince({1, 6}, __func__, [=] {
        Find<DataStream>(hDataStream);
        RequirePointer(ppSegments, "ppSegments");
        RequirePointer(piSizes, "piSizes");
        RequirePointer(phBuffer, "phBuffer");
        if (iNumSegments == 0) throw Failure(GC_ERR_INVALID_PARAMETER, "a buffer needs at least one segment");
        throw Failure(GC_ERR_NOT_IMPLEMENTED, "composite buffers are not offered");
    });
}

GC_ERROR DSGetBufferInfoStacked(
    DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, DS_BUFFER_INFO_STACKED* pInfoStacked, size_t iNumInfos)
{
    return CallSince({1, 6}, __func__, [=] {
        const auto found = FindBuffer(hDataStream, hBuffer);
        RequirePointer(pInfoStacked, "pInfoStacked");
        if (iNumInfos == 0) throw Failure(GC_ERR_INVALID_PARAMETER, "the number of queries must not be 0");
        found.stream->RequireBuffer(*found.buffer);
        AnswerEach(pInfoStacked, iNumInfos, [&](const DS_BUFFER_INFO_STACKED& entry) {
            return found.stream->BufferInfo(*found.buffer, entry.iInfoCmd);
        });
    });
}

GC_ERROR DSGetBufferPartInfoStacked(
    DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, DS_BUFFER_PART_INFO_STACKED* pInfoStacked, size_t iNumInfos)
{
    return CallSince({1, 6}, __func__, [=] {
        const auto found = FindBuffer(hDataStream, hBuffer);
        RequirePointer(pInfoStacked, "pInfoStacked");
        if (iNumInfos == 0) throw Failure(GC_ERR_INVALID_PARAMETER, "the number of queries must not be 0");
        found.stream->NumParts(*found.buffer); // fails as a whole for a buffer without parts
        AnswerEach(pInfoStacked, iNumInfos, [&](const DS_BUFFER_PART_INFO_STACKED& entry) {
            return found.stream->PartInfo(*found.buffer, entry.iPartIndex, entry.iInfoCmd);
        });
    });
}

GC_ERROR DSGetNumFlows(DS_HANDLE hDataStream, uint32_t* piNumFlows)
{
    return CallSince({1, 6}, __func__, [=] {
        Find<DataStream>(hDataStream);
        RequirePointer(piNumFlows, "piNumFlows");
        throw Failure(GC_ERR_NO_DATA, "flows are not in use");
    });
}

GC_ERROR DSGetFlowInfo(
    DS_HANDLE hDataStream, uint32_t, FLOW_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return CallSince({1, 6}, __func__, [=, function = __func__] {
        Find<DataStream>(hDataStream);
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, []() -> InfoValue {
            throw Failure(GC_ERR_NO_DATA, "flows are not in use");
        });
    });
}

GC_ERROR DSGetNumBufferSegments(DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t* piNumSegments)
{
    return CallSince({1, 6}, __func__, [=] {
        const auto [stream, buffer] = FindBuffer(hDataStream, hBuffer);
        RequirePointer(piNumSegments, "piNumSegments");
        stream->RequireBuffer(*buffer);
        *piNumSegments = 1;
    });
}

GC_ERROR DSGetBufferSegmentInfo(
    DS_HANDLE hDataStream, BUFFER_HANDLE hBuffer, uint32_t iSegmentIndex, SEGMENT_INFO_CMD iInfoCmd,
    INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return CallSince({1, 6}, __func__, [=, function = __func__] {
        const auto found = FindBuffer(hDataStream, hBuffer);
        const auto info = [&] { return found.stream->SegmentInfo(*found.buffer, iSegmentIndex, iInfoCmd); };
        Answer(function, iInfoCmd, {piType, pBuffer, piSize}, info);
    });
}

} // namespace GenTL
