// What a failing call of a scripted producer becomes at the exports: return code and whole text.
//
// Written down as numbers and names on purpose: nothing here comes from the library.
#pragma once

#include "gentl/api/gentl.h"
#include "tests/support/boundary.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <string>

namespace koro::test
{

struct ProducerError
{
    GenTL::GC_ERROR code;
    const char* name;            // empty for a code that the standard does not name
    KORO_ReturnCode ofCall;      // what a failing call returns
    KORO_ReturnCode ofInfoQuery; // what a failing query of information returns
};

inline constexpr ProducerError producerErrors[] = {
    {-1001, "GC_ERR_ERROR", 1, 1},
    {-1002, "GC_ERR_NOT_INITIALIZED", 1, 1},
    {-1003, "GC_ERR_NOT_IMPLEMENTED", 15, 1},
    {-1004, "GC_ERR_RESOURCE_IN_USE", 4, 1},
    {-1005, "GC_ERR_ACCESS_DENIED", 4, 1},
    {-1006, "GC_ERR_INVALID_HANDLE", 1, 1},
    {-1007, "GC_ERR_INVALID_ID", 1, 11},
    {-1008, "GC_ERR_NO_DATA", 18, 1},
    {-1009, "GC_ERR_INVALID_PARAMETER", 1, 1},
    {-1010, "GC_ERR_IO", 17, 17},
    {-1011, "GC_ERR_TIMEOUT", 1, 1},
    {-1012, "GC_ERR_ABORT", 3, 1},
    {-1013, "GC_ERR_INVALID_BUFFER", 1, 1},
    {-1014, "GC_ERR_NOT_AVAILABLE", 14, 1},
    {-1015, "GC_ERR_INVALID_ADDRESS", 7, 1},
    {-1016, "GC_ERR_BUFFER_TOO_SMALL", 6, 1},
    {-1017, "GC_ERR_INVALID_INDEX", 1, 1},
    {-1018, "GC_ERR_PARSING_CHUNK_DATA", 1, 1},
    {-1019, "GC_ERR_INVALID_VALUE", 12, 1},
    {-1020, "GC_ERR_RESOURCE_EXHAUSTED", 1, 1},
    {-1021, "GC_ERR_OUT_OF_MEMORY", 1, 1},
    {-1022, "GC_ERR_BUSY", 4, 1},
    {-1023, "", 1, 1},
    {-10000, "GC_ERR_CUSTOM_ID", 1, 1},
    {-10001, "", 1, 1},
};

inline const ProducerError& ProducerErrorOf(GenTL::GC_ERROR code)
{
    const auto found = std::find_if(
        std::begin(producerErrors), std::end(producerErrors), [&](const auto& error) { return error.code == code; });
    if (found == std::end(producerErrors)) throw std::runtime_error("Not in the list: " + std::to_string(code));
    return *found;
}

inline std::string Described(const ProducerError& error)
{
    return std::to_string(error.code) + " (" + error.name + ")";
}

// Of a call.
inline Error CallFailure(const std::string& function, const ProducerError& error)
{
    return {
        error.ofCall, "[Function: " + function + " | Error-Code: " + Described(error) +
                          " | Error-Text: scripted failure of " + function + "]"};
}

// One query of information, as its messages name it.
struct InfoQuery
{
    const char* function;
    std::int32_t command;
    const char* commandName;
    const char* functionInTexts = nullptr; // where it is another one

    std::string Start() const
    {
        return std::string("[Function: ") + (functionInTexts ? functionInTexts : function) +
               " | Info-Command: " + std::to_string(command) + " (" + commandName + ") | ";
    }
};

inline Error InfoFailure(const InfoQuery& query, const ProducerError& error)
{
    return {
        error.ofInfoQuery, query.Start() + "Error-Code: " + Described(error) + " | Error-Text: scripted failure of " +
                               query.function + "]"};
}

// Types as "5 (INFO_DATATYPE_INT32)".
inline Error WrongType(const InfoQuery& query, const std::string& expected, const std::string& delivered)
{
    return {
        KORO_RETURN_CODE_ERROR,
        query.Start() + "Error: expectedDataType " + expected + " != deliveredDataType " + delivered + "]"};
}

inline Error WrongSize(const InfoQuery& query, std::size_t expected, std::size_t delivered)
{
    return {
        KORO_RETURN_CODE_ERROR, query.Start() + "Error: expectedDataSize (" + std::to_string(expected) +
                                    ") != deliveredDataSize (" + std::to_string(delivered) + ")]"};
}

} // namespace koro::test
