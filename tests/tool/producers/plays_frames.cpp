// A scripted producer that plays by itself, for consumers in a process of their own: its camera if0-dev0 sends the
// frames of KORO_TEST_FRAMES, one each time the consumer waits for a frame; '.' sends nothing once, and behind the last
// letter nothing comes any more. The last letter of a text that ends with '*' is repeated for ever.
//
//   W  a whole frame: 4 x 2 pixels, Mono8, all of them the number of the frame
//   L  its leader was lost: incomplete, and no question about the picture is answered
//   B  a broken frame that claims its full size: incomplete
//   S  a short frame: incomplete, three bytes
//   s  a short frame that its producer does not call incomplete
//   E  an empty buffer without new data
//   O  a frame of no bytes: incomplete
//   o  a frame of no bytes that its producer does not call incomplete
//   Q  a frame that is called whole, of which the width cannot be read
//   F  three bytes that are called whole, of which the pixel format cannot be read
//   I  a whole frame; whether it is, its producer refuses to answer
//   Z  a whole frame of which the filled size cannot be read
//   H  a whole frame, of which only one line was received
//   h  a whole frame of two parts of two lines, of which only one line of the first was received
//   U  a whole frame of which only the sides are known
//   V  a whole frame of which the pixel format cannot be read
//   v  the same, but three bytes of the eight that were meant to come
//   2 to 9, G, C  a whole frame of that payload type; G is 11 (GenDC), C is 1000, which the standard leaves open
//   N  a whole frame without an image, as its producer states
//   P  a whole frame of two parts
//   p  the same, but five bytes of eight
//   D  nothing, and from then on the camera is dead: what reaches it fails with GC_ERR_TIMEOUT, and waits first at the
//      gate when KORO_TEST_GATE names one, a FIFO that opens when somebody writes to it
//   X  nothing, and the camera leaves the device list; its stream goes on
//   x  nothing, and it is listed again
//
// With KORO_TEST_SERIAL all cameras have that serial number.
#include "producers/scripted/script.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <initializer_list>
#include <memory>
#include <string>
#include <unistd.h>

extern "C" scripted::Script* KoroScript();

