// Every function of the producer that an export of the tree reaches, failing with every code of the standard: return
// code and whole text at the export, nothing left open, and the tree usable afterwards.
#include "tests/boundary/producer_errors.h"
#include "tests/boundary/tree_test.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace koro::test
{

namespace
{

// What a row works on. The port is that of the interface.
struct Scene
{
    ScriptedProducer producer;
    KoroLibrary library;
    OpenTree tree{producer.Path()};
    KORO_PortHandle port =
        Get<KORO_PortHandle>(KORO_Module_GetPort, Get<KORO_ModuleHandle>(KORO_Interface_ToModule, tree.interface));
    std::uint8_t byte = 0;
    std::int32_t number = 0;
    std::uint64_t longNumber = 0;
    KORO_Bool8 flag = 0;
    std::size_t size = 0;
    KORO_PortURLHandle url = nullptr;
};

using Act = KORO_ReturnCode (*)(Scene&);

struct Row
{
    std::string name;
    const char* function;
    int calls; // of the function in one act
    Act act;
    void (*prepare)(Scene&) = [](Scene&) {};
    std::optional<InfoQuery> query{};
    Error ofSuccessWithoutOutput{}; // what becomes of a success that writes nothing
};

std::ostream& operator<<(std::ostream& stream, const Row& row)
{
    return stream << row.name;
}

void EndSystem(Scene& scene)
{
    Require(KORO_System_Destruct(scene.tree.system));
}
void EndInterface(Scene& scene)
{
    Require(KORO_Interface_Destruct(scene.tree.interface));
}
void EndDevice(Scene& scene)
{
    Require(KORO_Device_Destruct(scene.tree.device));
}
void EndStream(Scene& scene)
{
    Require(KORO_DataStream_Destruct(scene.tree.stream));
}
void ReopenDevice(Scene& scene)
{
    EndDevice(scene);
    scene.tree.device = Get<KORO_DeviceHandle>(KORO_DeviceDescriptor_OpenDevice, scene.tree.deviceDescriptor, 4u);
}
void ReopenLibrary(Scene& scene)
{
    const auto& path = scene.producer.Path();
    Require(KORO_ProducerLibrary_Destruct(scene.tree.producerLibrary));
    Require(KORO_ProducerLibrary_Construct(path.c_str(), path.size() + 1, &scene.tree.producerLibrary));
}
void ReportChanges(Scene& scene)
{
    scene.producer->SetChanged("TLUpdateInterfaceList", 1);
    scene.producer->SetChanged("IFUpdateDeviceList", 1);
}
void ListURLs(Scene& scene)
{
    scene.url = Get<KORO_PortURLHandle>(KORO_Port_GetURL, scene.port, std::size_t{0});
}

KORO_ReturnCode OpenSystem(Scene& scene)
{
    return KORO_SystemDescriptor_OpenSystem(scene.tree.systemDescriptor, &scene.tree.system);
}
KORO_ReturnCode OpenInterface(Scene& scene)
{
    return KORO_InterfaceDescriptor_OpenInterface(scene.tree.interfaceDescriptor, &scene.tree.interface);
}
KORO_ReturnCode OpenDevice(Scene& scene)
{
    return KORO_DeviceDescriptor_OpenDevice(scene.tree.deviceDescriptor, 4, &scene.tree.device);
}
KORO_ReturnCode OpenStream(Scene& scene)
{
    return KORO_DataStreamDescriptor_OpenDataStream(scene.tree.streamDescriptor, &scene.tree.stream);
}
KORO_ReturnCode UpdateInterfaces(Scene& scene)
{
    return KORO_System_UpdateInterfaces(scene.tree.system, 0);
}
KORO_ReturnCode UpdateDevices(Scene& scene)
{
    return KORO_Interface_UpdateDevices(scene.tree.interface, 0);
}
KORO_ReturnCode CountStreams(Scene& scene)
{
    return KORO_Device_GetNumDataStreams(scene.tree.device, &scene.size);
}

// Opening fetches the remote device. A port that cannot be asked for its descriptions is no hindrance.
const Error noDevice{
    KORO_RETURN_CODE_ERROR,
    "[Function: DevGetPort | Error-Code: -1006 (GC_ERR_INVALID_HANDLE) | Error-Text: scripted failure of DevGetPort]"};

const std::vector<Row> callRows = {
    {"OpenSystem", "TLOpen", 1, OpenSystem, EndSystem},
    {"UpdateInterfaces", "TLUpdateInterfaceList", 1, UpdateInterfaces},
    {"CountInterfaces", "TLGetNumInterfaces", 1, UpdateInterfaces, ReportChanges},
    {"ListInterfaces", "TLGetInterfaceID", 2, UpdateInterfaces, ReportChanges},
    {"OpenInterface", "TLOpenInterface", 1, OpenInterface, EndInterface},
    {"UpdateDevices", "IFUpdateDeviceList", 1, UpdateDevices},
    {"CountDevices", "IFGetNumDevices", 1, UpdateDevices, ReportChanges},
    {"ListDevices", "IFGetDeviceID", 2, UpdateDevices, ReportChanges},
    {"OpenDevice", "IFOpenDevice", 1, OpenDevice, EndDevice, {}, noDevice},
    {"FetchRemoteDevice", "DevGetPort", 1, OpenDevice, EndDevice},
    {"CountStreams", "DevGetNumDataStreams", 1, CountStreams, ReopenDevice},
    {"ListStreams", "DevGetDataStreamID", 2, CountStreams, ReopenDevice},
    {"OpenStream", "DevOpenDataStream", 1, OpenStream, EndStream},
    {"ReadPort", "GCReadPort", 1, [](Scene& scene) { return KORO_Port_Read(scene.port, 0, &scene.byte, 1); }},
    {"WritePort", "GCWritePort", 1, [](Scene& scene) { return KORO_Port_Write(scene.port, 0, &scene.byte, 1); }},
    {"CountURLs", "GCGetNumPortURLs", 1, [](Scene& scene) { return KORO_Port_GetNumURLs(scene.port, &scene.size); }},
};

Row QueryRow(
    const std::string& name, const InfoQuery& query, Act act, void (*prepare)(Scene&) = [](Scene&) {},
    const Error& ofSuccessWithoutOutput = {})
{
    return {name, query.function, 2, act, prepare, query, ofSuccessWithoutOutput};
}

// A number that is missing has the wrong size.
Row NumberRow(
    const std::string& name, const InfoQuery& query, std::size_t size, Act act, void (*prepare)(Scene&) = [](Scene&) {})
{
    return QueryRow(name, query, act, prepare, WrongSize(query, size, 0));
}

const InfoQuery accessStatusOfDescriptor{"IFGetDeviceInfo", 5, "DEVICE_INFO_ACCESS_STATUS"};

const std::vector<Row> queryRows = {
    QueryRow(
        "DescribeSystem", {"GCGetInfo", 0, "TL_INFO_ID"},
        [](Scene& scene) {
            return KORO_ProducerLibrary_GetSystem(scene.tree.producerLibrary, &scene.tree.systemDescriptor);
        },
        ReopenLibrary),
    QueryRow(
        "SystemDescriptorText", {"GCGetInfo", 1, "TL_INFO_VENDOR"},
        [](Scene& scene) {
            return KORO_SystemDescriptor_GetVendorName(scene.tree.systemDescriptor, nullptr, &scene.size);
        }),
    NumberRow(
        "SystemDescriptorNumber", {"GCGetInfo", 8, "TL_INFO_CHAR_ENCODING"}, 4,
        [](Scene& scene) {
            return KORO_SystemDescriptor_GetCharacterEncoding(scene.tree.systemDescriptor, &scene.number);
        }),
    QueryRow(
        "SystemText", {"TLGetInfo", 2, "TL_INFO_MODEL"},
        [](Scene& scene) { return KORO_System_GetModelName(scene.tree.system, nullptr, &scene.size); }),
    NumberRow(
        "SystemNumber", {"TLGetInfo", 8, "TL_INFO_CHAR_ENCODING"}, 4,
        [](Scene& scene) { return KORO_System_GetCharacterEncoding(scene.tree.system, &scene.number); }),
    QueryRow(
        "SystemRaw", {"TLGetInfo", 3, "TL_INFO_VERSION"},
        [](Scene& scene) { return KORO_System_GetInfo(scene.tree.system, 3, &scene.number, nullptr, &scene.size); }),
    QueryRow(
        "InterfaceDescriptorText", {"TLGetInterfaceInfo", 1, "INTERFACE_INFO_DISPLAYNAME"},
        [](Scene& scene) {
            return KORO_InterfaceDescriptor_GetDisplayName(scene.tree.interfaceDescriptor, nullptr, &scene.size);
        }),
    QueryRow(
        "InterfaceText", {"IFGetInfo", 2, "INTERFACE_INFO_TLTYPE"},
        [](Scene& scene) { return KORO_Interface_GetTLType(scene.tree.interface, nullptr, &scene.size); }),
    NumberRow(
        "DeviceDescriptorNumber", accessStatusOfDescriptor, 4,
        [](Scene& scene) { return KORO_DeviceDescriptor_GetAccessStatus(scene.tree.deviceDescriptor, &scene.number); }),
    NumberRow(
        "DeviceDescriptorOpenable", accessStatusOfDescriptor, 4,
        [](Scene& scene) { return KORO_DeviceDescriptor_GetIsOpenable(scene.tree.deviceDescriptor, 4, &scene.flag); }),
    QueryRow(
        "DeviceDescriptorRaw", {"IFGetDeviceInfo", 1, "DEVICE_INFO_VENDOR"},
        [](Scene& scene) {
            return KORO_DeviceDescriptor_GetInfo(scene.tree.deviceDescriptor, 1, &scene.number, nullptr, &scene.size);
        }),
    QueryRow(
        "DeviceText", {"DevGetInfo", 7, "DEVICE_INFO_SERIAL_NUMBER"},
        [](Scene& scene) { return KORO_Device_GetSerialNumber(scene.tree.device, nullptr, &scene.size); }),
    NumberRow(
        "DeviceNumber", {"DevGetInfo", 9, "DEVICE_INFO_TIMESTAMP_FREQUENCY"}, 8,
        [](Scene& scene) { return KORO_Device_GetTimestampTickFrequency(scene.tree.device, &scene.longNumber); }),
    QueryRow(
        "PortText", {"GCGetPortInfo", 12, "PORT_INFO_PORTNAME"},
        [](Scene& scene) { return KORO_Port_GetName(scene.port, nullptr, &scene.size); }),
    NumberRow(
        "PortFlag", {"GCGetPortInfo", 9, "PORT_INFO_ACCESS_NA"}, 1,
        [](Scene& scene) { return KORO_Port_GetIsAvailable(scene.port, &scene.flag); }),
    QueryRow(
        "URLText", {"GCGetPortURLInfo", 0, "URL_INFO_URL"},
        [](Scene& scene) { return KORO_PortURL_GetURL(scene.url, nullptr, &scene.size); }, ListURLs),
    NumberRow(
        "URLNumber", {"GCGetPortURLInfo", 9, "URL_INFO_SCHEME"}, 4,
        [](Scene& scene) { return KORO_PortURL_GetScheme(scene.url, &scene.number); }, ListURLs),
    QueryRow(
        "URLHash", {"GCGetPortURLInfo", 6, "URL_INFO_FILE_SHA1_HASH"},
        [](Scene& scene) { return KORO_PortURL_GetFileSHA1Hash(scene.url, nullptr, &scene.size); }, ListURLs),
};

Error Failure(const Row& row, const ProducerError& error)
{
    return row.query ? InfoFailure(*row.query, error) : CallFailure(row.function, error);
}

class TreeFaults : public testing::TestWithParam<Row>
{
protected:
    TreeFaults() { GetParam().prepare(scene); }

    Error Act() { return Outcome(GetParam().act(scene)); }

    Scene scene;
};

std::string NameOf(const testing::TestParamInfo<Row>& info)
{
    return info.param.name;
}

KORO_ReturnCode Construct(const std::string& path, KORO_ProducerLibraryHandle* library)
{
    return KORO_ProducerLibrary_Construct(path.c_str(), path.size() + 1, library);
}

} // namespace

TEST_P(TreeFaults, EveryCodeArrivesWithItsTextAndLeavesTheTreeUsable)
{
    const auto& row = GetParam();
    const auto open = scene.producer->Open();
    for (const auto& error : producerErrors)
    {
        for (int call = 1; call <= row.calls; ++call)
        {
            SCOPED_TRACE(std::to_string(error.code) + " at call " + std::to_string(call));
            scene.producer->AnswerAtCall(row.function, static_cast<std::uint64_t>(call), error.code);
            EXPECT_EQ(Act(), Failure(row, error));
            EXPECT_EQ(scene.producer->Open(), open);
        }
    }
    EXPECT_EQ(Act(), Error{});
}

TEST_P(TreeFaults, FailureWhoseTextCannotBeFetchedTellsSo)
{
    for (const auto& error : producerErrors)
    {
        for (std::uint64_t call = 1; call <= 2; ++call)
        {
            SCOPED_TRACE(std::to_string(error.code) + " at call " + std::to_string(call));
            scene.producer->AnswerOnce(GetParam().function, GenTL::GC_ERR_IO);
            scene.producer->AnswerAtCall("GCGetLastError", call, error.code);
            EXPECT_EQ(
                Act(),
                (Error{KORO_RETURN_CODE_ERROR, "[Function: GCGetLastError | Error-Code: " + Described(error) + "]"}));
        }
    }
    EXPECT_EQ(Act(), Error{});
}

TEST_P(TreeFaults, SuccessThatWritesNothingDoesNoHarm)
{
    scene.producer->Answer(GetParam().function, GenTL::GC_ERR_SUCCESS);
    EXPECT_EQ(Act(), GetParam().ofSuccessWithoutOutput);

    scene.producer->AnswerAsUsual(GetParam().function);
    EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(scene.tree.producerLibrary)), Error{});
    EXPECT_EQ(scene.producer->InitCount(), 0);
}

