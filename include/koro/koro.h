/*
 * zvr_koro: cameras through GenICam GenTL, as plain C functions over opaque handles.
 *
 * The conventions that hold for every function, so that the single ones need not repeat them:
 *
 *  1. KORO_<Family>_<Operation> takes the handle of the family's object first, then inputs, then outputs, and returns a
 *     KORO_ReturnCode: 0 for success. Go by the return value, and read the text of a failure on the same thread by
 *     KORO_Library_GetLastError.
 *  2. Call KORO_Library_Initialize first and KORO_Library_Close last. In between any thread may call any function,
 *     unless its description says otherwise.
 *  3. A handle stays valid until its description says that it ends; a dead one, a null one and one of another kind are
 *     answered with KORO_RETURN_CODE_INVALID_HANDLE. The same object gives the same handle each time. Handles are
 *     ended by ..._Destruct or by the end of their parent; there is no other release. An ended handle may come back for
 *     a new object one day, but not soon: the last 4,096 of its kind, or 1 MiB of objects, are kept out of use.
 *  4. Results lie in the caller's memory and nothing has to be freed. Text and bytes go into a buffer with its size:
 *     `name` is the buffer, null to ask for the size; `nameSize` holds its capacity, and after a success the bytes
 *     written. Sizes of texts count the terminating zero. A buffer that is too small is left as it was.
 *  5. A null output pointer, or a null size pointer, is answered with KORO_RETURN_CODE_INVALID_ARGUMENT.
 *  6. Between a size query and its fetch the text may grow; the fetch then answers KORO_RETURN_CODE_BUFFER_TOO_SMALL,
 *     and the pair is repeated.
 *  7. Texts are in the producer's encoding (KORO_System_GetCharacterEncoding). Numbers of the GenTL standard pass
 *     through unchanged; <koro/gentl_values.h> has their names.
 *  8. A failure of the producer arrives with the code that fits its GenTL error, and with the function, number, name
 *     and the producer's own text in the last error. Queries of information, which most getters are, have three codes
 *     only: KORO_RETURN_CODE_IO_ERROR for GC_ERR_IO, KORO_RETURN_CODE_NOT_FOUND for GC_ERR_INVALID_ID, and
 *     KORO_RETURN_CODE_ERROR for all others, GC_ERR_NOT_IMPLEMENTED and GC_ERR_NOT_AVAILABLE among them.
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
