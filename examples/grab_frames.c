/*
 * Grabs ten frames into memory of its own. The producer writes straight into that memory: a frame is read in place
 * between the wait that returns its buffer and the call that queues it again.
 */
#include "example.h"

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>

enum
{
    numBuffers = 3,
    numFrames = 10,
    frameTimeout_ms = 5000
};

/* Runs when a buffer is revoked: from here on the memory is the application's again. */
static void FreeMemory(void* memory, void* userPtr, void* context)
{
    (void)userPtr;
    (void)context;
    free(memory);
}

static void AnnounceAndQueue(KORO_DataStreamHandle stream, size_t payloadSize)
{
    for (int index = 0; index < numBuffers; ++index)
    {
        KORO_BufferHandle buffer = NULL;
        void* memory = malloc(payloadSize);
        Check(KORO_DataStream_AnnounceBuffer(stream, memory, payloadSize, NULL, FreeMemory, NULL, &buffer));
        Check(KORO_DataStream_QueueBuffer(stream, buffer));
    }
}

static void PrintFrame(KORO_BufferHandle buffer)
{
    void* pixels = NULL;
    size_t width = 0, height = 0, numBytes = 0;
    uint64_t frameId = 0;
    Check(KORO_Buffer_GetBasePtr(buffer, &pixels));
    Check(KORO_Buffer_GetWidth(buffer, &width));
    Check(KORO_Buffer_GetHeight(buffer, &height));
    Check(KORO_Buffer_GetDeliveredDataSize(buffer, &numBytes));
    Check(KORO_Buffer_GetFrameID(buffer, &frameId));
    printf(
        "frame %llu: %zu x %zu, %zu bytes, first byte %u\n", (unsigned long long)frameId, width, height, numBytes,
        *(const uint8_t*)pixels);
}

int main(void)
{
    Check(KORO_Library_Initialize());
    const Camera camera = OpenFirstCamera();
    size_t payloadSize = 0;
    Check(KORO_DataStream_GetPayloadSize(camera.stream, &payloadSize));
    AnnounceAndQueue(camera.stream, payloadSize);

    Check(KORO_DataStream_StartAcquisitionInfinite(camera.stream, KORO_ACQ_START_FLAGS_DEFAULT));
    Execute(&camera, "AcquisitionStart");
    for (int frame = 0; frame < numFrames; ++frame)
    {
        KORO_BufferHandle buffer = NULL;
        Check(KORO_DataStream_WaitForFinishedBuffer(camera.stream, frameTimeout_ms, &buffer));
        PrintFrame(buffer);
        Check(KORO_DataStream_QueueBuffer(camera.stream, buffer));
    }
    Execute(&camera, "AcquisitionStop");
    Check(KORO_DataStream_StopAcquisition(camera.stream, KORO_ACQ_STOP_FLAGS_DEFAULT));

    CloseCamera(&camera);
    return KORO_Library_Close();
}
