// The output rules of the exports, tried on one export: size query, exact fit, one too few, null pointers.
#pragma once

#include "tests/support/boundary.h"

#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace koro::test
{

inline Error InvalidHandle(const std::string& parameter)
{
    return {KORO_RETURN_CODE_INVALID_HANDLE, parameter + " is invalid!"};
}

inline Error NullPointer(const std::string& parameter)
{
    return {KORO_RETURN_CODE_INVALID_ARGUMENT, parameter + " is not a valid pointer!"};
}

inline Error TooSmall(const std::string& parameter)
{
    return {KORO_RETURN_CODE_BUFFER_TOO_SMALL, parameter + " is too small!"};
}

inline const Error outOfRange{KORO_RETURN_CODE_OUT_OF_RANGE, "index is out of range!"};
inline const Error parentExpired{KORO_RETURN_CODE_ERROR, "Pointer has expired!"};

// `needed` are the bytes that a fetch writes; `call(buffer, size)` is the export.
template <class Element, class Call>
void ExpectBufferOut(const std::string& parameter, const std::string& needed, const Call& call)
{
    SCOPED_TRACE(parameter);
    std::size_t size = 0;
    EXPECT_EQ(Outcome(call(static_cast<Element*>(nullptr), &size)), Error{});
    EXPECT_EQ(size, needed.size());

    std::vector<Element> buffer(needed.size() + 1, static_cast<Element>('#'));
    size = buffer.size();
    EXPECT_EQ(Outcome(call(buffer.data(), &size)), Error{});
    EXPECT_EQ(size, needed.size());
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), needed + '#');

    buffer.assign(buffer.size(), static_cast<Element>('#'));
    size = needed.size() - 1;
    EXPECT_EQ(Outcome(call(buffer.data(), &size)), TooSmall(parameter));
    EXPECT_EQ(size, needed.size() - 1);
    EXPECT_EQ(std::string(buffer.begin(), buffer.end()), std::string(buffer.size(), '#'));

    EXPECT_EQ(Outcome(call(nullptr, nullptr)), NullPointer(parameter + "Size"));
}

template <class Handle>
using TextExport = KORO_ReturnCode (*)(Handle, char*, std::size_t*);

template <class Handle>
void ExpectTextOut(const std::string& parameter, const std::string& text, TextExport<Handle> function, Handle handle)
{
    ExpectBufferOut<char>(
        parameter, text + '\0', [&](char* buffer, std::size_t* size) { return function(handle, buffer, size); });
}

template <class Handle, class Value>
using ScalarExport = KORO_ReturnCode (*)(Handle, Value*);

template <class Handle, class Value>
void ExpectScalarOut(const std::string& parameter, Value value, ScalarExport<Handle, Value> function, Handle handle)
{
    SCOPED_TRACE(parameter);
    Value output{};
    EXPECT_EQ(Outcome(function(handle, &output)), Error{});
    EXPECT_EQ(output, value);
    EXPECT_EQ(Outcome(function(handle, nullptr)), NullPointer(parameter));
}

} // namespace koro::test
