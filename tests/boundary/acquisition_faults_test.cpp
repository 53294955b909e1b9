// Every function of the producer that an export of acquisition or events reaches, failing with every code of the
// standard: return code and whole text at the export, nothing left behind, and the stream usable afterwards.
#include "tests/boundary/stream_test.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>

namespace koro::test
{

namespace
{

constexpr const char* streamID = "if0-dev0-stream0";

// What a row works on.
struct Scene
{
    ScriptedProducer producer;
    KoroLibrary library;
    OpenTree tree{producer.Path()};
    KORO_EventSupportingModuleHandle module =
        Get<KORO_EventSupportingModuleHandle>(KORO_DataStream_ToEventSupportingModule, tree.stream);
    std::array<char, 8> memory{};
    KORO_BufferHandle buffer = nullptr;
    KORO_EventControllerHandle controller = nullptr;
    KORO_EventHandle event = nullptr;
    std::uint64_t number = 0;
    std::size_t size = 0;
};

using Act = KORO_ReturnCode (*)(Scene&);

struct Row
{
    std::string name;
    const char* function;
    Act act;
    void (*prepare)(Scene&) = [](Scene&) {};
    std::optional<InfoQuery> query{};
    std::optional<std::pair<GenTL::GC_ERROR, KORO_ReturnCode>> special{}; // a code that the rule leaves out
    Error ofSuccessWithoutOutput{}; // what becomes of a success that writes nothing
    Error ofSuccess{};

    std::uint64_t Calls() const { return query ? 2 : 1; }

