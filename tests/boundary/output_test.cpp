// How results leave: scalars, texts, byte arrays and raw information.

#include "tests/support/boundary.h"
#include "tests/support/scripted_producer.h"

#include <algorithm>
#include <gtest/gtest.h>

namespace
{

using namespace koro::test;
using scripted::Text;

class Output : public testing::Test
{
protected:
    const ScriptedProducer producer;
    const KoroLibrary library;
    const OpenTree tree{producer.Path()};

    void AnswerVendor(const scripted::Info& answer) { producer->SetInfo("TLGetInfo", GenTL::TL_INFO_VENDOR, answer); }

    bool WasAskedFor(const std::string& function) const
    {
        const auto journal = producer->Journal();
        return std::any_of(journal.begin(), journal.end(), [&](const std::string& line) {
            return line.rfind(function + "(", 0) == 0;
        });
    }

    KORO_EventHandle TakeEvent(const std::string& block)
    {
        const auto source = Get<KORO_EventSupportingModuleHandle>(KORO_System_ToEventSupportingModule, tree.system);
        const auto controller = Get<KORO_EventControllerHandle>(
            KORO_EventSupportingModule_EnableEvents, source, std::int32_t{KORO_EVENT_MODULE});
        producer->Fire("system", GenTL::EVENT_MODULE, block);
        return Get<KORO_EventHandle>(KORO_EventController_WaitForEvent, controller, std::uint64_t{0});
    }
};

TEST_F(Output, EmptyTextHasSizeOneAndCopiesOneZero)
{
    AnswerVendor(Text(""));
    std::size_t size = 0;
    Require(KORO_System_GetVendorName(tree.system, nullptr, &size));
    EXPECT_EQ(size, 1u);

    char text[2] = {'a', 'b'};
    Require(KORO_System_GetVendorName(tree.system, text, &size));
    EXPECT_EQ(size, 1u);
    EXPECT_EQ(text[0], '\0');
    EXPECT_EQ(text[1], 'b');
}

TEST_F(Output, TextOfOneLessThanTheCapacityFits)
{
    AnswerVendor(Text("four"));
    char text[5] = {};
    std::size_t size = sizeof text;
    EXPECT_EQ(Outcome(KORO_System_GetVendorName(tree.system, text, &size)), Error{});
    EXPECT_STREQ(text, "four");
}

TEST_F(Output, OneCharacterMoreFailsAndLeavesTextAndSize)
{
    AnswerVendor(Text("fiver"));
    char text[5] = {'o', 'l', 'd', '!', '\0'};
    std::size_t size = sizeof text;
    EXPECT_EQ(
        Outcome(KORO_System_GetVendorName(tree.system, text, &size)),
        (Error{KORO_RETURN_CODE_BUFFER_TOO_SMALL, "vendorName is too small!"}));
    EXPECT_STREQ(text, "old!");
    EXPECT_EQ(size, sizeof text);
}

TEST_F(Output, LargerBufferGetsTheTextAndTheBytesWritten)
{
    AnswerVendor(Text("ab"));
    char text[6] = {'u', 'v', 'w', 'x', 'y', 'z'};
    std::size_t size = sizeof text;
    Require(KORO_System_GetVendorName(tree.system, text, &size));
    EXPECT_EQ(size, 3u);
    EXPECT_EQ(std::string(text, sizeof text), std::string("ab\0xyz", 6));
}

TEST_F(Output, NullSizeWithANullBufferIsNoSizeQuery)
{
    EXPECT_EQ(
        Outcome(KORO_System_GetVendorName(tree.system, nullptr, nullptr)),
        (Error{KORO_RETURN_CODE_INVALID_ARGUMENT, "vendorNameSize is not a valid pointer!"}));
}

TEST_F(Output, EmptyByteArrayWithSizeZeroIsASuccess)
{
    const auto event = TakeEvent("");
    std::uint8_t bytes[1] = {0x5a};
    std::size_t size = 0;
    EXPECT_EQ(Outcome(KORO_Event_GetRawData(event, bytes, &size)), Error{});
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(bytes[0], 0x5a);
}

TEST_F(Output, GetterWithANullOutputStillRunsItsQuery)
{
    producer->ClearJournal();
    EXPECT_EQ(
        Outcome(KORO_Device_GetAccessStatus(tree.device, nullptr)),
        (Error{KORO_RETURN_CODE_INVALID_ARGUMENT, "accessStatus is not a valid pointer!"}));
    EXPECT_TRUE(WasAskedFor("DevGetInfo"));
}

TEST_F(Output, FailureOfTheQueryGoesBeforeTheNullOutput)
{
    producer->SetInfo("DevGetInfo", GenTL::DEVICE_INFO_ACCESS_STATUS, scripted::Failing(GenTL::GC_ERR_NOT_AVAILABLE));
    EXPECT_NE(KORO_Device_GetAccessStatus(tree.device, nullptr), KORO_RETURN_CODE_INVALID_ARGUMENT);
    EXPECT_NE(LastError().text.find("DevGetInfo"), std::string::npos);
}

TEST_F(Output, InfoSizeQueryOnADeadHandleGivesInvalidHandle)
{
    std::int32_t type = 0;
    std::size_t size = 0;
    EXPECT_EQ(
        Outcome(KORO_PortURL_GetInfo(nullptr, KORO_URL_INFO_URL, &type, nullptr, &size)),
        (Error{KORO_RETURN_CODE_INVALID_HANDLE, "portUrlHandle is invalid!"}));
}

TEST_F(Output, InfoWithANullDataTypeDoesNotAskTheProducer)
{
    producer->ClearJournal();
    std::size_t size = 0;
    EXPECT_EQ(
        Outcome(KORO_System_GetInfo(tree.system, KORO_TL_INFO_VENDOR, nullptr, nullptr, &size)),
        (Error{KORO_RETURN_CODE_INVALID_ARGUMENT, "infoDataType is not a valid pointer!"}));
    EXPECT_FALSE(WasAskedFor("TLGetInfo"));
}

TEST_F(Output, InfoDataTypeIsValidEvenWhenTheBufferIsTooSmall)
{
    std::int32_t type = 0;
    std::uint8_t info[1] = {0x5a};
    std::size_t size = sizeof info;
    EXPECT_EQ(
        Outcome(KORO_System_GetInfo(tree.system, KORO_TL_INFO_VENDOR, &type, info, &size)),
        (Error{KORO_RETURN_CODE_BUFFER_TOO_SMALL, "info is too small!"}));
    EXPECT_EQ(type, KORO_INFO_DATATYPE_STRING);
    EXPECT_EQ(info[0], 0x5a);
    EXPECT_EQ(size, sizeof info);
}

TEST_F(Output, InfoDataTypeIsValidEvenWithoutASizePointer)
{
    std::int32_t type = 0;
    EXPECT_EQ(
        Outcome(KORO_System_GetInfo(tree.system, KORO_TL_INFO_VENDOR, &type, nullptr, nullptr)),
        (Error{KORO_RETURN_CODE_INVALID_ARGUMENT, "infoSize is not a valid pointer!"}));
    EXPECT_EQ(type, KORO_INFO_DATATYPE_STRING);
}

TEST_F(Output, InfoDeliversTheBytesAsTheProducerGaveThem)
{
    AnswerVendor(scripted::Bytes(GenTL::INFO_DATATYPE_BUFFER, std::string("\1\0\2", 3)));
    std::int32_t type = 0;
    std::uint8_t info[4] = {};
    std::size_t size = sizeof info;
    Require(KORO_System_GetInfo(tree.system, KORO_TL_INFO_VENDOR, &type, info, &size));
    EXPECT_EQ(type, KORO_INFO_DATATYPE_BUFFER);
    EXPECT_EQ(std::vector<std::uint8_t>(info, info + size), (std::vector<std::uint8_t>{1, 0, 2}));
}

TEST_F(Output, ValueThatGrowsBetweenQueryAndFetchIsReportedAsTooSmall)
{
    AnswerVendor(Text("short"));
    std::size_t size = 0;
    Require(KORO_System_GetVendorName(tree.system, nullptr, &size));
    AnswerVendor(Text("longer"));
    std::string text(size, ' ');
    EXPECT_EQ(
        Outcome(KORO_System_GetVendorName(tree.system, text.data(), &size)),
        (Error{KORO_RETURN_CODE_BUFFER_TOO_SMALL, "vendorName is too small!"}));
}

} // namespace
