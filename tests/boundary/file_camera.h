// FileCamera: an open camera with files, which the test examines and controls. Its diary lists the requests that it
// received.
#pragma once

#include "tests/boundary/described_camera.h"
#include "tests/support/file_nodes.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace koro::test
{

// The device's side, over registers of eight bytes.
class DeviceFiles
{
public:
    enum Address : std::uint64_t
    {
        File = 0x00,
        Operation = 0x08,
        OpenMode = 0x10,
        Offset = 0x18,
        Length = 0x20,
        Execute = 0x28,
        Status = 0x30,
        Result = 0x38,
        Size = 0x40,
        MaxSize = 0x48,
        MaxLength = 0x50,
        MaxOffset = 0x58,
        LockedStatus = 0x60, // whether the entry Locked is available: 1 if so
        Block = 0x100,
    };
    static constexpr std::size_t blockLength = 8;

    std::string content = "0123456789abcdefghij"; // of the file that is selected, whichever it is
    std::string diary;
    bool refusesOpening = false;
    bool refusesDeleting = false;
    int failingBlock = -1;                            // the transfer of executing it fails; the first is 0
    std::size_t mostBytes = blockLength;              // of one block, regardless of the request
    std::int64_t lie = 0;                             // added to the result of each block
    std::uint64_t failingAddress = ~std::uint64_t{0}; // writes there fail
    std::function<void()> whileExecuting;             // must not use the script

    static std::string Registers()
    {
        std::string bytes(Block + blockLength, '\0');
        Put(bytes, MaxSize, 64);
        Put(bytes, MaxLength, blockLength);
        Put(bytes, MaxOffset, 63);
        return bytes;
    }

    static void Put(std::string& bytes, std::uint64_t address, std::int64_t value)
    {
        std::memcpy(&bytes.at(address), &value, sizeof value);
    }
    static std::int64_t At(const std::string& bytes, std::uint64_t address)
    {
        std::int64_t value = 0;
        std::memcpy(&value, &bytes.at(address), sizeof value);
        return value;
    }

    GenTL::GC_ERROR Written(std::string& bytes, std::uint64_t address)
    {
        if (address == failingAddress) return GenTL::GC_ERR_IO;
        static const std::map<std::uint64_t, std::string> names = {
            {File, "file"}, {OpenMode, "mode"}, {Offset, "offset"}, {Length, "length"}};
        const auto name = names.find(address);
        if (name != names.end()) Note(name->second + " " + std::to_string(At(bytes, address)));
        if (address != Execute) return GenTL::GC_ERR_SUCCESS;
        return Run(bytes);
    }

    bool IsOpen() const { return open; }

private:
    void Note(const std::string& entry) { diary += (diary.empty() ? "" : ", ") + entry; }

    GenTL::GC_ERROR Run(std::string& bytes)
    {
        static const std::vector<std::string> names = {"Open", "Close", "Read", "Write", "Delete"};
        const std::string operation = names.at(static_cast<std::size_t>(At(bytes, Operation)));
        Note(operation);
        if (whileExecuting) whileExecuting();
        const bool fails = (operation == "Open" && refusesOpening) || (operation == "Delete" && refusesDeleting);
        Put(bytes, Status, fails ? 1 : 0);
        Put(bytes, Result, 0);
        Put(bytes, Execute, 0);
        if (operation == "Open") open = !fails, block = 0;
        if (operation == "Close") open = false;
        if (operation == "Delete" && !fails) content.clear();
        GenTL::GC_ERROR result = GenTL::GC_ERR_SUCCESS;
        if (operation == "Read" || operation == "Write") result = Move(bytes, operation == "Read");
        Put(bytes, Size, static_cast<std::int64_t>(content.size()));
        return result;
    }

    GenTL::GC_ERROR Move(std::string& bytes, bool reading)
    {
        if (block++ == failingBlock) return GenTL::GC_ERR_IO;
        const auto place = static_cast<std::size_t>(At(bytes, Offset));
        std::size_t count = std::min(static_cast<std::size_t>(At(bytes, Length)), mostBytes);
        if (reading)
        {
            count = place < content.size() ? std::min(count, content.size() - place) : 0;
            if (count > 0) content.copy(&bytes[Block], count, place);
        }
        else
        {
            const auto end = static_cast<std::size_t>(At(bytes, MaxSize));
            count = place < end ? std::min(count, end - place) : 0;
            if (content.size() < place + count) content.resize(place + count);
            content.replace(place, count, bytes, Block, count);
        }
        Put(bytes, Result, static_cast<std::int64_t>(count) + lie);
        return GenTL::GC_ERR_SUCCESS;
    }

    bool open = false;
    int block = 0;
};

// The nodes by their names, so that a test can leave one out or put another in its place.
inline std::map<std::string, std::string> FileNodes()
{
    using Files = DeviceFiles;
    return {
        {"FileSelector", FileChoice(
                             "FileSelector", Files::File,
                             {"User",
                              "Table",
                              {"Locked", "<pIsAvailable>LockedReg</pIsAvailable>"},
                              {"Absent", "<pIsImplemented>No</pIsImplemented>"}},
                             "RW") +
                             FileRegister("LockedReg", Files::LockedStatus, "RO") +
                             "<Integer Name=\"No\"><Value>0</Value></Integer>"},
        {"FileOperationSelector",
         FileChoice("FileOperationSelector", Files::Operation, {"Open", "Close", "Read", "Write", "Delete"}, "RW")},
        {"FileOpenMode", FileChoice("FileOpenMode", Files::OpenMode, {"Read", "Write", "ReadWrite"}, "RW")},
        {"FileAccessOffset", FileNumber("FileAccessOffset", Files::Offset, "RW", "<Min>0</Min><pMax>MaxOffset</pMax>") +
                                 FileRegister("MaxOffset", Files::MaxOffset, "RO")},
        {"FileAccessLength", FileNumber("FileAccessLength", Files::Length, "RW", "<Min>0</Min><pMax>MaxLength</pMax>") +
                                 FileRegister("MaxLength", Files::MaxLength, "RO")},
        {"FileOperationExecute", FileCommand("FileOperationExecute", Files::Execute)},
        {"FileOperationStatus", FileChoice("FileOperationStatus", Files::Status, {"Success", "Failure"}, "RO")},
        {"FileOperationResult", FileNumber("FileOperationResult", Files::Result, "RO")},
        {"FileSize", FileNumber("FileSize", Files::Size, "RO", "<pMax>MaxSize</pMax>") +
                         FileRegister("MaxSize", Files::MaxSize, "RO")},
        {"FileAccessBuffer",
         "<Register Name=\"FileAccessBuffer\"><Address>" + std::to_string(Files::Block) + "</Address><Length>" +
             std::to_string(Files::blockLength) +
             "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable></Register>"}};
}

class FileCamera : public DescribedCamera
{
protected:
    // Opens the camera again with these nodes, over its own files.
    KORO_NodeMapHandle OpenFiles(const std::map<std::string, std::string>& nodes = FileNodes())
    {
        std::string text;
        for (const auto& [name, node] : nodes)
            text += node;
        map = Describe(text);
        files = std::make_shared<DeviceFiles>();
        producer->Edit([&](scripted::Tree& edited) {
            scripted::Port& port = RemotePort(edited);
            port.registers[0] = DeviceFiles::Registers();
            DeviceFiles::Put(port.registers[0], DeviceFiles::Size, static_cast<std::int64_t>(files->content.size()));
            port.written = [device = files](scripted::Port& changed, std::uint64_t address) {
                return device->Written(changed.registers[0], address);
            };
        });
        return map;
    }
    KORO_NodeMapHandle OpenFilesWithout(const std::string& node)
    {
        auto nodes = FileNodes();
        nodes.erase(node);
        return OpenFiles(nodes);
    }
    // With one node that is accessible as this: "RO", "WO", "NA" or "NI".
    KORO_NodeMapHandle OpenFilesWith(const std::string& node, const std::string& mode)
    {
        const std::string elements = mode == "NA"   ? "<pIsAvailable>No</pIsAvailable>"
                                     : mode == "NI" ? "<pIsImplemented>No</pIsImplemented>"
                                                    : "<ImposedAccessMode>" + mode + "</ImposedAccessMode>";
        auto nodes = FileNodes();
        const std::string begin = "<Integer Name=\"" + node + "\">";
        nodes[node].replace(0, begin.size(), begin + elements);
        return OpenFiles(nodes);
    }

    void SetDevice(std::uint64_t address, std::int64_t value) const
    {
        producer->Edit(
            [&](scripted::Tree& edited) { DeviceFiles::Put(RemotePort(edited).registers[0], address, value); });
    }

    KORO_FileAdapterHandle Adapter(const std::string& file = "User") const
    {
        return Get<KORO_FileAdapterHandle>(KORO_FileAdapter_Construct, map, file.c_str(), file.size() + 1);
    }

    KORO_NodeMapHandle map = nullptr;
    std::shared_ptr<DeviceFiles> files;
};

} // namespace koro::test
