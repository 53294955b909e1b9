/*
 * Grabs ten frames into its own memory. The producer writes directly into that memory: a frame is read in place,
 * between the wait that returns its buffer and the call that queues the buffer again.
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
        if (!memory)
        {
            Fail("No memory for a frame.");
        }
        Check(KORO_DataStream_AnnounceBuffer(stream, memory, payloadSize, NULL, FreeMemory, NULL, &buffer));
        Check(KORO_DataStream_QueueBuffer(stream, buffer));
    }
}

/* Of a frame that lost data its producer need not know more than that. */
static void PrintFrame(KORO_BufferHandle buffer)
{
    void* pixels = NULL;
    size_t width = 0, height = 0, numBytes = 0;
    uint64_t frameId = 0;
    KORO_Bool8 isIncomplete = 0;
    Check(KORO_Buffer_GetIsIncomplete(buffer, &isIncomplete));
    if (isIncomplete)
    {
        printf("incomplete frame\n");
        return;
    }
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
    Camera camera = OpenFirstCamera();
    AnnounceAndQueue(camera.stream, PayloadSize(&camera));

    StartAcquisition(&camera);
    for (int frame = 0; frame < numFrames; ++frame)
    {
        KORO_BufferHandle buffer = NULL;
        Check(KORO_DataStream_WaitForFinishedBuffer(camera.stream, frameTimeout_ms, &buffer));
        PrintFrame(buffer);
        Check(KORO_DataStream_QueueBuffer(camera.stream, buffer));
    }
    StopAcquisition(&camera);

    CloseCamera(&camera);
    return KORO_Library_Close();
}
