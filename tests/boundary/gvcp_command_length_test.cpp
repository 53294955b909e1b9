// The GVCP command length test that each opening runs: what it writes, where it ends, when it is left out.
#include "tests/boundary/described_camera.h"

#include <gmock/gmock.h>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

using testing::HasSubstr;

using Strings = std::vector<std::string>;

const std::string testName = "GevGVCPCMDLengthTest";
const std::string lengthName = "GevGVCPCMDLength";

std::string TestRegister(std::size_t length = 0x1000)
{
    return "<Register Name=\"" + testName + "\"><Address>4096</Address><Length>" + std::to_string(length) +
           "</Length><AccessMode>WO</AccessMode><pPort>Device</pPort></Register>";
}

const std::string limitRegister = IntRegister(lengthName, 0, "<Cachable>NoCache</Cachable>");

// Of the transport layer, between these limits.
std::string LengthNode(int minimum = 0, int maximum = 1'000'000)
{
    return "<Integer Name=\"" + lengthName + "\"><pValue>LengthReg</pValue><Min>" + std::to_string(minimum) +
           "</Min><Max>" + std::to_string(maximum) +
           "</Max></Integer>"
           "<IntReg Name=\"LengthReg\"><Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"
           "<pPort>DevicePort</pPort><Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
}

class GVCPCommandLength : public DescribedCamera
{
protected:
    static constexpr std::uint32_t lengthBefore = 7;

    GVCPCommandLength()
    {
        Require(KORO_Device_Destruct(tree.device));
        DescribeRemote(TestRegister() + limitRegister);
        DescribeLocal(LengthNode());
        SetLocalLength(lengthBefore);
        producer->Edit(
            [](scripted::Tree& edited) { RemotePort(edited).registers[0x1000] = std::string(0x11000, 'x'); });
    }

    static scripted::Port& LocalPort(scripted::Tree& edited) { return edited.interfaces[0]->devices[0]->port; }

    void DescribeRemote(const std::string& nodes) const
    {
        producer->Edit([&](scripted::Tree& edited) { DescribePort(RemotePort(edited), DescriptionOf(nodes)); });
    }
    void DescribeLocal(const std::string& nodes) const
    {
        producer->Edit(
            [&](scripted::Tree& edited) { DescribePort(LocalPort(edited), DescriptionOf(nodes, "DevicePort")); });
    }
    void SetLimit(std::uint32_t limit) const { SetRegister(0, limit); }
    void SetLocalLength(std::uint32_t length) const
    {
        producer->Edit([&](scripted::Tree& edited) {
            for (std::size_t byte = 0; byte < sizeof length; ++byte)
                LocalPort(edited).registers[0].at(byte) = static_cast<char>(length >> (8 * byte));
        });
    }
    std::uint32_t LocalLength() const
    {
        std::uint32_t length = 0;
        producer->Edit([&](scripted::Tree& edited) {
            for (std::size_t byte = 0; byte < sizeof length; ++byte)
                length |= std::uint32_t{static_cast<std::uint8_t>(LocalPort(edited).registers[0].at(byte))}
                          << (8 * byte);
        });
        return length;
    }

    // The outcome; a device that opened is closed again.
    Error Open()
    {
        producer->ClearJournal();
        const Error outcome =
            Outcome(KORO_DeviceDescriptor_OpenDevice(tree.deviceDescriptor, OpenTree::exclusiveAccess, &tree.device));
        if (outcome == Error{}) Require(KORO_Device_Destruct(tree.device));
        return outcome;
    }
    Strings Writes() const { return CallsOf(producer->Journal(), {"GCWritePort"}); }

    static std::string Test(std::size_t length)
    {
        return "GCWritePort(if0-dev0-remote, 4096, " + std::to_string(length) + ")";
    }
    const std::string change = "GCWritePort(if0-dev0, 0, 4)";