TEST_P(TreeFaults, ExceptionsOfTheProducerAreCodeOneAndLeaveTheTreeUsable)
{
    const auto* function = GetParam().function;
    scene.producer->OnEntry(function, [] { throw std::runtime_error("text of the producer"); });
    EXPECT_EQ(Act(), (Error{KORO_RETURN_CODE_ERROR, "text of the producer"}));
    scene.producer->OnEntry(function, [] { throw 5; });
    EXPECT_EQ(Act(), (Error{KORO_RETURN_CODE_ERROR, "Unhandled exception!"}));

    scene.producer->OnEntry(function, nullptr);
    EXPECT_EQ(Act(), Error{});
}

INSTANTIATE_TEST_SUITE_P(Calls, TreeFaults, testing::ValuesIn(callRows), NameOf);
INSTANTIATE_TEST_SUITE_P(Queries, TreeFaults, testing::ValuesIn(queryRows), NameOf);

TEST(TreeFaultsAtLoad, FailuresTellTheStep)
{
    ScriptedProducer producer;
    const KoroLibrary library;
    const auto& path = producer.Path();
    KORO_ProducerLibraryHandle handle = nullptr;
    for (const auto& error : producerErrors)
    {
        const std::string end = std::to_string(error.code) + ".";
        producer->AnswerOnce("GCInitLib", error.code);
        EXPECT_EQ(Outcome(Construct(path, &handle)), (Error{1, "Initializing " + path + " failed! Code: " + end}));
        producer->AnswerOnce("GCCloseLib", error.code);
        EXPECT_EQ(Outcome(Construct(path, &handle)), (Error{1, "Closing " + path + " failed! Code: " + end}));
        producer->Reset(); // the failed close has left it initialised
    }
    EXPECT_EQ(handle, nullptr);
}

