/*
 * Enables chunks and reads them as features. Chunks make frames larger, so the buffers are announced afterwards. The
 * values of chunk nodes are those of the last buffer that was passed to the node map.
 */
#include "example.h"

#include <stdio.h>

enum
{
    numBuffers = 3,
    numFrames = 3,
    frameTimeout_ms = 5000
};

static void Enable(KORO_NodeMapHandle features, const char* chunk)
{
    Choose(features, "ChunkSelector", chunk);
    SetBoolean(features, "ChunkEnable", 1);
}

static void PrintChunks(KORO_NodeMapHandle features, KORO_BufferHandle buffer)
{
    KORO_FloatNodeHandle exposureTime = NULL;
    double exposureTime_us = 0;
    Check(KORO_NodeMap_UpdateChunkNodes(features, buffer));
    Check(KORO_Node_ToFloatNode(FindFeature(features, "ChunkExposureTime"), &exposureTime));
    Check(KORO_FloatNode_GetValue(exposureTime, KORO_NODE_CACHE_POLICY_USE_CACHE, &exposureTime_us));
    printf("frame %lld, exposed for %.0f us\n", (long long)GetInteger(features, "ChunkFrameID"), exposureTime_us);
}

int main(void)
{
    Check(KORO_Library_Initialize());
    Camera camera = OpenFirstCamera();
    SetBoolean(camera.features, "ChunkModeActive", 1);
    Enable(camera.features, "FrameID");
    Enable(camera.features, "ExposureTime");
    AllocateAndQueue(&camera, numBuffers);

    StartAcquisition(&camera);
    for (int frame = 0; frame < numFrames; ++frame)
    {
        KORO_BufferHandle buffer = NULL;
        Check(KORO_DataStream_WaitForFinishedBuffer(camera.stream, frameTimeout_ms, &buffer));
        PrintChunks(camera.features, buffer);
        Check(KORO_DataStream_QueueBuffer(camera.stream, buffer));
    }
    StopAcquisition(&camera);
    CloseCamera(&camera);
    return KORO_Library_Close();
}
