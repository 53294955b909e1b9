// The order in which the C++ face starts and stops a camera, and the size of its frames.
#include "tests/boundary/described_camera.h"
#include "tests/tool/koro_tree.h"
#include <koro/koro.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <utility>

namespace
{

using koro::test::CallsOf;
using koro::test::CodeOf;
using koro::test::IntRegister;
using koro::test::ScriptedProducer;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string lockNode = IntRegister("TLParamsLocked", 4);
const std::string commandNodes =
    IntRegister("StartRegister", 8) + IntRegister("StopRegister", 12) +
    "<Command Name=\"AcquisitionStart\"><pValue>StartRegister</pValue><CommandValue>1</CommandValue></Command>"
    "<Command Name=\"AcquisitionStop\"><pValue>StopRegister</pValue><CommandValue>1</CommandValue></Command>";

// A scripted camera with these nodes, open down to its stream.
struct StreamingCamera
{
    ScriptedProducer producer;
    koro::test::Tree tree;
    koro::NodeMap nodes;

    explicit StreamingCamera(const std::string& description)
        : tree(Described(producer, description)), nodes(tree.device.RemoteDevice().NodeMap())
    {
        producer->ClearJournal();
    }

    // The calls of the stream and the writes to the camera's registers, without sizes and flags.
    std::vector<std::string> Told() const
    {
        std::vector<std::string> told;
        for (const std::string& line :
             CallsOf(producer->Journal(), {"DSStartAcquisition", "DSStopAcquisition", "GCWritePort"}))
        {
            if (line.rfind("DS", 0) == 0)
                told.push_back(line.substr(0, line.find('(')));
            else if (line.find("remote, 4,") != line.npos || line.find("remote, 0x4,") != line.npos)
                told.push_back("TLParamsLocked");
            else if (line.find("remote, 8,") != line.npos || line.find("remote, 0x8,") != line.npos)
                told.push_back("AcquisitionStart");
            else if (line.find("remote, 12,") != line.npos || line.find("remote, 0xC,") != line.npos)
                told.push_back("AcquisitionStop");
            else
                told.push_back(line);
        }
        return told;
    }

