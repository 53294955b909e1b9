/*
 * Takes frames on a thread of the application, and ends its wait from another one. The library has no acquisition
 * thread: a wait without a limit blocks its caller until a frame arrives or another thread kills the wait.
 */
#include "example.h"

#include <pthread.h>
#include <stdio.h>

enum
{
    numBuffers = 3,
    numFrames = 5
};

typedef struct Grabber
{
    KORO_DataStreamHandle stream;
    pthread_mutex_t mutex;
    pthread_cond_t frameTaken;
    int numTaken; /* guarded by mutex */
} Grabber;

static void CountFrame(Grabber* grabber)
{
    pthread_mutex_lock(&grabber->mutex);
    ++grabber->numTaken;
    pthread_cond_signal(&grabber->frameTaken);
    pthread_mutex_unlock(&grabber->mutex);
}

/* Grabs until the wait is killed. The last error belongs to a thread, so failures are reported here. */
static void* Grab(void* context)
{
    Grabber* grabber = context;
    for (;;)
    {
        KORO_BufferHandle buffer = NULL;
        const KORO_ReturnCode code = KORO_DataStream_WaitForFinishedBuffer(grabber->stream, KORO_INFINITE, &buffer);
        if (code == KORO_RETURN_CODE_ABORTED)
        {
            return NULL;
        }
        Check(code);
        CountFrame(grabber);
        Check(KORO_DataStream_QueueBuffer(grabber->stream, buffer));
    }
}

static void AwaitFrames(Grabber* grabber)
{
    pthread_mutex_lock(&grabber->mutex);
    while (grabber->numTaken < numFrames)
    {
        pthread_cond_wait(&grabber->frameTaken, &grabber->mutex);
    }
    pthread_mutex_unlock(&grabber->mutex);
}

int main(void)
{
    Check(KORO_Library_Initialize());
    Camera camera = OpenFirstCamera();
    AllocateAndQueue(&camera, numBuffers);

    Grabber grabber = {camera.stream, PTHREAD_MUTEX_INITIALIZER, PTHREAD_COND_INITIALIZER, 0};
    pthread_t thread;
    if (pthread_create(&thread, NULL, Grab, &grabber) != 0)
    {
        Fail("No thread could be started.");
    }
    StartAcquisition(&camera);
    AwaitFrames(&grabber);
    Check(KORO_DataStream_KillWait(camera.stream));
    pthread_join(thread, NULL);
    printf("%d frames on the thread, then its wait was killed\n", grabber.numTaken);

    StopAcquisition(&camera);
    CloseCamera(&camera);
    return KORO_Library_Close();
}
