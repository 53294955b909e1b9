// Settings that cannot be used fail GCInitLib with a text that says what is wrong and where.
#include "tests/unit/simulator/producer.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace koro::simulator::test
{
namespace
{

struct Case
{
    const char* name;
    std::string settings;
    const char* complaint;
};

void PrintTo(const Case& one, std::ostream* out)
{
    *out << one.name;
}

std::string Camera(const std::string& keys)
{
    return R"({"interfaces": [{"id": "I", "cameras": [{"serial": "A"}, {"serial": "B", )" + keys + "}]}]}";
}

std::string Fault(const std::string& list, const std::string& entry)
{
    return R"({"misbehaviour": {")" + list + "\": [" + entry + "]}}";
}

std::string Connection(const std::string& keys)
{
    return R"({"connection": {)" + keys + "}}";
}

std::string Step(const std::string& keys)
{
    return Connection(R"("script": [{"camera": "KS0001", )" + keys + "}]");
}

const Case cases[] = {
    {"NoJson", "{\"interfaces\": [}", "parse error at line 1, column 17"},
    {"NoObject", "[]", "the document: must be an object"},
    {"UnknownKey", R"({"interface": []})", "interface: unknown key"},
    {"MemoryNoText", R"({"memory": true})", "memory: must be a text"},
    {"UnknownCameraKey", Camera(R"("widht": 5)"), "interfaces[0].cameras[1].widht: unknown key"},
    {"WidthIsText", Camera(R"("width": "5")"), "interfaces[0].cameras[1].width: must be a whole number, 1 to 16384"},
    {"WidthIsZero", Camera(R"("width": 0)"), "interfaces[0].cameras[1].width: must be a whole number, 1 to 16384"},
    {"HeightIsHuge", Camera(R"("height": 1e9)"), "interfaces[0].cameras[1].height: must be a whole number"},
    {"NumberBeyond64Bits", Camera(R"("height": 18446744073709551615)"), "cameras[1].height: must be a whole number"},
    {"RateIsNegative", Camera(R"("rate": -1)"), "interfaces[0].cameras[1].rate: must be 0 to 100000"},
    {"RateIsTooLow", Camera(R"("rate": 0.0009)"), "cameras[1].rate: must be 0, or 0.001 to 100000"},
    {"RateIsText", Camera(R"("rate": "fast")"), "interfaces[0].cameras[1].rate: must be a number"},
    {"FormatUnknown", Camera(R"("pixelFormat": "Mono9")"), "cameras[1].pixelFormat: 'Mono9' is none of Mono8 "},
    {"LineEndsInAByte", Camera(R"("pixelFormat": "Mono12Packed", "width": 5)"),
     "interfaces[0].cameras[1].width: a line of Mono12Packed must end on a whole byte"},
    {"ImageTooLarge", Camera(R"("pixelFormat": "RGB8", "width": 16384, "height": 16384)"),
     "interfaces[0].cameras[1].height: an image must have at most 268435456 bytes"},
    {"SourceUnknown", Camera(R"("source": "film")"), "cameras[1].source: must be pattern, sequence, surface or folder"},
    {"DescriptionFormUnknown", Camera(R"("descriptionForm": "thin")"),
     "cameras[1].descriptionForm: must be plain, zipped or twoURLs"},
    {"ChunkUnknown", Camera(R"("chunks": ["Gain", "Taste"])"),
     "interfaces[0].cameras[1].chunks[1]: is none of Image FrameID "},
    {"ChunkNoText", Camera(R"("chunks": [7])"), "cameras[1].chunks[0]: is none of Image "},
    {"ChunksNoList", Camera(R"("chunks": "some")"), "cameras[1].chunks: must be a list of names, or \"all\""},
    {"ChunksNumber", Camera(R"("chunks": 5)"), "cameras[1].chunks: must be a list"},
    {"Scan3dNoBoolean", Camera(R"("scan3d": 3)"), "cameras[1].scan3d: must be true or false"},
    {"PartsTooLarge", Camera(R"("scan3d": true, "width": 16384, "height": 8192)"),
     "cameras[1].height: an image must have at most 268435456 bytes"},
    {"ChecksumNoBoolean", Camera(R"("chunkChecksum": 1)"), "cameras[1].chunkChecksum: must be true or false"},
    {"StartNoBoolean", Camera(R"("startWithStream": 1)"), "cameras[1].startWithStream: must be true or false"},
    {"CommandTooLong", Camera(R"("longestCommand": 16385)"), "cameras[1].longestCommand: must be a whole number"},
    {"PathTooLong", Camera(R"("longestPassingCommand": 16385)"),
     "cameras[1].longestPassingCommand: must be a whole number, 0 to 16384"},
    {"ResetNoNumber", Camera(R"("resetMissingUpdates": "2")"),
     "cameras[1].resetMissingUpdates: must be a whole number"},
    {"NoFileBuffer", Camera(R"("fileBufferBytes": 0)"),
     "cameras[1].fileBufferBytes: must be a whole number, 1 to 1048576"},
    {"UserFileTooLarge", Camera(R"("userFileBytes": 268435457)"),
     "cameras[1].userFileBytes: must be a whole number, 0 to"},
    {"CardNoBoolean", Camera(R"("memoryCard": 1)"), "cameras[1].memoryCard: must be true or false"},
    {"AbsenceTooLong", Camera(R"("resetAbsence_ms": 600001)"), "cameras[1].resetAbsence_ms: must be a whole number"},
    {"ReturnsNoBoolean", Camera(R"("resetReturns": 0)"), "cameras[1].resetReturns: must be true or false"},
    {"NewIdNoBoolean", Camera(R"("resetChangesId": "x")"), "cameras[1].resetChangesId: must be true or false"},
    {"FirmwareTooLong", Camera(R"("firmwareVersion": ")" + std::string(64, '1') + "\""),
     "cameras[1].firmwareVersion: must have at most 63 bytes"},
    {"RetriesAboveMaximum", Camera(R"("commandRetries": 3, "commandRetriesMaximum": 2)"),
     "cameras[1].commandRetries: must be at most commandRetriesMaximum"},
    {"RetriesTooMany", Camera(R"("commandRetriesMaximum": 1000001)"),
     "cameras[1].commandRetriesMaximum: must be a whole number, 0 to 1000000"},
    {"RetriesAccessUnknown", Camera(R"("commandRetriesAccess": "rw")"),
     "cameras[1].commandRetriesAccess: must be readWrite, readOnly or none"},
    {"NoEventInAPacket", Camera(R"("eventsPerPacket": 0)"),
     "cameras[1].eventsPerPacket: must be a whole number, 1 to 16"},
    {"ExtendedIdsNoBoolean", Camera(R"("extendedEventIds": 1)"), "cameras[1].extendedEventIds: must be true or false"},
    {"SerialMissing", R"({"interfaces": [{"id": "I", "cameras": [{}]}]})", "cameras[0].serial: is missing or empty"},
    {"SerialTwice", R"({"interfaces": [{"id": "I", "cameras": [{"serial": "A"}, {"serial": "A"}]}]})",
     "the serial number 'A' is there twice"},
    {"SerialTooLong", R"({"interfaces": [{"id": "I", "cameras": [{"serial": ")" + std::string(64, 'x') + "\"}]}]}",
     "cameras[0].serial: must have at most 63 bytes"},
    {"IdMissing", R"({"interfaces": [{}]})", "interfaces[0].id: is missing or empty"},
    {"IdTwice", R"({"interfaces": [{"id": "I"}, {"id": "I"}]})", "the id 'I' is there twice"},
    {"TypeUnknown", R"({"interfaces": [{"id": "I", "tlType": "USB"}]})", "interfaces[0].tlType: 'USB' is no type"},
    {"InterfacesNoList", R"({"interfaces": 5})", "interfaces: must be a list"},
    {"TooManyInterfaces", R"({"interfaces": [0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0]})", "interfaces: must have at most 16"},
    {"VersionUnknown", R"({"claimedVersion": "2.0"})", "claimedVersion: must be 1.0 to 1.6"},
    {"StrictNoBoolean", R"({"strictInit": 1})", "strictInit: must be true or false"},
    {"TooDeep", R"({"a": [[[[[[[[[[1]]]]]]]]]]})", "nested deeper than 8 levels"},
    {"TooLarge", "{\"a\": \"" + std::string(1 << 20, 'x') + "\"}", "larger than 1048576 bytes"},
    {"FunctionUnknown", Fault("calls", R"({"function": "TLFly"})"),
     "misbehaviour.calls[0].function: 'TLFly' is no function of the standard"},
    {"ErrorUnknown", Fault("calls", R"({"function": "TLOpen", "error": "GC_ERR_X"})"),
     "misbehaviour.calls[0].error: 'GC_ERR_X' is no error code"},
    {"RecordTooLong", Connection(R"("recordBytes": 4097)"),
     "connection.recordBytes: must be a whole number, 0 to 4096"},
    {"AfterReplugUnknown", Connection(R"("afterReplug": "hope")"), "connection.afterReplug: must be resume or reopen"},
    {"DeadCameraSucceeds", Connection(R"("deadCameraError": 0)"), "connection.deadCameraError: must be an error"},
    {"ConnectionKeyUnknown", Connection(R"("plug": 1)"), "connection.plug: unknown key"},
    {"RepeatNever", Connection(R"("repeat": 0)"), "connection.repeat: must be a whole number, 1 to 1000000000"},
    {"StepUnknown", Step(R"("do": "push")"), "connection.script[0].do: must be unplug, replug, tell or send"},
    {"StepMissing", Step(R"("after_ms": 5)"), "connection.script[0].do: must be unplug, replug, tell or send"},
    {"StepTooLate", Step(R"("do": "tell", "after_ms": 86400001)"),
     "connection.script[0].after_ms: must be a whole number, 0 to 86400000"},
    {"UnplugAtNoFrame", Step(R"("do": "unplug", "atFrame": 0)"),
     "connection.script[0].atFrame: must be a whole number, 1 to 1000000000"},
    {"UnplugAtAFrameAndATime", Step(R"("do": "unplug", "atFrame": 1, "after_ms": 1)"),
     "connection.script[0].after_ms: unknown key"},
    {"ReplugAfterNoUpdate", Step(R"("do": "replug", "missingUpdates": 0)"),
     "connection.script[0].missingUpdates: must be a whole number, 1 to 1000000000"},
    {"ReplugAtAFrame", Step(R"("do": "replug", "atFrame": 1)"), "connection.script[0].atFrame: unknown key"},
    {"StepRecordUnknown", Step(R"("do": "tell", "record": "long")"),
     "connection.script[0].record: must be whole, unterminated, otherInterface or short"},
    {"StepFlagTooLarge", Step(R"("do": "tell", "reconnectFlag1": 256)"),
     "connection.script[0].reconnectFlag1: must be a whole number, 0 to 255"},
    {"StepKeyUnknown", Step(R"("do": "tell", "flag": 2)"), "connection.script[0].flag: unknown key"},
    {"SendWithoutEvent", Step(R"("do": "send")"),
     "connection.script[0].event: must be error, featureInvalidate, featureChange or module"},
    {"SendOfUnknownModule", Step(R"("do": "send", "event": "error", "module": "buffer")"),
     "connection.script[0].module: must be system, interface, device or stream"},
    {"SendOfAFeatureByAStream", Step(R"("do": "send", "event": "featureChange", "module": "stream")"),
     "connection.script[0].module: only devices have this event"},
    {"SendWithAFlag", Step(R"("do": "send", "event": "error", "deviceFlag": 1)"),
     "connection.script[0].deviceFlag: unknown key"},
    {"StepOfNobody", Connection(R"("script": [{"camera": "Z", "do": "tell"}])"),
     "connection.script: there is no camera 'Z'"},
    {"CountUnknown", Fault("calls", R"({"function": "TLOpen", "count": "often"})"), "calls[0].count: must be a whole"},
    {"DelayTooLong", Fault("calls", R"({"function": "TLOpen", "delay_ms": 60001})"), "calls[0].delay_ms: must be"},
    {"CommandMissing", Fault("info", R"({"function": "TLGetInfo"})"), "misbehaviour.info[0].command: is missing"},
    {"ValueNoBytes", Fault("info", R"({"function": "TLGetInfo", "command": 0, "value": [256]})"),
     "misbehaviour.info[0].value: a list must hold bytes, 0 to 255"},
    {"ChunkSpoilUnknown", Fault("frames", R"({"camera": "*", "chunks": "sour"})"),
     "frames[0].chunks: must be tooLong, zeroLength, truncated, leftOver or wrongChecksum"},
    {"FrameWithoutCamera", Fault("frames", "{}"), "misbehaviour.frames[0].camera: must be a serial number or *"},
    {"FileFaultWithoutCamera", Fault("files", "{}"), "misbehaviour.files[0].camera: must be a serial number or *"},
    {"FileUnknown", Fault("files", R"({"camera": "*", "file": "Diary"})"),
     "files[0].file: 'Diary' is none of UserFile, FactoryData, CalibrationData, MemoryCard, Firmware"},
    {"OperationUnknown", Fault("files", R"({"camera": "*", "operation": "Burn"})"),
     "files[0].operation: 'Burn' is none of Open, Close, Read, Write, Delete"},
    {"StatusUnknown", Fault("files", R"({"camera": "*", "status": "Sad"})"),
     "files[0].status: 'Sad' is none of Success, "},
    {"BusyForEver", Fault("files", R"({"camera": "*", "busyPolls": 1000001})"),
     "files[0].busyPolls: must be a whole number, 0 to 1000000"},
    {"FileFaultUnknownKey", Fault("files", R"({"camera": "*", "when": 1})"), "files[0].when: unknown key"},
    {"AllCamerasUnknownKey", R"({"allCameras": {"serial": "X"}})", "allCameras.serial: unknown key"},
};