    void ExpectLeftOut()
    {
        SetLimit(2000);
        EXPECT_EQ(Open(), Error{});
        EXPECT_EQ(Writes(), Strings{});
        EXPECT_EQ(LocalLength(), lengthBefore);
    }
};

} // namespace

TEST_F(GVCPCommandLength, LimitBelowTheSecondLengthLeavesTheTransportLayerAlone)
{
    for (const std::uint32_t limit : {0u, 535u, 536u, 767u})
    {
        SCOPED_TRACE(limit);
        SetLimit(limit);
        EXPECT_EQ(Open(), Error{});
        EXPECT_EQ(Writes(), Strings{Test(536)});
        EXPECT_EQ(LocalLength(), lengthBefore);
    }
}

TEST_F(GVCPCommandLength, TransportLayerIsMovedAheadOfEachLength)
{
    SetLimit(768);
    EXPECT_EQ(Open(), Error{});
    EXPECT_EQ(Writes(), (Strings{Test(536), change, Test(768)}));
    EXPECT_EQ(LocalLength(), 804u);
}

TEST_F(GVCPCommandLength, LengthsGrowBy256ToTheLimit)
{
    SetLimit(1535);
    EXPECT_EQ(Open(), Error{});
    EXPECT_EQ(Writes(), (Strings{Test(536), change, Test(768), change, Test(1024), change, Test(1280)}));
    EXPECT_EQ(LocalLength(), 1316u);
}

TEST_F(GVCPCommandLength, BytesAreZerosInText)
{
    SetLimit(768);
    EXPECT_EQ(Open(), Error{});
    producer->Edit([](scripted::Tree& edited) {
        EXPECT_EQ(RemotePort(edited).registers[0x1000].substr(0, 769), std::string(768, '0') + 'x');
    });
}

TEST_F(GVCPCommandLength, FailureTakesTheTransportLayerBackToTheLastLengthThatPassed)
{
    SetLimit(4000);
    producer->AnswerAtCall("GCWritePort", 5, GenTL::GC_ERR_IO);
    EXPECT_EQ(Open(), Error{});
    EXPECT_EQ(Writes(), (Strings{Test(536), change, Test(768), change, Test(1024), change}));
    EXPECT_EQ(LocalLength(), 804u);
}

TEST_F(GVCPCommandLength, FailureOfTheSecondLengthGoesBackToTheFirst)
{
    SetLimit(4000);
    producer->AnswerAtCall("GCWritePort", 3, GenTL::GC_ERR_TIMEOUT);
    EXPECT_EQ(Open(), Error{});
    EXPECT_EQ(LocalLength(), 572u);
}

TEST_F(GVCPCommandLength, LimitThatShrankMeanwhileIsTheSmallerOne)
{
    SetLimit(4000);
    std::size_t writes = 0;
    producer->OnEntry("GCWritePort", [&] {
        if (++writes == 5) SetLimit(700);
    });
    producer->AnswerAtCall("GCWritePort", 5, GenTL::GC_ERR_IO);
    EXPECT_EQ(Open(), Error{});
    EXPECT_EQ(LocalLength(), 700u);
}

TEST_F(GVCPCommandLength, FailureOfTheFirstLengthChangesNothingAndTheDeviceOpens)
{
    SetLimit(4000);
    for (const auto code : {GenTL::GC_ERR_IO, GenTL::GC_ERR_TIMEOUT, GenTL::GC_ERR_ACCESS_DENIED, GenTL::GC_ERR_ABORT})
    {
        producer->AnswerAtCall("GCWritePort", 1, code);
        EXPECT_EQ(Open(), Error{}) << code;
        EXPECT_EQ(Writes(), Strings{Test(536)});
        EXPECT_EQ(LocalLength(), lengthBefore);
    }
}

TEST_F(GVCPCommandLength, LimitThatCannotBeReadIsAFailureLikeAnyOther)
{
    SetLimit(4000);
    producer->OnEntry("GCWritePort", [&] { producer->AnswerOnce("GCReadPort", GenTL::GC_ERR_IO); });
    EXPECT_EQ(Open(), Error{});
    EXPECT_EQ(Writes(), (Strings{Test(536), change}));
    EXPECT_EQ(LocalLength(), 572u);
}

