#include "gentl/gentl_error.h"

#include "base/exceptions.h"
#include "gentl/bounds.h"
#include "gentl/name_table.h"

#include <algorithm>
#include <vector>

namespace koro::internal
{

namespace
{

constexpr NamedNumber errorNames[] = {
    KORO_NAMED(GC_ERR_SUCCESS),
    KORO_NAMED(GC_ERR_ERROR),
    KORO_NAMED(GC_ERR_NOT_INITIALIZED),
    KORO_NAMED(GC_ERR_NOT_IMPLEMENTED),
    KORO_NAMED(GC_ERR_RESOURCE_IN_USE),
    KORO_NAMED(GC_ERR_ACCESS_DENIED),
    KORO_NAMED(GC_ERR_INVALID_HANDLE),
    KORO_NAMED(GC_ERR_INVALID_ID),
    KORO_NAMED(GC_ERR_NO_DATA),
    KORO_NAMED(GC_ERR_INVALID_PARAMETER),
    KORO_NAMED(GC_ERR_IO),
    KORO_NAMED(GC_ERR_TIMEOUT),
    KORO_NAMED(GC_ERR_ABORT),
    KORO_NAMED(GC_ERR_INVALID_BUFFER),
    KORO_NAMED(GC_ERR_NOT_AVAILABLE),
    KORO_NAMED(GC_ERR_INVALID_ADDRESS),
    KORO_NAMED(GC_ERR_BUFFER_TOO_SMALL),
    KORO_NAMED(GC_ERR_INVALID_INDEX),
    KORO_NAMED(GC_ERR_PARSING_CHUNK_DATA),
    KORO_NAMED(GC_ERR_INVALID_VALUE),
    KORO_NAMED(GC_ERR_RESOURCE_EXHAUSTED),
    KORO_NAMED(GC_ERR_OUT_OF_MEMORY),
    KORO_NAMED(GC_ERR_BUSY),
    KORO_NAMED(GC_ERR_CUSTOM_ID),
};

constexpr NamedNumber dataTypeNames[] = {
    KORO_NAMED(INFO_DATATYPE_UNKNOWN), KORO_NAMED(INFO_DATATYPE_STRING), KORO_NAMED(INFO_DATATYPE_STRINGLIST),
    KORO_NAMED(INFO_DATATYPE_INT16),   KORO_NAMED(INFO_DATATYPE_UINT16), KORO_NAMED(INFO_DATATYPE_INT32),
    KORO_NAMED(INFO_DATATYPE_UINT32),  KORO_NAMED(INFO_DATATYPE_INT64),  KORO_NAMED(INFO_DATATYPE_UINT64),
    KORO_NAMED(INFO_DATATYPE_FLOAT64), KORO_NAMED(INFO_DATATYPE_PTR),    KORO_NAMED(INFO_DATATYPE_BOOL8),
    KORO_NAMED(INFO_DATATYPE_SIZET),   KORO_NAMED(INFO_DATATYPE_BUFFER), KORO_NAMED(INFO_DATATYPE_CUSTOM_ID),
};

void CheckLastErrorQuery(GenTL::GC_ERROR result)
{
    if (result == GenTL::GC_ERR_SUCCESS) return;
    throw InternalErrorException("[Function: GCGetLastError | Error-Code: " + DescribeError(result) + "]");
}

} // namespace

const char* ErrorName(GenTL::GC_ERROR code)
{
    return NameOf(code, errorNames);
}

const char* DataTypeName(GenTL::INFO_DATATYPE dataType)
{
    return NameOf(dataType, dataTypeNames);
}

std::string DescribeError(GenTL::GC_ERROR code)
{
    return std::to_string(code) + " (" + ErrorName(code) + ")";
}

ProducerError FetchProducerError(const GenTLProxy& proxy)
{
    // The default if the function does not write the code, for example for a refused call.
    GenTL::GC_ERROR code = GenTL::GC_ERR_ERROR;
    std::size_t size = 0;
    CheckLastErrorQuery(proxy.GCGetLastError(&code, nullptr, &size));
    CheckClaim(textBound, size, "GCGetLastError");

    std::vector<char> text(size);
    CheckLastErrorQuery(proxy.GCGetLastError(&code, text.data(), &size));
    return {code, std::string(text.begin(), std::find(text.begin(), text.end(), '\0'))};
}

std::string StandardMessage(const char* function, const ProducerError& error)
{
    return std::string("[Function: ") + function + " | Error-Code: " + DescribeError(error.code) +
           " | Error-Text: " + error.text + "]";
}

void ThrowProducerError(const char* function, const ProducerError& error)
{
    const std::string message = StandardMessage(function, error);
    switch (error.code)
    {
    case GenTL::GC_ERR_NOT_IMPLEMENTED:
        throw NotImplementedException(message);
    case GenTL::GC_ERR_RESOURCE_IN_USE:
    case GenTL::GC_ERR_ACCESS_DENIED:
    case GenTL::GC_ERR_BUSY:
        throw BadAccessException(message);
    case GenTL::GC_ERR_NO_DATA:
        throw NoDataException(message);
    case GenTL::GC_ERR_IO:
        throw IOException(message);
    case GenTL::GC_ERR_ABORT:
        throw AbortedException(message);
    case GenTL::GC_ERR_NOT_AVAILABLE:
        throw NotAvailableException(message);
    case GenTL::GC_ERR_INVALID_ADDRESS:
        throw InvalidAddressException(message);
    case GenTL::GC_ERR_BUFFER_TOO_SMALL:
        throw BufferTooSmallException(message);
    case GenTL::GC_ERR_INVALID_VALUE:
        throw OutOfRangeException(message);
    default: // includes a timeout: callers for which it is one check for it before
        throw InternalErrorException(message);
    }
}

void CheckResult(const char* function, GenTL::GC_ERROR result, const GenTLProxy& proxy)
{
    if (result == GenTL::GC_ERR_SUCCESS) return;
    ThrowProducerError(function, FetchProducerError(proxy));
}

void ThrowRefusedCall(const char* function, const GenTLProxy& proxy)
{
    const auto error = FetchProducerError(proxy);
    throw Exception(std::string("[Function: ") + function + " | Error: " + error.text + "]");
}

} // namespace koro::internal