TEST(TreeFaultsAtLoad, VersionQueriesThatFailTellTheirNameUnlessTheProducerDoesNotKnowThem)
{
    ScriptedProducer producer;
    const KoroLibrary library;
    const auto& path = producer.Path();
    for (const auto& error : producerErrors)
    {
        const bool unknown =
            error.code == GenTL::GC_ERR_NOT_IMPLEMENTED || error.code == GenTL::GC_ERR_INVALID_PARAMETER;
        for (std::uint64_t call = 1; call <= 2; ++call)
        {
            SCOPED_TRACE(std::to_string(error.code) + " at call " + std::to_string(call));
            const std::string command = call == 1 ? "TL_INFO_GENTL_VER_MAJOR" : "TL_INFO_GENTL_VER_MINOR";
            KORO_ProducerLibraryHandle handle = nullptr;
            producer->AnswerAtCall("GCGetInfo", call, error.code);
            EXPECT_EQ(
                Outcome(Construct(path, &handle)),
                unknown ? Error{}
                        : (Error{
                              1, "Querying " + path + " for " + command +
                                     " failed! Code: " + std::to_string(error.code) + "."}));
            if (unknown) Require(KORO_ProducerLibrary_Destruct(handle));
            EXPECT_EQ(producer->InitCount(), 0);
        }
    }
}