TEST_F(GVCPCommandLength, RegisterThatIsShorterThanTheLimitEndsIt)
{
    DescribeRemote(TestRegister(1000) + limitRegister);
    SetLimit(4000);
    EXPECT_EQ(Open(), Error{});
    EXPECT_EQ(Writes(), (Strings{Test(536), change, Test(768), change, change}));
    EXPECT_EQ(LocalLength(), 804u);
}

TEST_F(GVCPCommandLength, LengthThatTheTransportLayerRefusesTakesTheStepBack)
{
    DescribeLocal(LengthNode(0, 900));
    SetLimit(4000);
    EXPECT_EQ(Open(), Error{});
    EXPECT_EQ(Writes(), (Strings{Test(536), change, Test(768), change}));
    EXPECT_EQ(LocalLength(), 804u);
}

TEST_F(GVCPCommandLength, TransportLayerThatCannotBeSetBackFailsTheOpening)
{
    DescribeLocal(LengthNode(600, 800));
    SetLimit(4000);
    const auto before = tree.device;
    const Error outcome = Open();
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_OUT_OF_RANGE);
    EXPECT_THAT(outcome.text, HasSubstr(lengthName));
    EXPECT_EQ(tree.device, before);
    EXPECT_EQ(CallsOf(producer->Journal(), {"DevClose"}), Strings{"DevClose(if0-dev0)"});
    EXPECT_EQ(producer->Open(), (Strings{"if0", "system"}));
    EXPECT_EQ(LocalLength(), lengthBefore);

    DescribeLocal(LengthNode());
    EXPECT_EQ(Open(), Error{});
}

TEST_F(GVCPCommandLength, LimitThatCannotBeReadAgainFailsTheOpening)
{
    SetLimit(4000);
    std::size_t writes = 0;
    producer->OnEntry("GCWritePort", [&] {
        if (++writes == 3) producer->Answer("GCReadPort", GenTL::GC_ERR_IO);
    });
    producer->AnswerAtCall("GCWritePort", 3, GenTL::GC_ERR_IO);
    const Error outcome = Open();
    EXPECT_EQ(outcome.code, KORO_RETURN_CODE_IO_ERROR);
    EXPECT_THAT(outcome.text, HasSubstr("GCReadPort"));
    EXPECT_EQ(producer->Open(), (Strings{"if0", "system"}));
}

TEST_F(GVCPCommandLength, WithoutOneOfTheThreeNodesItIsLeftOut)
{
    DescribeRemote(TestRegister());
    ExpectLeftOut();
    DescribeRemote(limitRegister);
    ExpectLeftOut();
    DescribeRemote(TestRegister() + limitRegister);
    DescribeLocal("");
    ExpectLeftOut();
}

TEST_F(GVCPCommandLength, NodeOfAnotherTypeLeavesItOut)
{
    DescribeRemote("<Category Name=\"" + testName + "\"/>" + limitRegister);
    ExpectLeftOut();
    DescribeRemote(TestRegister() + "<Float Name=\"" + lengthName + "\"><Value>4000</Value></Float>");
    ExpectLeftOut();
    DescribeRemote(TestRegister() + limitRegister);
    DescribeLocal("<Boolean Name=\"" + lengthName + "\"><Value>true</Value></Boolean>");
    ExpectLeftOut();
}

TEST_F(GVCPCommandLength, ModuleWithoutANodeMapLeavesItOut)
{
    producer->Edit([](scripted::Tree& edited) { RemotePort(edited).urls.clear(); });
    ExpectLeftOut();
    DescribeRemote(TestRegister() + limitRegister);
    producer->Edit([](scripted::Tree& edited) { LocalPort(edited).urls.clear(); });
    ExpectLeftOut();
}

