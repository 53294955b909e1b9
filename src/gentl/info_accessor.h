// TGenTLInfoAccessor: typed queries of a GenTL object's information. A base of each class that has information.
//
// A query calls the producer twice, for size and data. Nothing is cached. The delivered type and size must be the
// expected ones. Standard exceptions leave as InternalErrorException. Thread-safe.
#pragma once

#include "base/exceptions.h"
#include "gentl/bounds.h"
#include "gentl/gentl_caller.h"
#include "gentl/info_names.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace koro::internal
{

// The result of a query as the producer delivered it, unchecked.
struct RawInfo
{
    std::int32_t dataType; // INFO_DATATYPE of the standard
    std::vector<std::uint8_t> bytes;
};

class InfoAccessor
{
public:
    InfoAccessor(const InfoAccessor&) = delete;
    InfoAccessor& operator=(const InfoAccessor&) = delete;
    virtual ~InfoAccessor() = default;

    // Accepts any command, including producer-specific ones. Throws IOException, NotFoundException or
    // InternalErrorException.
    RawInfo Info(std::int32_t command) const;

protected:
    explicit InfoAccessor(GenTLCaller caller) : gentl(std::move(caller)) {}

    // The producer's function with the identifiers of this object.
    virtual GenTL::GC_ERROR QueryInfo(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, void* buffer, std::size_t* size) const = 0;
    virtual const char* QueryName() const = 0;
    virtual const char* CommandName(std::int32_t command) const = 0;
    // The bound for the size that the producer may claim.
    virtual const ClaimBound& BoundOf(std::int32_t command) const;

    // A value of fixed size; throws InternalErrorException when type or size differ from the expected ones.
    // INFO_DATATYPE_UNKNOWN is accepted for any type, since some producers do not set the type.
    template <class Value>
    Value NumericInfo(std::int32_t command, GenTL::INFO_DATATYPE expectedDataType) const
    {
        static_assert(std::is_trivially_copyable_v<Value>);
        Value value{};
        WithStandardExceptionsAsInternalErrors(
            [&] { FetchFixedSize(command, expectedDataType, &value, sizeof value); });
        return value;
    }

    bool BooleanInfo(std::int32_t command) const;
    // The text up to the first zero.
    std::string StringInfo(std::int32_t command) const;
    // Any number of bytes, of the type INFO_DATATYPE_BUFFER.
    std::vector<std::uint8_t> BufferInfo(std::int32_t command) const;

    // Throws according to the rule for information queries, with `function` as the name in the message.
    [[noreturn]] void ThrowInfoError(const char* function, std::int32_t command) const;

    const GenTLCaller gentl;

private:
    std::size_t QuerySize(std::int32_t command) const;
    // Reads into `size` zeroed bytes; returns the delivered size, which is never above `size`.
    std::size_t QueryData(
        std::int32_t command, GenTL::INFO_DATATYPE* dataType, std::uint8_t* bytes, std::size_t size) const;
    void FetchFixedSize(
        std::int32_t command, GenTL::INFO_DATATYPE expectedDataType, void* value, std::size_t expectedSize) const;
    void CheckDataType(std::int32_t command, GenTL::INFO_DATATYPE expected, GenTL::INFO_DATATYPE delivered) const;
    std::string Describe(const char* function, std::int32_t command) const;
};

template <class CommandList>
class TGenTLInfoAccessor : public InfoAccessor
{
protected:
    using InfoAccessor::InfoAccessor;

private:
    const char* CommandName(std::int32_t command) const final { return InfoCommandName<CommandList>(command); }
};

} // namespace koro::internal