TEST(TreeFaultsAtClose, FailuresReachNobodyAndTheTreeOpensAgain)
{
    ScriptedProducer producer;
    const KoroLibrary library;
    producer->KeepJournal(false);
    for (const auto& error : producerErrors)
    {
        for (const auto* function : {"DSClose", "DevClose", "IFClose", "TLClose"})
        {
            const OpenTree tree(producer.Path());
            producer->AnswerOnce(function, error.code);
            EXPECT_EQ(Outcome(KORO_DataStream_Destruct(tree.stream)), Error{});
            EXPECT_EQ(Outcome(KORO_Device_Destruct(tree.device)), Error{});
            EXPECT_EQ(Outcome(KORO_Interface_Destruct(tree.interface)), Error{});
            EXPECT_EQ(Outcome(KORO_System_Destruct(tree.system)), Error{});
            EXPECT_EQ(Outcome(KORO_ProducerLibrary_Destruct(tree.producerLibrary)), Error{});
        }
    }
    EXPECT_EQ(producer->InitCount(), 0);
}

TEST(TreeFaultsAtLastError, SuccessThatWritesNothingLeavesTheGeneralError)
{
    const ScriptedProducer producer;
    const KoroLibrary library;
    const OpenTree tree(producer.Path());
    producer->Answer("TLUpdateInterfaceList", GenTL::GC_ERR_BUSY);
    producer->Answer("GCGetLastError", GenTL::GC_ERR_SUCCESS);

    EXPECT_EQ(
        Outcome(KORO_System_UpdateInterfaces(tree.system, 0)),
        (Error{
            KORO_RETURN_CODE_ERROR,
            "[Function: TLUpdateInterfaceList | Error-Code: -1001 (GC_ERR_ERROR) | Error-Text: ]"}));
}

} // namespace koro::test