    Error Failure(const ProducerError& error) const
    {
        if (query) return InfoFailure(*query, error);
        auto failure = CallFailure(function, error);
        if (special && special->first == error.code) failure.code = special->second;
        return failure;
    }
};

std::ostream& operator<<(std::ostream& stream, const Row& row)
{
    return stream << row.name;
}

void Announce(Scene& scene)
{
    scene.buffer = Get<KORO_BufferHandle>(
        KORO_DataStream_AllocAndAnnounceBuffer, scene.tree.stream, std::size_t{8}, static_cast<void*>(nullptr));
}
void Start(Scene& scene)
{
    Require(KORO_DataStream_StartAcquisitionInfinite(scene.tree.stream, 0));
}
void StartAndDeliver(Scene& scene)
{
    Announce(scene);
    Require(KORO_DataStream_QueueBuffer(scene.tree.stream, scene.buffer));
    Start(scene);
    if (!scene.producer->Deliver(streamID)) throw std::runtime_error("nothing was delivered");
}
void RegisterStreamsEvent(Scene& scene)
{
    Require(KORO_DataStream_KillWait(scene.tree.stream));
}
void EnableEvents(Scene& scene)
{
    scene.controller =
        Get<KORO_EventControllerHandle>(KORO_EventSupportingModule_EnableEvents, scene.module, std::int32_t{5});
}
void EnableAndFire(Scene& scene)
{
    EnableEvents(scene);
    if (!scene.producer->Fire(streamID, GenTL::EVENT_MODULE, "block")) throw std::runtime_error("nobody listens");
}
void TakeEvent(Scene& scene)
{
    EnableAndFire(scene);
    scene.event = Get<KORO_EventHandle>(KORO_EventController_WaitForEvent, scene.controller, std::uint64_t{0});
}

KORO_ReturnCode StartInfinite(Scene& scene)
{
    return KORO_DataStream_StartAcquisitionInfinite(scene.tree.stream, 0);
}
KORO_ReturnCode Wait(Scene& scene)
{
    return KORO_DataStream_WaitForFinishedBuffer(scene.tree.stream, 0, &scene.buffer);
}
KORO_ReturnCode Kill(Scene& scene)
{
    return KORO_DataStream_KillWait(scene.tree.stream);
}
KORO_ReturnCode FlushKills(Scene& scene)
{
    return KORO_DataStream_FlushPendingKillWaits(scene.tree.stream);
}
KORO_ReturnCode Enable(Scene& scene)
{
    return KORO_EventSupportingModule_EnableEvents(scene.module, 5, &scene.controller);
}
KORO_ReturnCode WaitForEvent(Scene& scene)
{
    return KORO_EventController_WaitForEvent(scene.controller, 0, &scene.event);
}

const auto endsAsTimeout = std::pair{GenTL::GC_ERR_TIMEOUT, KORO_ReturnCode{KORO_RETURN_CODE_TIMEOUT}};
const auto endsAsBadAlloc = std::pair{GenTL::GC_ERR_OUT_OF_MEMORY, KORO_ReturnCode{KORO_RETURN_CODE_BAD_ALLOC}};
const Error deadEvent = InfoFailure({"EventGetInfo", 3, "EVENT_SIZE_MAX"}, ProducerErrorOf(-1006));

const std::vector<Row> callRows = {
    {"RegisterAtStart", "GCRegisterEvent", StartInfinite},
    {"RegisterAtWait", "GCRegisterEvent", Wait, [](Scene&) {}, {}, {}, deadEvent, timedOut},
    {"RegisterAtKill",
     "GCRegisterEvent",
     Kill,
     [](Scene&) {},
     {},
     {},
     CallFailure("EventKill", ProducerErrorOf(-1006))},
    {"RegisterEvents", "GCRegisterEvent", Enable},
    {"UnregisterStreamsEvent",
     "GCUnregisterEvent",
     FlushKills,
     RegisterStreamsEvent,
     {},
     {},
     CallFailure("GCRegisterEvent", ProducerErrorOf(-1004))},
    {"UnregisterEvents",
     "GCUnregisterEvent",
     [](Scene& scene) { return KORO_EventController_FlushPendingKillWaits(scene.controller); },
     EnableEvents,
     {},
     {},
     CallFailure("GCRegisterEvent", ProducerErrorOf(-1004))},
    {"Start", "DSStartAcquisition", StartInfinite},
    {"StartCounted", "DSStartAcquisition",
     [](Scene& scene) { return KORO_DataStream_StartAcquisition(scene.tree.stream, 0, 7); }},
    {"Stop", "DSStopAcquisition", [](Scene& scene) { return KORO_DataStream_StopAcquisition(scene.tree.stream, 0); },
     Start},
    {"Flush", "DSFlushQueue", [](Scene& scene) { return KORO_DataStream_Flush(scene.tree.stream, 4); }},
    {"Announce", "DSAnnounceBuffer",
     [](Scene& scene) {
         return KORO_DataStream_AnnounceBuffer(
             scene.tree.stream, scene.memory.data(), 8, nullptr, nullptr, nullptr, &scene.buffer);
     }},
    {"Alloc",
     "DSAllocAndAnnounceBuffer",
     [](Scene& scene) { return KORO_DataStream_AllocAndAnnounceBuffer(scene.tree.stream, 8, nullptr, &scene.buffer); },
     [](Scene&) {},
     {},
     endsAsBadAlloc},
    {"Queue", "DSQueueBuffer",
     [](Scene& scene) { return KORO_DataStream_QueueBuffer(scene.tree.stream, scene.buffer); }, Announce},
    {"Revoke", "DSRevokeBuffer",
     [](Scene& scene) { return KORO_DataStream_RevokeBuffer(scene.tree.stream, scene.buffer); }, Announce},
    {"Wait", "EventGetData", Wait, StartAndDeliver, {}, endsAsTimeout},
    {"Kill", "EventKill", Kill},
    {"WaitForEvent", "EventGetData", WaitForEvent, EnableAndFire, {}, endsAsTimeout},
    {"KillWaitForEvent", "EventKill", [](Scene& scene) { return KORO_EventController_KillWait(scene.controller); },
     EnableEvents},
    {"FlushEvents", "EventFlush", [](Scene& scene) { return KORO_EventController_FlushEvents(scene.controller); },
     EnableEvents},
};

// `size` is that of the value, which a query that writes nothing does not have.
Row QueryRow(const std::string& name, const InfoQuery& query, std::size_t size, Act act, void (*prepare)(Scene&))
{
    return {name, query.function, act, prepare, query, {}, size == 0 ? Error{} : WrongSize(query, size, 0)};
}

const std::vector<Row> queryRows = {
    QueryRow("SizeOfBlockAtWait", {"EventGetInfo", 3, "EVENT_SIZE_MAX"}, 8, Wait, StartAndDeliver),
    QueryRow("SizeOfBlockAtEvent", {"EventGetInfo", 3, "EVENT_SIZE_MAX"}, 8, WaitForEvent, EnableAndFire),
    QueryRow(
        "StreamNumber", {"DSGetInfo", 2, "STREAM_INFO_NUM_UNDERRUN"}, 8,
        [](Scene& scene) { return KORO_DataStream_GetNumUnderruns(scene.tree.stream, &scene.number); }, [](Scene&) {}),
    QueryRow(
        "StreamText", {"DSGetInfo", 10, "STREAM_INFO_TLTYPE"}, 0,
        [](Scene& scene) { return KORO_DataStream_GetTLType(scene.tree.stream, nullptr, &scene.size); }, [](Scene&) {}),
    QueryRow(
        "BufferNumber", {"DSGetBufferInfo", 16, "BUFFER_INFO_FRAMEID"}, 8,
        [](Scene& scene) { return KORO_Buffer_GetFrameID(scene.buffer, &scene.number); }, Announce),
    QueryRow(
        "BufferText", {"DSGetBufferInfo", 8, "BUFFER_INFO_TLTYPE"}, 0,
        [](Scene& scene) { return KORO_Buffer_GetTLType(scene.buffer, nullptr, &scene.size); }, Announce),
    QueryRow(
        "ControllerNumber", {"EventGetInfo", 2, "EVENT_NUM_FIRED"}, 8,
        [](Scene& scene) { return KORO_EventController_GetNumEventsFired(scene.controller, &scene.number); },
        EnableEvents),
    QueryRow(
        "EventNumber", {"EventGetDataInfo", 2, "EVENT_DATA_NUMID"}, 8,
        [](Scene& scene) { return KORO_Event_GetID(scene.event, &scene.number); }, TakeEvent),
    QueryRow(
        "EventData", {"EventGetDataInfo", 1, "EVENT_DATA_VALUE"}, 0,
        [](Scene& scene) { return KORO_Event_GetData(scene.event, nullptr, &scene.size); }, TakeEvent),
};

// One frame from queueing to waiting, regardless of what happened to the stream before.
void ExpectUsable(Scene& scene)
{
    EXPECT_EQ(Outcome(Kill(scene)), Error{});
    EXPECT_EQ(Outcome(FlushKills(scene)), Error{});
    EXPECT_EQ(Outcome(KORO_DataStream_Flush(scene.tree.stream, 4)), Error{});
    if (Get<KORO_Bool8>(KORO_DataStream_GetIsGrabbing, scene.tree.stream) == 0) Start(scene);
    const auto buffer = scene.tree.QueueBuffers(1).front();
    EXPECT_TRUE(scene.producer->Deliver(streamID));
    EXPECT_EQ(Outcome(Wait(scene)), Error{});
    EXPECT_EQ(scene.buffer, buffer);
}

void ExpectNothingLeftAfterTheEnd(Scene& scene)
{
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(scene.tree.producerLibrary)), Error{});
    EXPECT_THAT(scene.producer->Open(), testing::IsEmpty());
    EXPECT_EQ(scene.producer->InitCount(), 0);
}