class SimulatorSettings : public testing::TestWithParam<Case>
{};

TEST_P(SimulatorSettings, AreRefusedWithPlaceAndReason)
{
    const Producer producer(GetParam().settings, false);
    EXPECT_EQ(producer.GCInitLib(), GC_ERR_ERROR);
    EXPECT_EQ(producer.Last().code, GC_ERR_ERROR);
    EXPECT_THAT(producer.Last().text, testing::StartsWith("GCInitLib: settings file 'simulator-settings.json': "));
    EXPECT_THAT(producer.Last().text, testing::HasSubstr(GetParam().complaint));
    TL_HANDLE system = nullptr;
    EXPECT_EQ(producer.TLOpen(&system), GC_ERR_NOT_INITIALIZED);
}

INSTANTIATE_TEST_SUITE_P(
    Bad, SimulatorSettings, testing::ValuesIn(cases),
    [](const testing::TestParamInfo<Case>& tested) { return std::string(tested.param.name); });

TEST(SimulatorSettings, MissingFolderIsNamedWithItsCamera)
{
    const Producer producer(Camera(R"("folder": "/no/such/folder")"), false);
    EXPECT_EQ(producer.GCInitLib(), GC_ERR_ERROR);
    EXPECT_THAT(producer.Last().text, testing::StartsWith("GCInitLib: camera 'B': folder '/no/such/folder': "));
}

