// Behaviours of producers that answer less than they should, or something else.
#include "producers/scripted/wild/producer.h"
#include "producers/scripted/wild/steering.h"

#include <initializer_list>
#include <thread>

namespace scripted::wild
{

using namespace GenTL;

namespace
{

void Lack(Producer& producer, const char* function, std::initializer_list<std::int32_t> commands)
{
    for (const std::int32_t command : commands)
        producer.script.SetInfo(function, command, Failing(GC_ERR_NOT_IMPLEMENTED));
}

// Text in the ids of the cameras beside what they are named by.
void Rename(Device& device, const std::string& serialNumber, const std::string& userName)
{
    device.info[DEVICE_INFO_SERIAL_NUMBER] = Text(serialNumber);
    device.info[DEVICE_INFO_USER_DEFINED_NAME] = Text(userName);
}

} // namespace

// Nothing but what every wild producer does.
void Tame(Producer&) {}

// The stream does not answer its payload size; the feature PayloadSize has it.
void NoPayloadSize(Producer& producer)
{
    Lack(producer, "DSGetInfo", {STREAM_INFO_PAYLOAD_SIZE, STREAM_INFO_DEFINES_PAYLOADSIZE});
}

// Everything is missing that was ever found missing, the access flags of the ports of stream and buffers too.
void LittleInformation(Producer& producer)
{
    NoPayloadSize(producer);
    Lack(producer, "DSGetInfo", {STREAM_INFO_NUM_CHUNKS_MAX, STREAM_INFO_BUF_ALIGNMENT, STREAM_INFO_BUF_ANNOUNCE_MIN});
    Lack(
        producer, "DSGetBufferInfo",
        {BUFFER_INFO_TIMESTAMP_NS, BUFFER_INFO_DATA_SIZE, BUFFER_INFO_PIXEL_ENDIANNESS, BUFFER_INFO_CONTAINS_CHUNKDATA,
         BUFFER_INFO_IMAGEPRESENT, BUFFER_INFO_DELIVERED_IMAGEHEIGHT});
    for (const char* function : {"IFGetDeviceInfo", "DevGetInfo"})
    {
        Lack(producer, function, {DEVICE_INFO_USER_DEFINED_NAME, DEVICE_INFO_VERSION, DEVICE_INFO_TIMESTAMP_FREQUENCY});
    }
    producer.EditDevices([](Device& device) {
        for (const auto command :
             {PORT_INFO_LITTLE_ENDIAN, PORT_INFO_BIG_ENDIAN, PORT_INFO_ACCESS_READ, PORT_INFO_ACCESS_WRITE,
              PORT_INFO_ACCESS_NA, PORT_INFO_ACCESS_NI})
        {
            device.streams.front()->port.info[command] = Failing(GC_ERR_NOT_IMPLEMENTED);
        }
    });
}

// Of where a description lies only the text is known, in an odd spelling.
void NoUrlInformation(Producer& producer)
{
    Lack(
        producer, "GCGetPortURLInfo",
        {URL_INFO_SCHEME, URL_INFO_FILENAME, URL_INFO_FILE_REGISTER_ADDRESS, URL_INFO_FILE_SIZE,
         URL_INFO_SCHEMA_VER_MAJOR, URL_INFO_SCHEMA_VER_MINOR, URL_INFO_FILE_VER_MAJOR, URL_INFO_FILE_VER_MINOR,
         URL_INFO_FILE_VER_SUBMINOR, URL_INFO_FILE_SHA1_HASH});
    producer.EditDevices([](Device& device) {
        const std::string usual = device.remotePort.urls.front().at(URL_INFO_URL).bytes.c_str();
        device.remotePort.urls.front()[URL_INFO_URL] =
            Text("Local:///" + usual.substr(usual.find(':') + 1) + "?SchemaVersion=1.0.0");
    });
}

// GCGetLastError writes no code and fails when it is asked for the text; the payload size is missing beside.
void NoErrorCodes(Producer& producer)
{
    NoPayloadSize(producer);
    producer.script.SetLastError({.code = GC_ERR_SUCCESS, .text = "No Error", .writesCode = false});
}

// GCGetLastError repeats a failure of long ago; the payload size is missing beside.
void StaleErrors(Producer& producer)
{
    NoPayloadSize(producer);
    producer.script.SetLastError({.code = GC_ERR_ABORT, .text = "stale text"});
}

// GCGetLastError is not implemented; the payload size is missing beside.
void NoErrorTexts(Producer& producer)
{
    NoPayloadSize(producer);
    producer.script.Answer("GCGetLastError", GC_ERR_NOT_IMPLEMENTED);
}

// An update never reports that anything has changed.
void NothingChanged(Producer& producer)
{
    producer.script.SetChanged("TLUpdateInterfaceList", bool8_t{0});
    producer.script.SetChanged("IFUpdateDeviceList", std::nullopt);
}

// No feature of the camera says that it belongs into a file of settings.
void NoStreamable(Producer& producer)
{
    producer.EditDevices([](Device& device) {
        const std::string mark = "<Streamable>Yes</Streamable>";
        for (auto& [address, bytes] : device.remotePort.registers)
        {
            for (auto at = bytes.find(mark); at != std::string::npos; at = bytes.find(mark, at))
                bytes.replace(at, mark.size(), std::string(mark.size(), ' '));
        }
    });
}

// One device that shows itself as three cameras.
void SameSerialNumbers(Producer& producer)
{
    producer.AddCamera("camera/left");
    producer.AddCamera("camera/disparity");
    producer.EditDevices([](Device& device) { Rename(device, "W-one", "one"); });
}

// Texts with control characters of a terminal, in one byte and in two, and bytes that are no text.
void OddTexts(Producer& producer)
{
    producer.EditDevices([](Device& device) {
        Rename(device, "W\x1b[31m\xc2\x9b", "na\xffme\x07\r\nof two lines");
        device.info[DEVICE_INFO_MODEL] = Text("mo\x1b]0;title\x07"
                                              "del");
    });
    producer.script.SetLastError({.text = "fail\x1b[2Jure\xc2\x85\xfe"});
}

// Another program has the camera.
void OpenElsewhere(Producer& producer)
{
    producer.script.Answer("IFOpenDevice", GC_ERR_ACCESS_DENIED);
    producer.EditDevices(
        [](Device& device) { device.info[DEVICE_INFO_ACCESS_STATUS] = Int32(DEVICE_ACCESS_STATUS_NOACCESS); });
}

// GCInitLib fails, and the producer knows why.
void RefusesToStart(Producer& producer)
{
    producer.script.Answer("GCInitLib", GC_ERR_ERROR);
    producer.script.SetLastError({.text = "line 7 of the settings has no number"});
}

// A second GCInitLib fails, and the places of descriptions are texts only.
void StrictStart(Producer& producer)
{
    NoUrlInformation(producer);
    producer.script.SetStrictInit(true);
}

// A failed query of information spoils the thread: every transfer behind it fails.
void PoisonedThreads(Producer& producer)
{
    thread_local bool isPoisoned = false;
    Lack(producer, "DSGetInfo", {STREAM_INFO_DEFINES_PAYLOADSIZE});
    producer.script.Intercept("DSGetInfo", [](const auto& arguments) -> std::optional<GC_ERROR> {
        if (arguments[1] == std::to_string(STREAM_INFO_DEFINES_PAYLOADSIZE)) isPoisoned = true;
        return std::nullopt;
    });
    producer.script.Intercept("GCReadPort", [](const auto&) -> std::optional<GC_ERROR> {
        return isPoisoned ? std::optional<GC_ERROR>(GC_ERR_IO) : std::nullopt;
    });
}

} // namespace scripted::wild
