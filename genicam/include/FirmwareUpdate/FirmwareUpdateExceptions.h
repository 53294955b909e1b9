// Errors of update files: the file does not exist, it cannot be read, or it is not an update file.
//
// Thrown like the other exceptions; what() does not contain the type.
#pragma once

#include <Base/GCException.h>

namespace GENICAM_NAMESPACE
{

DECLARE_EXCEPTION(FileNotFoundException);
DECLARE_EXCEPTION(FileIOException);
DECLARE_EXCEPTION(FormatException);

#define GENFW_UNTYPED_EXCEPTION_(name)                                                                                 \
    GENICAM_NAMESPACE::ExceptionReporter<GENICAM_NAMESPACE::name>(__FILE__, __LINE__).Report
#define GENFW_FILE_NOT_FOUND_EXCEPTION GENFW_UNTYPED_EXCEPTION_(FileNotFoundException)
#define GENFW_FILE_IO_EXCEPTION GENFW_UNTYPED_EXCEPTION_(FileIOException)
#define GENFW_FORMAT_EXCEPTION GENFW_UNTYPED_EXCEPTION_(FormatException)

} // namespace GENICAM_NAMESPACE