class AcquisitionFaults : public testing::TestWithParam<Row>
{
protected:
    AcquisitionFaults() { GetParam().prepare(scene); }

    Error Act() { return Outcome(GetParam().act(scene)); }

    Scene scene;
};

std::string NameOf(const testing::TestParamInfo<Row>& row)
{
    return row.param.name;
}

} // namespace

TEST_P(AcquisitionFaults, EveryCodeArrivesWithItsTextAndLeavesTheStreamUsable)
{
    const auto& row = GetParam();
    const auto open = scene.producer->Open();
    for (const auto& error : producerErrors)
    {
        for (std::uint64_t call = 1; call <= row.Calls(); ++call)
        {
            SCOPED_TRACE(std::to_string(error.code) + " at call " + std::to_string(call));
            scene.producer->AnswerAtCall(row.function, call, error.code);
            EXPECT_EQ(Act(), row.Failure(error));
            if (row.function == std::string("GCRegisterEvent")) // other acts may register on their way
            {
                EXPECT_EQ(scene.producer->Open(), open);
            }
        }
    }
    EXPECT_EQ(Act(), row.ofSuccess);
    ExpectUsable(scene);
    ExpectNothingLeftAfterTheEnd(scene);
}

TEST_P(AcquisitionFaults, CodeThatContradictsTheResultDecides)
{
    const auto& row = GetParam();
    scene.producer->SetLastError({.code = GenTL::GC_ERR_IO});
    scene.producer->AnswerOnce(row.function, GenTL::GC_ERR_NO_DATA);
    EXPECT_EQ(Act(), row.Failure(ProducerErrorOf(GenTL::GC_ERR_IO)));
}

