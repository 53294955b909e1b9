// FileDevice: a port that plays a device with files, and a description of it. Its journal lists the requests that it
// received.
#pragma once

#include "tests/support/file_nodes.h"
#include "tests/unit/genicam/small_map.h"

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>
#include <stdint.h>
#include <string.h>
#include <string>
#include <vector>

namespace koro::test
{

class FileDevice : public GENAPI_NAMESPACE::IPort
{
public:
    enum Address : int64_t
    {
        File = 0x00,
        Operation = 0x08,
        OpenMode = 0x10,
        Offset = 0x18,
        Length = 0x20,
        Execute = 0x28,
        Status = 0x30,
        Result = 0x38,
        BufferLength = 0x40,
        Buffer = 0x1000
    };

    FileDevice() { registers[BufferLength] = 8; }

    void Read(void* buffer, int64_t address, int64_t length) override
    {
        if (address == Status) Note("status");
        if (address == Result) Note("result");
        if (address == Execute && busyQuestions > 0 && --busyQuestions == 0) registers[Execute] = 0;
        if (address == failingAddress) throw std::runtime_error("cable");
        if (address != Buffer)
        {
            memcpy(buffer, &registers[address], static_cast<size_t>(length));
            return;
        }
        Note("get " + std::to_string(length));
        memcpy(buffer, bytes.data(), static_cast<size_t>(length));
    }
    void Write(const void* buffer, int64_t address, int64_t length) override
    {
        if (address == failingAddress) throw std::runtime_error("cable");
        if (address == Buffer)
        {
            Note("set " + std::to_string(length));
            memcpy(bytes.data(), buffer, static_cast<size_t>(length));
            return;
        }
        int64_t value = 0;
        memcpy(&value, buffer, static_cast<size_t>(length));
        registers[address] = value;
        if (address == File) Note("file " + std::to_string(value));
        if (address == Operation) Note(std::string(operations[value]));
        if (address == OpenMode) Note("mode " + std::to_string(value));
        if (address == Offset) Note("offset " + std::to_string(value));
        if (address == Length) Note("length " + std::to_string(value));
        if (address == Execute) Run();
    }
    GENAPI_NAMESPACE::EAccessMode GetAccessMode() const override { return GENAPI_NAMESPACE::RW; }

    std::string Journal()
    {
        std::string text;
        text.swap(journal);
        return text;
    }
    int64_t BlockLength() const { return registers.at(BufferLength); }

    std::string content = "0123456789abcdefghij"; // of the file "User"; it lies at `origin`
    int64_t origin = 0;
    bool open = false;
    std::map<int64_t, int64_t> registers;
    int64_t failingAddress = -1;   // the port throws there
    int64_t failure = 1;           // status of what fails; the entry Failure
    int failingBlock = -1;         // this one fails; the first is 0
    int throwingBlock = -1;        // executing this one throws
    std::set<std::string> refused; // operations that fail
    int64_t mostBytes = 1 << 20;   // of one block, regardless of the request
    int64_t lie = 0;               // added to every result
    int busyPolls = 0;             // questions until an operation is done; -1: never
    int busyQuestions = 0;

private:
    static constexpr const char* operations[] = {"Open", "Close", "Read", "Write", "Delete"};

    void Note(const std::string& entry) { journal += (journal.empty() ? "" : ", ") + entry; }

    void Run()
    {
        Note("execute");
        const std::string operation = operations[registers[Operation]];
        busyQuestions = busyPolls;
        if (busyPolls == 0) registers[Execute] = 0;
        registers[Status] = refused.count(operation) > 0 ? failure : 0;
        registers[Result] = 0;
        if (operation == "Open") open = true;
        if (operation == "Close") open = false, block = 0;
        if (operation == "Delete") content.clear();
        if (operation == "Read" || operation == "Write") Move(operation == "Read");
    }

    void Move(bool reading)
    {
        const int number = block++;
        if (number == throwingBlock) throw std::runtime_error("cable");
        if (number == failingBlock) registers[Status] = failure;
        if (!open || number == failingBlock) return;
        const int64_t place = registers[Offset] - origin;
        int64_t count = std::min(registers[Length], mostBytes);
        if (place < 0) return;
        if (reading)
        {
            count = std::max<int64_t>(0, std::min(count, static_cast<int64_t>(content.size()) - place));
            if (count > 0) memcpy(bytes.data(), content.data() + place, static_cast<size_t>(count));
        }
        else
        {
            if (content.size() < static_cast<size_t>(place + count)) content.resize(static_cast<size_t>(place + count));
            memcpy(&content[static_cast<size_t>(place)], bytes.data(), static_cast<size_t>(count));
        }
        registers[Result] = count + lie;
    }

    std::vector<uint8_t> bytes = std::vector<uint8_t>(1 << 20);
    std::string journal;
    int block = 0; // since the file was opened
};

// The nodes by their names, so that a test can leave one out or put another in its place.
inline std::map<std::string, std::string> FileNodes()
{
    return {
        {"FileSelector", FileChoice("FileSelector", FileDevice::File, {"User", "Firmware"}, "RW")},
        {"FileOperationSelector",
         FileChoice(
             "FileOperationSelector", FileDevice::Operation, {"Open", "Close", "Read", "Write", "Delete"}, "RW")},
        {"FileOpenMode", FileChoice("FileOpenMode", FileDevice::OpenMode, {"Read", "Write", "ReadWrite"}, "RW")},
        {"FileAccessOffset", FileNumber("FileAccessOffset", FileDevice::Offset, "RW", "<Min>0</Min>")},
        {"FileAccessLength", FileNumber("FileAccessLength", FileDevice::Length, "RW", "<Min>0</Min>")},
        {"FileOperationExecute", FileCommand("FileOperationExecute", FileDevice::Execute)},
        {"FileOperationStatus", FileChoice("FileOperationStatus", FileDevice::Status, {"Success", "Failure"}, "RO")},
        {"FileOperationResult", FileNumber("FileOperationResult", FileDevice::Result, "RO")},
        {"FileAccessBuffer",
         "<Register Name=\"FileAccessBuffer\"><Address>4096</Address><pLength>BufferLength</pLength>"
         "<AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable></Register>" +
             FileRegister("BufferLength", FileDevice::BufferLength, "RO")}};
}

// A device and the map over it.
class FileMap
{
public:
    explicit FileMap(const std::map<std::string, std::string>& nodes = FileNodes())
    {
        std::string elements;
        for (const auto& [name, text] : nodes)
            elements += text;
        GENAPI_NAMESPACE::CNodeMapFactory factory(Described(elements).c_str());
        map = factory.CreateNodeMap();
        map->Connect(&device);
    }
    ~FileMap() { GENAPI_NAMESPACE::CastToIDestroy(map)->Destroy(); }
    FileMap(const FileMap&) = delete;
    FileMap& operator=(const FileMap&) = delete;

    FileDevice device;
    GENAPI_NAMESPACE::INodeMap* map;
};

} // namespace koro::test
