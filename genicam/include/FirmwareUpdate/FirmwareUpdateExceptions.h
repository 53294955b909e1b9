// What is wrong with an update file: it is not there, it cannot be read, or it is read and is no update file.
//
// Thrown as the other exceptions are; what() does not name the type.
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
