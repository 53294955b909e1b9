// The conversion of a failed GenTL call: the producer's code and text, one message format, one table of exceptions.
//
// Fetch the error on the thread of the failed call: the producer stores its last error per thread.
#pragma once

#include "gentl/gentl_proxy.h"

#include <string>

namespace koro::internal
{

struct ProducerError
{
    GenTL::GC_ERROR code; // as GCGetLastError returns it: this code decides the exception, not the result of the call
    std::string text;
};

// Empty text for a number without a name.
const char* ErrorName(GenTL::GC_ERROR code);
const char* DataTypeName(GenTL::INFO_DATATYPE dataType);

// "<number> (<name>)".
std::string DescribeError(GenTL::GC_ERROR code);

// The producer's last error on this thread. Throws InternalErrorException when GCGetLastError itself fails.
ProducerError FetchProducerError(const GenTLProxy& proxy);

// "[Function: <function> | Error-Code: <number> (<name>) | Error-Text: <text>]"
std::string StandardMessage(const char* function, const ProducerError& error);

// Throws the exception that the table has for `error.code`, with the standard message.
[[noreturn]] void ThrowProducerError(const char* function, const ProducerError& error);

// The standard check: returns on 0, otherwise fetches the producer's error and throws.
void CheckResult(const char* function, GenTL::GC_ERROR result, const GenTLProxy& proxy);

// For a call that the proxy refused because the producer lacks the function.
[[noreturn]] void ThrowRefusedCall(const char* function, const GenTLProxy& proxy);

} // namespace koro::internal
