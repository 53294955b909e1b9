// The frame around the entry points: starts, versions, watches, last error.
#include "producers/kit/failure.h"
#include "producers/kit/gentl.h"
#include "tests/unit/kit/bare_producer.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace
{
using namespace GenTL;

struct LastError
{
    GC_ERROR code = GC_ERR_SUCCESS;
    std::string text;
};

LastError TheLastError()
{
    LastError error;
    char text[512] = {};
    size_t size = sizeof text;
    EXPECT_EQ(GCGetLastError(&error.code, text, &size), GC_ERR_SUCCESS);
    error.text = text;
    return error;
}

class KitCalls : public testing::Test
{
protected:
    ~KitCalls() override
    {
        while (GCCloseLib() == GC_ERR_SUCCESS)
        {}
        kit_test::Next() = {};
    }

    static TL_HANDLE Open()
    {
        TL_HANDLE system = nullptr;
        EXPECT_EQ(TLOpen(&system), GC_ERR_SUCCESS);
        return system;
    }
};

TEST_F(KitCalls, AreRefusedBeforeTheStartWithAText)
{
    TL_HANDLE system = nullptr;
    EXPECT_EQ(TLOpen(&system), GC_ERR_NOT_INITIALIZED);
    EXPECT_EQ(TheLastError().text, "TLOpen: GCInitLib was not called");
}

TEST_F(KitCalls, ReportWhyTheProducerCouldNotStart)
{
    kit_test::Next().cannotStart = true;
    EXPECT_EQ(GCInitLib(), GC_ERR_IO);
    const LastError error = TheLastError();
    EXPECT_EQ(error.code, GC_ERR_IO);
    EXPECT_EQ(error.text, "GCInitLib: no hardware");
    EXPECT_EQ(GCCloseLib(), GC_ERR_NOT_INITIALIZED);
}

TEST_F(KitCalls, CountStarts)
{
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
    EXPECT_NE(Open(), nullptr);
    EXPECT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(GCCloseLib(), GC_ERR_NOT_INITIALIZED);
}

TEST_F(KitCalls, RefuseASecondStartOfAStrictProducer)
{
    kit_test::Next().initIsStrict = true;
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(GCInitLib(), GC_ERR_RESOURCE_IN_USE);
}

TEST_F(KitCalls, CloseWhatIsOpenWithTheProducer)
{
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    const TL_HANDLE system = Open();
    ASSERT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(TLClose(system), GC_ERR_INVALID_HANDLE);
    EXPECT_NE(Open(), system);
}

TEST_F(KitCalls, OpenTheSystemOnceAtATime)
{
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    const TL_HANDLE system = Open();
    TL_HANDLE second = nullptr;
    EXPECT_EQ(TLOpen(&second), GC_ERR_RESOURCE_IN_USE);
    EXPECT_EQ(TLClose(system), GC_ERR_SUCCESS);
    EXPECT_NE(Open(), nullptr);
}

TEST_F(KitCalls, HideFunctionsThatCameAfterTheClaimedVersion)
{
    kit_test::Next().claimed = {1, 4};
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    uint32_t number = 0;
    EXPECT_EQ(DSGetNumBufferParts(nullptr, nullptr, &number), GC_ERR_NOT_IMPLEMENTED);
    EXPECT_EQ(TheLastError().text, "DSGetNumBufferParts: the function came with GenTL 1.5, the producer claims 1.4");
    EXPECT_EQ(DSGetNumFlows(nullptr, &number), GC_ERR_NOT_IMPLEMENTED);
    // Older ones look at their handles.
    TL_HANDLE parent = nullptr;
    EXPECT_EQ(IFGetParentTL(nullptr, &parent), GC_ERR_INVALID_HANDLE);
    EXPECT_EQ(GCGetNumPortURLs(nullptr, &number), GC_ERR_INVALID_HANDLE);
}

TEST_F(KitCalls, HideAllNewerFunctionsOfAProducerOfVersionOneZero)
{
    kit_test::Next().claimed = {1, 0};
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    uint32_t number = 0;
    EXPECT_EQ(GCGetNumPortURLs(nullptr, &number), GC_ERR_NOT_IMPLEMENTED);
    size_t size = 0;
    EXPECT_EQ(GCGetPortURL(nullptr, nullptr, &size), GC_ERR_INVALID_HANDLE);
}

TEST_F(KitCalls, AnswerNewerFunctionsOfAProducerThatWantsIt)
{
    kit_test::Next().claimed = {1, 4};
    kit_test::Next().answersNewerFunctions = true;
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    uint32_t number = 0;
    EXPECT_EQ(DSGetNumBufferParts(nullptr, nullptr, &number), GC_ERR_INVALID_HANDLE);
}

GC_ERROR MajorVersion(uint32_t& major)
{
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    size_t size = sizeof major;
    return GCGetInfo(TL_INFO_GENTL_VER_MAJOR, &type, &major, &size);
}

TEST_F(KitCalls, AnswerVersionQueriesFromVersionOneFiveOn)
{
    uint32_t major = 0;
    kit_test::Next().claimed = {1, 4};
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(MajorVersion(major), GC_ERR_NOT_IMPLEMENTED);
    ASSERT_EQ(GCCloseLib(), GC_ERR_SUCCESS);
    kit_test::Next().claimed = {1, 5};
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(MajorVersion(major), GC_ERR_SUCCESS);
    EXPECT_EQ(major, 1U);
}

TEST_F(KitCalls, KeepTheLastErrorOfEachThreadApart)
{
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    ASSERT_EQ(TLClose(nullptr), GC_ERR_INVALID_HANDLE);
    std::thread([] {
        const LastError error = TheLastError();
        EXPECT_EQ(error.code, GC_ERR_SUCCESS);
        EXPECT_EQ(error.text, "No Error");
    }).join();
    EXPECT_EQ(TheLastError().code, GC_ERR_INVALID_HANDLE);
}

// Fails each opening with one code and reports another, and lies about the vendor.
class Liar final : public koro::kit::CallWatch
{
public:
    void OnCall(const char* function) override
    {
        if (std::string(function) == "TLOpen") throw Lie();
        if (std::string(function) == "TLClose") throw 7;
    }
    void Answer(
        const char*, std::int32_t command, const koro::kit::InfoOutput& output,
        const std::function<koro::kit::InfoValue()>& truth) override
    {
        output.Write(command == TL_INFO_VENDOR ? koro::kit::InfoValue::Text("nobody") : truth());
    }

private:
    class Lie final : public koro::kit::Failure
    {
    public:
        Lie() : Failure(GC_ERR_BUSY, "busy") {}
        GC_ERROR RecordedCode() const noexcept override { return GC_ERR_IO; }
    };
};

TEST_F(KitCalls, AskTheWatchFirst)
{
    kit_test::Next().watch = std::make_shared<Liar>();
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    TL_HANDLE system = nullptr;
    EXPECT_EQ(TLOpen(&system), GC_ERR_BUSY);
    EXPECT_EQ(TheLastError().code, GC_ERR_IO);
    char text[16];
    size_t size = sizeof text;
    INFO_DATATYPE type = INFO_DATATYPE_UNKNOWN;
    ASSERT_EQ(GCGetInfo(TL_INFO_VENDOR, &type, text, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(text, "nobody");
    size = sizeof text;
    ASSERT_EQ(GCGetInfo(TL_INFO_MODEL, &type, text, &size), GC_ERR_SUCCESS);
    EXPECT_STREQ(text, "model");
}

TEST_F(KitCalls, LetNoExceptionOut)
{
    kit_test::Next().watch = std::make_shared<Liar>();
    ASSERT_EQ(GCInitLib(), GC_ERR_SUCCESS);
    EXPECT_EQ(TLClose(nullptr), GC_ERR_ERROR);
    EXPECT_EQ(TheLastError().text, "TLClose: an unknown exception");
}

} // namespace
