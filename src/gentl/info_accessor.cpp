#include "gentl/info_accessor.h"

#include <algorithm>
#include <array>

namespace koro::internal
{

namespace
{

// Fits every fixed-size value and most answers of a wrong size, so that a getter does not allocate.
constexpr std::size_t inlineSize = 64;

std::string DescribeDataType(GenTL::INFO_DATATYPE dataType)
{
    return std::to_string(dataType) + " (" + DataTypeName(dataType) + ")";
}

} // namespace

RawInfo InfoAccessor::Info(std::int32_t command) const
{
    return WithStandardExceptionsAsInternalErrors([&] {
        GenTL::INFO_DATATYPE dataType = GenTL::INFO_DATATYPE_UNKNOWN;
        std::vector<std::uint8_t> bytes(QuerySize(command));
        bytes.resize(QueryData(command, &dataType, bytes.data(), bytes.size()));
        return RawInfo{dataType, std::move(bytes)};
    });
}

const ClaimBound& InfoAccessor::BoundOf(std::int32_t) const
{
    return informationBound;
}

bool InfoAccessor::BooleanInfo(std::int32_t command) const
{
    return NumericInfo<GenTL::bool8_t>(command, GenTL::INFO_DATATYPE_BOOL8) != 0;
}

std::string InfoAccessor::StringInfo(std::int32_t command) const
{
    const auto [dataType, bytes] = Info(command);
    CheckDataType(command, GenTL::INFO_DATATYPE_STRING, dataType);
    return {bytes.begin(), std::find(bytes.begin(), bytes.end(), std::uint8_t{0})};
}

std::vector<std::uint8_t> InfoAccessor::BufferInfo(std::int32_t command) const
{
    auto [dataType, bytes] = Info(command);
    CheckDataType(command, GenTL::INFO_DATATYPE_BUFFER, dataType);
    return std::move(bytes);
}

void InfoAccessor::FetchFixedSize(
    std::int32_t command, GenTL::INFO_DATATYPE expectedDataType, void* value, std::size_t expectedSize) const
{
    const std::size_t claimedSize = QuerySize(command);
    std::array<std::uint8_t, inlineSize> inlineBytes{};
    std::vector<std::uint8_t> heapBytes(claimedSize > inlineSize ? claimedSize : 0);
    std::uint8_t* const bytes = heapBytes.empty() ? inlineBytes.data() : heapBytes.data();

    GenTL::INFO_DATATYPE dataType = GenTL::INFO_DATATYPE_UNKNOWN;
    const std::size_t size = QueryData(command, &dataType, bytes, claimedSize);
    CheckDataType(command, expectedDataType, dataType);
    if (size != expectedSize)
    {
        throw InternalErrorException(
            Describe(QueryName(), command) + " | Error: expectedDataSize (" + std::to_string(expectedSize) +
            ") != deliveredDataSize (" + std::to_string(size) + ")]");
    }
    std::memcpy(value, bytes, expectedSize);
}

std::size_t InfoAccessor::QuerySize(std::int32_t command) const
{
    GenTL::INFO_DATATYPE ignoredDataType = GenTL::INFO_DATATYPE_UNKNOWN;
    std::size_t size = 0;
    if (QueryInfo(command, &ignoredDataType, nullptr, &size) != GenTL::GC_ERR_SUCCESS)
    {
        ThrowInfoError(QueryName(), command);
    }
    CheckClaim(BoundOf(command), size, QueryName());
    return size;
}

std::size_t InfoAccessor::QueryData(
    std::int32_t command, GenTL::INFO_DATATYPE* dataType, std::uint8_t* bytes, std::size_t size) const
{
    std::size_t delivered = size;
    if (QueryInfo(command, dataType, bytes, &delivered) != GenTL::GC_ERR_SUCCESS)
    {
        ThrowInfoError(QueryName(), command);
    }
    return std::min(delivered, size);
}

void InfoAccessor::CheckDataType(
    std::int32_t command, GenTL::INFO_DATATYPE expected, GenTL::INFO_DATATYPE delivered) const
{
    if (delivered == expected || delivered == GenTL::INFO_DATATYPE_UNKNOWN) return;
    throw InternalErrorException(
        Describe(QueryName(), command) + " | Error: expectedDataType " + DescribeDataType(expected) +
        " != deliveredDataType " + DescribeDataType(delivered) + "]");
}

void InfoAccessor::ThrowInfoError(const char* function, std::int32_t command) const
{
    const auto error = FetchProducerError(*gentl.Proxy());
    const auto message = Describe(function, command) + " | Error-Code: " + DescribeError(error.code) +
                         " | Error-Text: " + error.text + "]";
    if (error.code == GenTL::GC_ERR_IO) throw IOException(message);
    if (error.code == GenTL::GC_ERR_INVALID_ID) throw NotFoundException(message);
    throw InternalErrorException(message);
}

// Without the closing bracket.
std::string InfoAccessor::Describe(const char* function, std::int32_t command) const
{
    return std::string("[Function: ") + function + " | Info-Command: " + std::to_string(command) + " (" +
           CommandName(command) + ")";
}

} // namespace koro::internal