TEST_P(AcquisitionFaults, SuccessThatWritesNothingDoesNoHarm)
{
    scene.producer->AnswerAtCall(GetParam().function, 1, GenTL::GC_ERR_SUCCESS);
    if (GetParam().query) scene.producer->AnswerAtCall(GetParam().function, 2, GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(Act(), GetParam().ofSuccessWithoutOutput);
    ExpectNothingLeftAfterTheEnd(scene);
}

TEST_P(AcquisitionFaults, ExceptionsOfTheProducerAreCodeOneAndLeaveTheStreamUsable)
{
    const auto* function = GetParam().function;
    scene.producer->OnEntry(function, [] { throw std::runtime_error("text of the producer"); });
    EXPECT_EQ(Act(), (Error{KORO_RETURN_CODE_ERROR, "text of the producer"}));
    scene.producer->OnEntry(function, [] { throw 5; });
    EXPECT_EQ(Act(), (Error{KORO_RETURN_CODE_ERROR, "Unhandled exception!"}));

    scene.producer->OnEntry(function, nullptr);
    EXPECT_EQ(Act(), GetParam().ofSuccess);
    ExpectUsable(scene);
}

INSTANTIATE_TEST_SUITE_P(Calls, AcquisitionFaults, testing::ValuesIn(callRows), NameOf);
INSTANTIATE_TEST_SUITE_P(Queries, AcquisitionFaults, testing::ValuesIn(queryRows), NameOf);

// Unregistered, and not registered again: the stream has no usable event, so it must be opened again.
TEST(AcquisitionFaultsAtRegistrationAnew, EveryCodeArrivesAndTheStreamCanBeOpenedAnew)
{
    Scene scene;
    Start(scene);
    for (const auto& error : producerErrors)
    {
        SCOPED_TRACE(error.code);
        RegisterStreamsEvent(scene);
        scene.producer->AnswerOnce("GCRegisterEvent", error.code);
        EXPECT_EQ(Outcome(FlushKills(scene)), CallFailure("GCRegisterEvent", error));
        EXPECT_EQ(Outcome(Wait(scene)), deadEvent);
        EXPECT_EQ(Outcome(KORO_DataStream_Destruct(scene.tree.stream)), Error{});
        scene.tree.stream =
            Get<KORO_DataStreamHandle>(KORO_DataStreamDescriptor_OpenDataStream, scene.tree.streamDescriptor);
    }
    ExpectUsable(scene);
    ExpectNothingLeftAfterTheEnd(scene);
}

// What a stream does while it ends may fail as it likes.
TEST(AcquisitionFaultsAtTheEnd, FailuresReachNobodyAndNothingOfTheLibraryIsLeft)
{
    for (const auto* function :
         {"DSGetInfo", "DSStopAcquisition", "DSFlushQueue", "DSRevokeBuffer", "DSClose", "GCUnregisterEvent"})
    {
        Scene scene;
        for (const auto& error : producerErrors)
        {
            SCOPED_TRACE(function + std::string(" answers ") + std::to_string(error.code));
            StartAndDeliver(scene);
            scene.producer->AnswerOnce(function, error.code);
            EXPECT_EQ(Outcome(KORO_DataStream_Destruct(scene.tree.stream)), Error{});
            EXPECT_FALSE(IsAlive(scene.buffer));
            // Closing the device takes along what the stream could not close.
            Require(KORO_Device_Destruct(scene.tree.device));
            scene.tree.device = Get<KORO_DeviceHandle>(
                KORO_DeviceDescriptor_OpenDevice, scene.tree.deviceDescriptor, OpenTree::exclusiveAccess);
            scene.tree.streamDescriptor =
                Get<KORO_DataStreamDescriptorHandle>(KORO_Device_GetDataStream, scene.tree.device, std::size_t{0});
            scene.tree.stream =
                Get<KORO_DataStreamHandle>(KORO_DataStreamDescriptor_OpenDataStream, scene.tree.streamDescriptor);
        }
        ExpectNothingLeftAfterTheEnd(scene);
    }
}

} // namespace koro::test
