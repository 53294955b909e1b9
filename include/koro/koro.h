/*
 * zvr_koro: machine vision cameras through GenICam GenTL, as plain C functions that take opaque handles.
 *
 * These conventions hold for every function. The comments of the functions do not repeat them.
 *
 *  1. KORO_<Family>_<Operation> takes the handle of the object first, then inputs, then outputs. It returns a
 *     KORO_ReturnCode; 0 means success. Test the return value. After a failure KORO_Library_GetLastError returns the
 *     error text; call it on the same thread.
 *  2. Call KORO_Library_Initialize before and KORO_Library_Close after all other functions. In between, any thread may
 *     call any function, unless its comment says otherwise.
 *  3. A handle stays valid until it ends: by a ..._Destruct function, or together with its parent object. The comment
 *     of the function that returns a handle says when it ends ("ends with the device"). Where there is no ..._Destruct
 *     function, there is nothing to release. A function that is asked again for the same object returns the same
 *     handle. Ended handles, null and handles of another kind are answered with KORO_RETURN_CODE_INVALID_HANDLE. The
 *     number of an ended handle may return for a new object, but not soon: the last 4,096 handles of each kind, or 1
 *     MiB of objects, are not used again.
 *  4. Results are written to memory of the caller, so there is nothing to free. A text or a block of bytes takes two
 *     parameters, for example `name` and `nameSize`. `name` points to the buffer; null only queries the size.
 *     `nameSize` holds the capacity of the buffer before the call and the number of bytes written after a success.
 *     Sizes of texts include the terminating zero. A buffer that is too small is not changed.
 *  5. A null output pointer or a null size pointer is answered with KORO_RETURN_CODE_INVALID_ARGUMENT.
 *  6. A text may grow between the size query and the call that fetches it. That call then returns
 *     KORO_RETURN_CODE_BUFFER_TOO_SMALL: repeat both calls.
 *  7. Texts are in the encoding of the producer (KORO_System_GetCharacterEncoding). Numbers of the GenTL standard are
 *     passed through unchanged; <koro/gentl_values.h> lists their names.
 *  8. When the producer fails, the return code is the one that corresponds to its GenTL error. The last error text
 *     contains the GenTL function, the number and the name of the error, and the producer's own text. Functions that
 *     query information, which most getters are, return only three codes for such a failure: KORO_RETURN_CODE_IO_ERROR
 *     for GC_ERR_IO, KORO_RETURN_CODE_NOT_FOUND for GC_ERR_INVALID_ID, and KORO_RETURN_CODE_ERROR for all others,
 *     including GC_ERR_NOT_IMPLEMENTED and GC_ERR_NOT_AVAILABLE.
 */
#ifndef KORO_KORO_H
#define KORO_KORO_H

#include <koro/boolean_node.h>
#include <koro/buffer.h>
#include <koro/buffer_chunk.h>
#include <koro/buffer_part.h>
#include <koro/category_node.h>
#include <koro/command_node.h>
#include <koro/data_stream.h>
#include <koro/data_stream_descriptor.h>
#include <koro/device.h>
#include <koro/device_descriptor.h>
#include <koro/enumeration_entry_node.h>
#include <koro/enumeration_node.h>
#include <koro/environment_inspector.h>
#include <koro/event.h>
#include <koro/event_controller.h>
#include <koro/event_supporting_module.h>
#include <koro/file_adapter.h>
#include <koro/firmware_update_information.h>
#include <koro/firmware_update_progress_observer.h>
#include <koro/firmware_updater.h>
#include <koro/float_node.h>
#include <koro/gentl_values.h>
#include <koro/integer_node.h>
#include <koro/interface.h>
#include <koro/interface_descriptor.h>
#include <koro/library.h>
#include <koro/module.h>
#include <koro/module_descriptor.h>
#include <koro/node.h>
#include <koro/node_map.h>
#include <koro/node_values.h>
#include <koro/port.h>
#include <koro/port_url.h>
#include <koro/producer_library.h>
#include <koro/register_node.h>
#include <koro/remote_device.h>
#include <koro/return_codes.h>
#include <koro/string_node.h>
#include <koro/system.h>
#include <koro/system_descriptor.h>
#include <koro/types.h>

#endif