TEST_F(GVCPCommandLength, DescriptionThatIsBrokenLeavesItOut)
{
    producer->Edit([](scripted::Tree& edited) { DescribePort(RemotePort(edited), "broken"); });
    ExpectLeftOut();
    DescribeRemote(TestRegister() + limitRegister);
    producer->Edit([](scripted::Tree& edited) { DescribePort(LocalPort(edited), "broken"); });
    ExpectLeftOut();
    DescribeLocal(LengthNode());
    SetLimit(768);
    EXPECT_EQ(Open(), Error{});
    EXPECT_EQ(LocalLength(), 804u);
}

TEST_F(GVCPCommandLength, EmptyDescriptionLeavesItOutAndTheCameraStreams)
{
    producer->Edit([](scripted::Tree& edited) { DescribePort(RemotePort(edited), ""); });
    ExpectLeftOut();

    tree.device =
        Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, tree.deviceDescriptor, OpenTree::exclusiveAccess);
    tree.streamDescriptor =
        Get<KORO_DataStreamDescriptorHandle>(KORO_Device_GetDataStream, tree.device, std::size_t{0});
    tree.stream = Get<KORO_DataStreamHandle>(KORO_DataStreamDescriptor_OpenDataStream, tree.streamDescriptor);
    EXPECT_EQ(Outcome(KORO_DataStream_StartAcquisitionInfinite(tree.stream, KORO_ACQ_START_FLAGS_DEFAULT)), Error{});
}

TEST_F(GVCPCommandLength, DescriptionsThatCannotBeFetchedLeaveItOut)
{
    for (const auto* function : {"GCGetNumPortURLs", "GCGetPortURLInfo"})
    {
        SCOPED_TRACE(function);
        for (const auto code : {GenTL::GC_ERR_NOT_IMPLEMENTED, GenTL::GC_ERR_IO, GenTL::GC_ERR_ACCESS_DENIED})
        {
            producer->Answer(function, code);
            ExpectLeftOut();
            producer->AnswerAsUsual(function);
        }
    }
    producer->OnEntry("GCGetNumPortURLs", [] { throw 5; });
    ExpectLeftOut();
}

TEST_F(GVCPCommandLength, OnlyTheFirstMapOfEachCounts)
{
    producer.Folder().MakeFile("tl_device_dbg.xml", DescriptionOf("", "DevicePort"));
    ExpectLeftOut();
    producer.Folder().MakeFile("tl_device_dbg.xml", DescriptionOf(LengthNode(), "DevicePort"));
    producer.Folder().MakeFile("tl_remotedevice_dbg.xml", DescriptionOf(""));
    ExpectLeftOut();
    producer.Folder().MakeFile("tl_remotedevice_dbg.xml", DescriptionOf(TestRegister() + limitRegister));
    SetLimit(768);
    EXPECT_EQ(Open(), Error{});
    EXPECT_EQ(LocalLength(), 804u);
}

TEST_F(GVCPCommandLength, ClaimBeyondEveryDatagramEndsAtTheLongestOne)
{
    DescribeRemote(TestRegister(0x11000) + limitRegister);
    SetLimit(0xffffffffu);
    EXPECT_EQ(Open(), Error{});
    EXPECT_EQ(Writes().back(), Test(65280));
    EXPECT_EQ(LocalLength(), 65316u);
}

TEST_F(GVCPCommandLength, EachOpeningRunsItAndFailuresLeaveNoTraceInTheLastError)
{
    SetLimit(1024);
    EXPECT_EQ(Outcome(KORO_Device_Destruct(nullptr)), InvalidHandle("deviceHandle"));
    for (int opening = 0; opening < 3; ++opening)
    {
        SetLocalLength(lengthBefore);
        producer->AnswerAtCall("GCWritePort", 5, GenTL::GC_ERR_IO);
        EXPECT_EQ(Open(), Error{});
        EXPECT_EQ(LocalLength(), 804u);
    }
    EXPECT_EQ(LastError(), InvalidHandle("deviceHandle"));
}

} // namespace koro::test