namespace
{

using namespace GenTL;
using namespace scripted;

std::string Variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

void WaitAtTheGate()
{
    static const std::string gate = Variable("KORO_TEST_GATE");
    static std::atomic<bool> isOpen{false};
    if (gate.empty() || isOpen) return;
    const int end = open(gate.c_str(), O_RDONLY | O_CLOEXEC);
    isOpen = true;
    if (end >= 0) close(end);
}

void Die()
{
    Script& script = *KoroScript();
    for (const char* const function : {"GCReadPort", "GCWritePort", "DevClose"})
    {
        script.OnEntry(function, WaitAtTheGate);
        script.Answer(function, GC_ERR_TIMEOUT);
    }
}

void Refuse(Infos& infos, std::initializer_list<BUFFER_INFO_CMD> commands)
{
    for (const BUFFER_INFO_CMD command : commands)
        infos[command] = Failing(GC_ERR_NOT_IMPLEMENTED);
}

Infos PartOfOneLine()
{
    return {
        {BUFFER_PART_INFO_DATA_SIZE, Size(4)},
        {BUFFER_PART_INFO_DATA_TYPE, Size(PART_DATATYPE_2D_IMAGE)},
        {BUFFER_PART_INFO_DATA_FORMAT, UInt64(0x01080001)}, // Mono8
        {BUFFER_PART_INFO_WIDTH, Size(4)},
        {BUFFER_PART_INFO_HEIGHT, Size(1)},
    };
}

Infos PartOfTwoLines()
{
    Infos part = PartOfOneLine();
    part[BUFFER_PART_INFO_WIDTH] = Size(2);
    part[BUFFER_PART_INFO_HEIGHT] = Size(2);
    return part;
}

void AnswerLittle(Infos& infos)
{
    Refuse(
        infos, {BUFFER_INFO_NEW_DATA, BUFFER_INFO_SIZE_FILLED, BUFFER_INFO_IS_INCOMPLETE,
                BUFFER_INFO_DATA_LARGER_THAN_BUFFER, BUFFER_INFO_PAYLOADTYPE, BUFFER_INFO_PIXELFORMAT_NAMESPACE,
                BUFFER_INFO_PIXELFORMAT, BUFFER_INFO_XPADDING, BUFFER_INFO_IMAGEOFFSET, BUFFER_INFO_PIXEL_ENDIANNESS,
                BUFFER_INFO_DELIVERED_IMAGEHEIGHT, BUFFER_INFO_DATA_SIZE, BUFFER_INFO_IMAGEPRESENT});
}

void ChangePayloadType(char letter, Infos& infos)
{
    if (letter >= '2' && letter <= '9') infos[BUFFER_INFO_PAYLOADTYPE] = Size(static_cast<size_t>(letter - '0'));
    if (letter == 'G') infos[BUFFER_INFO_PAYLOADTYPE] = Size(PAYLOAD_TYPE_GENDC);
    if (letter == 'C') infos[BUFFER_INFO_PAYLOADTYPE] = Size(PAYLOAD_TYPE_CUSTOM_ID);
    if (letter == 'N') infos[BUFFER_INFO_IMAGEPRESENT] = Bool8(false);
}

// What the producer says of a frame that it does not call incomplete.
void ChangeAnswers(char letter, Infos& infos)
{
    if (std::strchr("FVv", letter)) Refuse(infos, {BUFFER_INFO_PIXELFORMAT});
    if (letter == 'v') infos[BUFFER_INFO_DATA_SIZE] = Size(8);
    if (letter == 'I') infos[BUFFER_INFO_IS_INCOMPLETE] = Failing(GC_ERR_TIMEOUT);
    if (letter == 'Z') Refuse(infos, {BUFFER_INFO_SIZE_FILLED});
    if (letter == 'H') infos[BUFFER_INFO_DELIVERED_IMAGEHEIGHT] = Size(1);
    if (letter == 'U') AnswerLittle(infos);
    ChangePayloadType(letter, infos);
}

Frame FrameOf(char letter, size_t number)
{
    Frame frame;
    frame.bytes = std::string(8, static_cast<char>(number));
    frame.incomplete = std::strchr("LBSO", letter) != nullptr;
    if (std::strchr("SsFv", letter)) frame.bytes.resize(3);
    if (letter == 'p') frame.bytes.resize(5);
    if (letter == 'O' || letter == 'o') frame.bytes.clear();
    if (letter == 'P' || letter == 'p')
    {
        frame.parts = {PartOfOneLine(), PartOfOneLine()};
        frame.partOffsets = {0, 4};
    }
    if (letter == 'h')
    {
        frame.parts = {PartOfTwoLines(), PartOfTwoLines()};
        frame.parts.front()[BUFFER_PART_INFO_DELIVERED_IMAGEHEIGHT] = Size(1);
        frame.partOffsets = {0, 4};
    }
    ChangeAnswers(letter, frame.info);
    if (letter == 'E')
    {
        frame.bytes.clear();
        frame.info[BUFFER_INFO_NEW_DATA] = Bool8(false);
    }
    if (letter == 'Q') Refuse(frame.info, {BUFFER_INFO_WIDTH});
    if (letter == 'L')
    {
        Refuse(
            frame.info, {BUFFER_INFO_PIXELFORMAT, BUFFER_INFO_PIXELFORMAT_NAMESPACE, BUFFER_INFO_WIDTH,
                         BUFFER_INFO_HEIGHT, BUFFER_INFO_PAYLOADTYPE});
    }
    return frame;
}

void ListCamera(bool listed)
{
    KoroScript()->Edit([listed](Tree& tree) {
        static std::shared_ptr<Device> camera = tree.interfaces.front()->devices.front();
        auto& devices = tree.interfaces.front()->devices;
        devices.erase(std::remove(devices.begin(), devices.end(), camera), devices.end());
        if (listed) devices.insert(devices.begin(), camera);
    });
}

void PlayNext()
{
    static const std::string text = Variable("KORO_TEST_FRAMES");
    static size_t next = 0;
    static size_t number = 1;
    if (next >= text.size()) return;
    const char letter = text[next];
    const bool isRepeated = text.substr(next + 1) == "*";
    if (letter == 'D') Die();
    if (letter == 'X' || letter == 'x') ListCamera(letter == 'x');
    const bool isFrame = std::strchr("D.Xx", letter) == nullptr;
    if (isFrame && !KoroScript()->Deliver("if0-dev0-stream0", FrameOf(letter, number))) return;
    if (isFrame) ++number;
    if (!isRepeated) ++next;
}

const char cameraDescription[] = R"(<?xml version="1.0"?>
<RegisterDescription ModelName="Plays" VendorName="ZVR" ToolTip="" StandardNameSpace="None" SchemaMajorVersion="1"
 SchemaMinorVersion="1" SchemaSubMinorVersion="0" MajorVersion="1" MinorVersion="0" SubMinorVersion="0" ProductGuid=""
 VersionGuid="" xmlns="http://www.genicam.org/GenApi/Version_1_1">
 <Category Name="Root"><pFeature>AcquisitionStart</pFeature><pFeature>AcquisitionStop</pFeature></Category>
 <Command Name="AcquisitionStart"><pValue>StartReg</pValue><CommandValue>1</CommandValue></Command>
 <Command Name="AcquisitionStop"><pValue>StopReg</pValue><CommandValue>1</CommandValue></Command>
 <IntReg Name="StartReg"><Address>0</Address><Length>4</Length><AccessMode>WO</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
 <IntReg Name="StopReg"><Address>4</Address><Length>4</Length><AccessMode>WO</AccessMode><pPort>Device</pPort>
  <Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>
 <Port Name="Device"/>
</RegisterDescription>
)";

void Describe(Port& port)
{
    constexpr uint64_t address = 0x20000;
    const size_t size = sizeof cameraDescription - 1;
    char url[64];
    std::snprintf(url, sizeof url, "local:plays.xml;%llX;%zX", 0ULL + address, size);
    Infos& place = port.urls.front();
    place[URL_INFO_URL] = Text(url);
    place[URL_INFO_FILE_REGISTER_ADDRESS] = UInt64(address);
    place[URL_INFO_FILE_SIZE] = UInt64(size);
    place[URL_INFO_FILENAME] = Text("plays.xml");
    port.registers[address] = cameraDescription;
}

[[gnu::constructor]] void Begin()
{
    Script& script = *KoroScript();
    script.KeepJournal(false);
    script.OnEntry("EventGetData", PlayNext);
    script.Edit([](Tree& tree) {
        const std::string serial = Variable("KORO_TEST_SERIAL");
        for (const auto& cameraInterface : tree.interfaces)
        {
            for (const auto& device : cameraInterface->devices)
            {
                Describe(device->remotePort);
                if (!serial.empty()) device->info[DEVICE_INFO_SERIAL_NUMBER] = Text(serial);
            }
        }
    });
}

} // namespace