    static const std::string& Described(const ScriptedProducer& producer, const std::string& nodes)
    {
        producer->Edit([&](scripted::Tree& edited) {
            koro::test::DescribePort(edited.interfaces[0]->devices[0]->remotePort, koro::test::DescriptionOf(nodes));
        });
        return producer.Path();
    }
};

TEST(KoroAcquisition, StreamStartsFirstAndTheCameraStopsFirst)
{
    StreamingCamera camera(lockNode + commandNodes);
    koro::Acquisition acquisition(camera.tree.stream, camera.nodes);
    EXPECT_THAT(camera.Told(), ElementsAre("DSStartAcquisition", "TLParamsLocked", "AcquisitionStart"));
    EXPECT_EQ(camera.nodes.Integer("TLParamsLocked").Value(), 1);
    camera.producer->ClearJournal();
    acquisition.Stop();
    EXPECT_THAT(camera.Told(), ElementsAre("AcquisitionStop", "DSStopAcquisition", "TLParamsLocked"));
    EXPECT_EQ(camera.nodes.Integer("TLParamsLocked").Value(), 0);
    camera.producer->ClearJournal();
    acquisition.Stop();
    EXPECT_THAT(camera.Told(), IsEmpty());
}

TEST(KoroAcquisition, EndStopsToo)
{
    StreamingCamera camera(lockNode + commandNodes);
    {
        const koro::Acquisition acquisition(camera.tree.stream, camera.nodes, 3);
        camera.producer->ClearJournal();
    }
    EXPECT_THAT(camera.Told(), ElementsAre("AcquisitionStop", "DSStopAcquisition", "TLParamsLocked"));
}

TEST(KoroAcquisition, CameraWithoutTheFeaturesStreamsWithoutThem)
{
    const std::string absent = "<Integer Name=\"Zero\"><Value>0</Value></Integer>"
                               "<Integer Name=\"TLParamsLocked\"><ImposedAccessMode>RO</ImposedAccessMode>"
                               "<Value>0</Value></Integer>"
                               "<Command Name=\"AcquisitionStart\"><pIsImplemented>Zero</pIsImplemented>"
                               "<pValue>Zero</pValue><CommandValue>1</CommandValue></Command>";
    for (const std::string& nodes : {std::string(), absent})
    {
        StreamingCamera camera(nodes);
        koro::Acquisition(camera.tree.stream, camera.nodes).Stop();
        EXPECT_THAT(camera.Told(), ElementsAre("DSStartAcquisition", "DSStopAcquisition"));
    }
}

TEST(KoroAcquisition, EmptyNodeMapLeavesTheCameraAlone)
{
    StreamingCamera camera(lockNode + commandNodes);
    koro::Acquisition(camera.tree.stream, koro::NodeMap()).Stop();
    EXPECT_THAT(camera.Told(), ElementsAre("DSStartAcquisition", "DSStopAcquisition"));
}

TEST(KoroAcquisition, FailedStartTakesBackWhatWasDone)
{
    StreamingCamera camera(lockNode + commandNodes);
    // The second write is that of AcquisitionStart.
    camera.producer->AnswerAtCall("GCWritePort", 2, GenTL::GC_ERR_IO);
    EXPECT_EQ(CodeOf([&] { koro::Acquisition(camera.tree.stream, camera.nodes); }), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_THAT(
        camera.Told(),
        ElementsAre("DSStartAcquisition", "TLParamsLocked", "AcquisitionStart", "DSStopAcquisition", "TLParamsLocked"));
    EXPECT_FALSE(camera.tree.stream.IsGrabbing());
    EXPECT_EQ(camera.nodes.Integer("TLParamsLocked").Value(), 0);
}

TEST(KoroAcquisition, StreamThatDoesNotStartLeavesTheCameraAlone)
{
    StreamingCamera camera(lockNode + commandNodes);
    camera.producer->AnswerOnce("DSStartAcquisition", GenTL::GC_ERR_IO);
    EXPECT_EQ(CodeOf([&] { koro::Acquisition(camera.tree.stream, camera.nodes); }), KORO_RETURN_CODE_IO_ERROR);
    EXPECT_THAT(camera.Told(), ElementsAre("DSStartAcquisition"));
}

TEST(KoroAcquisition, EveryStepOfTheStopIsTriedAndTheFirstFailureTold)
{
    StreamingCamera camera(lockNode + commandNodes);
    koro::Acquisition acquisition(camera.tree.stream, camera.nodes);
    camera.producer->ClearJournal();
    camera.producer->AnswerAtCall("GCWritePort", 1, GenTL::GC_ERR_ACCESS_DENIED);
    camera.producer->AnswerOnce("DSStopAcquisition", GenTL::GC_ERR_IO);
    EXPECT_EQ(CodeOf([&] { acquisition.Stop(); }), KORO_RETURN_CODE_BAD_ACCESS);
    EXPECT_THAT(camera.Told(), ElementsAre("AcquisitionStop", "DSStopAcquisition", "TLParamsLocked"));
    EXPECT_EQ(camera.nodes.Integer("TLParamsLocked").Value(), 0);
}

TEST(KoroAcquisition, StreamMayMoveMeanwhile)
{
    StreamingCamera camera(lockNode + commandNodes);
    std::optional<koro::DataStream> first(std::move(camera.tree.stream));
    koro::Acquisition acquisition(*first, camera.nodes);
    camera.tree.stream = std::move(*first);
    first.reset();
    camera.producer->ClearJournal();
    acquisition.Stop();
    EXPECT_THAT(camera.Told(), ElementsAre("AcquisitionStop", "DSStopAcquisition", "TLParamsLocked"));
}

TEST(KoroAcquisition, ReasonsWhyNothingCameAreFoundByAsking)
{
    StreamingCamera camera(lockNode + commandNodes);
    const koro::RemoteDevice remote = camera.tree.device.RemoteDevice();
    const koro::DataStream& stream = camera.tree.stream;
    EXPECT_EQ(koro::WhyNoFrame(stream, remote), koro::NoFrameReason::NotStarted);
    const koro::Acquisition acquisition(stream, camera.nodes);
    EXPECT_EQ(koro::WhyNoFrame(stream, remote), koro::NoFrameReason::NothingQueued);
    stream.QueueBuffer(stream.AllocAndAnnounceBuffer(16));
    EXPECT_EQ(koro::WhyNoFrame(stream, remote), koro::NoFrameReason::NoFrameSent);
    for (const auto dead : {GenTL::GC_ERR_IO, GenTL::GC_ERR_TIMEOUT})
    {
        camera.producer->AnswerOnce("GCReadPort", dead);
        EXPECT_EQ(koro::WhyNoFrame(stream, remote), koro::NoFrameReason::CameraGone);
    }
    camera.producer->AnswerOnce("GCReadPort", GenTL::GC_ERR_INVALID_ADDRESS);
    EXPECT_EQ(koro::WhyNoFrame(stream, remote), koro::NoFrameReason::NoFrameSent);
    EXPECT_STREQ(koro::TextOf(koro::NoFrameReason::NothingQueued), "No buffer is queued.");
}

// The stream of the scripted camera says how large a frame is; its camera may say something else.
class FrameSize : public testing::Test
{
protected:
    static size_t Of(const std::string& nodes, bool streamDefines, bool streamTells = true)
    {
        ScriptedProducer producer;
        koro::test::Tree tree(StreamingCamera::Described(producer, nodes));
        producer->SetInfo("DSGetInfo", GenTL::STREAM_INFO_DEFINES_PAYLOADSIZE, scripted::Bool8(streamDefines));
        producer->SetInfo(
            "DSGetInfo", GenTL::STREAM_INFO_PAYLOAD_SIZE,
            streamTells ? scripted::Size(111) : scripted::Failing(GenTL::GC_ERR_IO));
        return koro::FrameSize(tree.stream, tree.device.RemoteDevice().NodeMap());
    }
    static std::string Node(const std::string& value)
    {
        return "<Integer Name=\"PayloadSize\"><Value>" + value + "</Value></Integer>";
    }
};

TEST_F(FrameSize, IsTheStreamsWhereItDefinesOne)
{
    EXPECT_EQ(Of(Node("222"), true), 111u);
}

TEST_F(FrameSize, IsTheNodesWhereTheStreamDoesNot)
{
    EXPECT_EQ(Of(Node("222"), false), 222u);
    EXPECT_EQ(Of(Node("222"), false, false), 222u);
}

TEST_F(FrameSize, IsTheNodesWhereTheStreamDefinesOneAndDoesNotAnswer)
{
    EXPECT_EQ(Of(Node("222"), true, false), 222u);
}

TEST_F(FrameSize, IsTheStreamsWhereTheCameraHasNoSuchNode)
{
    EXPECT_EQ(Of("", false), 111u);
    EXPECT_EQ(Of("<String Name=\"PayloadSize\"><Value>x</Value></String>", false), 111u);
    EXPECT_EQ(CodeOf([] { Of("", false, false); }), KORO_RETURN_CODE_IO_ERROR);
}

TEST_F(FrameSize, ThatIsNegativeIsRefused)
{
    EXPECT_EQ(CodeOf([] { Of(Node("-1"), false); }), KORO_RETURN_CODE_ERROR);
}

} // namespace