TEST(SimulatorSettings, MissingFileIsNamed)
{
    const Producer producer(OneCamera(), false);
    setenv("KORO_SIMULATOR_CONFIG", "/no/such/file.json", 1);
    EXPECT_EQ(producer.GCInitLib(), GC_ERR_ERROR);
    EXPECT_EQ(producer.Last().text, "GCInitLib: settings file '/no/such/file.json': cannot be opened");
}

TEST(SimulatorSettings, AreReadAgainAtTheNextInit)
{
    const Producer producer("{", false);
    EXPECT_EQ(producer.GCInitLib(), GC_ERR_ERROR);
    unsetenv("KORO_SIMULATOR_CONFIG");
    EXPECT_EQ(producer.GCInitLib(), GC_ERR_SUCCESS);
}

TEST(SimulatorSettings, AllCamerasOverridesTheBuiltInOnes)
{
    const Producer producer(R"({"allCameras": {
        "startWithStream": true, "rate": 0, "width": 8, "height": 2, "pixelFormat": "Mono16"}})");
    const Tree tree(producer, "SimU3V", "KS0003");
    EXPECT_EQ(tree.StreamInfo<std::size_t>(STREAM_INFO_PAYLOAD_SIZE), 32U);
    tree.Announce();
    tree.Start();
    tree.Next();
}

} // namespace
} // namespace koro::simulator::test
