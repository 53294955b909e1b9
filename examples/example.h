/* What the examples beyond the first one share: the answer to a failure, and the road to a stream. */
#ifndef KORO_EXAMPLES_EXAMPLE_H
#define KORO_EXAMPLES_EXAMPLE_H

#include <koro/koro.h>

/* Ends the program with the library's own words when a call has failed. */
void Check(KORO_ReturnCode code);

/* Loads a producer by its place in the list of paths that the search has found. */
KORO_ProducerLibraryHandle LoadProducer(size_t index);

/* Opens the system of a producer and brings its list of interfaces up to date. */
KORO_SystemHandle OpenSystem(KORO_ProducerLibraryHandle producer);

/* Opens an interface and brings its list of devices up to date. */
KORO_InterfaceHandle OpenInterface(KORO_SystemHandle system, size_t index);

/* What is open between the producer and a stream, from the root to the leaf. */
typedef struct Camera
{
    KORO_ProducerLibraryHandle producer;
    KORO_SystemHandle system;
    KORO_InterfaceHandle interface;
    KORO_DeviceHandle device;
    KORO_DataStreamHandle stream;
} Camera;

/* Opens the first device of the first interface of the first producer, with its first stream. */
Camera OpenFirstCamera(void);

/* Executes a command of the camera: "AcquisitionStart" after the stream has started, "AcquisitionStop" before it stops.
 */
void Execute(const Camera* camera, const char* command);

/* Closes leaf by leaf, the order that producers like best. */
void CloseCamera(const Camera* camera);

#endif
