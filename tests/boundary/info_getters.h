// Getters of a producer's information, tried in one go: the command that they ask for, the output rules, wrong types
// and sizes, failures, and that nothing is kept between two calls.
#pragma once

#include "tests/boundary/outputs.h"
#include "tests/boundary/producer_errors.h"
#include "tests/support/journal.h"
#include "tests/support/scripted_producer.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <vector>

namespace koro::test
{

// `call` returns the export's code with null outputs, so that a failing query has to win over them.
template <class Call>
void ExpectQueryFailures(const ScriptedProducer& producer, const InfoQuery& query, const Call& call)
{
    for (const auto code : {GenTL::GC_ERR_IO, GenTL::GC_ERR_INVALID_ID, GenTL::GC_ERR_NOT_IMPLEMENTED})
    {
        const auto failure = InfoFailure(query, ProducerErrorOf(code));
        producer->SetInfo(query.function, query.command, scripted::Failing(code));
        EXPECT_EQ(Outcome(call()), failure);
        producer->SetInfo(query.function, query.command, {.bytes = "12345678", .dataResult = code});
        EXPECT_EQ(Outcome(call()), failure);
    }
}

// Two calls of the producer, size and data, each time that the export is called.
template <class Call>
void ExpectFreshQuery(const ScriptedProducer& producer, const InfoQuery& query, const Call& call)
{
    for (int round = 0; round < 2; ++round)
    {
        producer->ClearJournal();
        call();
        const auto calls = producer->Journal();
        ASSERT_EQ(calls.size(), 2u);
        for (std::size_t half = 0; half < 2; ++half)
        {
            EXPECT_EQ(FunctionOf(calls[half]), query.function);
            const std::string end = std::to_string(query.command) + (half == 0 ? ", size)" : ", data)");
            EXPECT_TRUE(calls[half].ends_with(" " + end) || calls[half].ends_with("(" + end)) << calls[half];
        }
    }
}

template <class Handle>
void ExpectTextGetter(
    const ScriptedProducer& producer, const InfoQuery& query, const std::string& parameter, TextExport<Handle> function,
    Handle handle)
{
    SCOPED_TRACE(query.commandName);
    const auto answer = [&](const scripted::Info& info) { producer->SetInfo(query.function, query.command, info); };
    const std::string text = std::string("answer to ") + query.commandName;
    const auto sizeQuery = [&] {
        std::size_t size = 0;
        return function(handle, nullptr, &size);
    };

    answer(scripted::Text(text));
    ExpectTextOut(parameter, text, function, handle);
    ExpectFreshQuery(producer, query, sizeQuery);

    answer(scripted::Bytes(GenTL::INFO_DATATYPE_UNKNOWN, text)); // neither type nor terminator
    EXPECT_EQ(GetText(function, handle), text);
    answer(scripted::Bytes(GenTL::INFO_DATATYPE_STRING, ""));
    EXPECT_EQ(GetText(function, handle), "");
    answer(scripted::Text(text + '\0' + "behind the end"));
    EXPECT_EQ(GetText(function, handle), text);

    answer(scripted::Int32(1));
    EXPECT_EQ(Outcome(sizeQuery()), WrongType(query, "1 (INFO_DATATYPE_STRING)", "5 (INFO_DATATYPE_INT32)"));
    ExpectQueryFailures(producer, query, [&] { return function(handle, nullptr, nullptr); });
}

template <class Handle>
struct TextGetter
{
    std::int32_t command;
    const char* commandName;
    const char* parameter;
    TextExport<Handle> function;
};

template <class Handle>
void ExpectTextGetters(
    const ScriptedProducer& producer, const char* producerFunction, Handle handle,
    const std::vector<TextGetter<std::type_identity_t<Handle>>>& getters)
{
    for (const auto& [command, commandName, parameter, function] : getters)
        ExpectTextGetter(producer, {producerFunction, command, commandName}, parameter, function, handle);
}

// `type` reads as "6 (INFO_DATATYPE_UINT32)".
template <class Handle, class Output>
void ExpectNumberGetter(
    const ScriptedProducer& producer, const InfoQuery& query, const scripted::Info& right, const std::string& type,
    const std::string& parameter, Output value, ScalarExport<Handle, Output> function, Handle handle)
{
    SCOPED_TRACE(query.commandName);
    const auto answer = [&](const scripted::Info& info) { producer->SetInfo(query.function, query.command, info); };
    Output output{};

    answer(right);
    ExpectScalarOut(parameter, value, function, handle);
    ExpectFreshQuery(producer, query, [&] { function(handle, &output); });

    answer(scripted::Bytes(GenTL::INFO_DATATYPE_UNKNOWN, right.bytes));
    EXPECT_EQ(Get<Output>(function, handle), value);
    answer(scripted::Bytes(GenTL::INFO_DATATYPE_STRING, right.bytes));
    EXPECT_EQ(Outcome(function(handle, &output)), WrongType(query, type, "1 (INFO_DATATYPE_STRING)"));
    answer(scripted::Bytes(right.type, right.bytes + "123"));
    EXPECT_EQ(Outcome(function(handle, &output)), WrongSize(query, right.bytes.size(), right.bytes.size() + 3));
    answer(scripted::Bytes(right.type, ""));
    EXPECT_EQ(Outcome(function(handle, &output)), WrongSize(query, right.bytes.size(), 0));
    ExpectQueryFailures(producer, query, [&] { return function(handle, nullptr); });
}

template <class Handle>
using InfoExport = KORO_ReturnCode (*)(Handle, std::int32_t, std::int32_t*, std::uint8_t*, std::size_t*);

// Raw information: a producer-specific command passes with any type and size.
template <class Handle>
void ExpectRawInfo(
    const ScriptedProducer& producer, const char* producerFunction, InfoExport<Handle> function, Handle handle)
{
    const InfoQuery query{producerFunction, 1234, ""};
    constexpr std::int32_t ownType = 1001;
    std::int32_t type = 0;
    std::size_t size = 0;

    producer->SetInfo(query.function, query.command, scripted::Bytes(ownType, "raw bytes"));
    ExpectBufferOut<std::uint8_t>("info", "raw bytes", [&](std::uint8_t* info, std::size_t* infoSize) {
        type = 0;
        const auto returned = function(handle, query.command, &type, info, infoSize);
        EXPECT_EQ(type, ownType); // also where the rest of the call fails
        return returned;
    });
    ExpectFreshQuery(producer, query, [&] { function(handle, query.command, &type, nullptr, &size); });

    producer->ClearJournal();
    EXPECT_EQ(Outcome(function(handle, query.command, nullptr, nullptr, &size)), NullPointer("infoDataType"));
    EXPECT_EQ(producer->Journal(), std::vector<std::string>{});

    ExpectQueryFailures(producer, query, [&] { return function(handle, query.command, &type, nullptr, nullptr); });
}

} // namespace koro::test
