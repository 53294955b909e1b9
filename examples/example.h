/* What the examples beyond the first one share: the answer to a failure, the road to a stream, and features by name. */
#ifndef KORO_EXAMPLES_EXAMPLE_H
#define KORO_EXAMPLES_EXAMPLE_H

#include <koro/koro.h>

/*
 * Ends the program with the library's own words when a call has failed. The library is closed before: some producers
 * crash when a process ends while something is open.
 */
void Check(KORO_ReturnCode code);

/* The same with a text of the program's own. */
void Fail(const char* text);

/* Loads a producer by its place in the list of paths that the search has found. */
KORO_ProducerLibraryHandle LoadProducer(size_t index);

/* Opens the system of a producer and brings its list of interfaces up to date. */
KORO_SystemHandle OpenSystem(KORO_ProducerLibraryHandle producer);

/* Opens an interface and brings its list of devices up to date. */
KORO_InterfaceHandle OpenInterface(KORO_SystemHandle system, size_t index);

/* What is open between the producer and a stream, from the root to the leaf, and the features of the camera. */
typedef struct Camera
{
    KORO_ProducerLibraryHandle producer;
    KORO_SystemHandle system;
    KORO_InterfaceHandle interface;
    KORO_DeviceHandle device;
    KORO_DataStreamHandle stream;
    KORO_NodeMapHandle features;
} Camera;

/* The first interface that has a device; fails with a reason when there is none. */
Camera OpenFirstInterface(void);

/* Opens a device of the camera's interface by its index, with its first stream. */
void OpenDevice(Camera* camera, size_t index);

/* Both of them: the first device of all. */
Camera OpenFirstCamera(void);

/*
 * Starts the stream and then the camera, with what changes the size of frames locked meanwhile; stops the camera first.
 * Buffers are announced and queued before.
 */
void StartAcquisition(const Camera* camera);
void StopAcquisition(const Camera* camera);

/* Bytes of a frame. Some producers do not know; then the camera's feature says it. */
size_t PayloadSize(const Camera* camera);

/* Lets the producer allocate buffers, and queues them. */
void AllocateAndQueue(const Camera* camera, int numBuffers);

/* Features by their names. */
KORO_NodeHandle FindFeature(KORO_NodeMapHandle features, const char* name);
void Execute(KORO_NodeMapHandle features, const char* command);
void SetInteger(KORO_NodeMapHandle features, const char* name, int64_t value);
int64_t GetInteger(KORO_NodeMapHandle features, const char* name);
void SetBoolean(KORO_NodeMapHandle features, const char* name, int value);
void Choose(KORO_NodeMapHandle features, const char* enumeration, const char* entry);

/* Closes leaf by leaf, the order that producers like best. */
void CloseDevice(Camera* camera);
void CloseCamera(Camera* camera);

#endif
