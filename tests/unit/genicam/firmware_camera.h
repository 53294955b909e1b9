// FirmwareCamera: a camera in memory, its registers, its files, its node map, and a journal of what was done to it.
// UpdatableCamera: the device object of an application around it. RecordingObserver: writes into the same journal.
#pragma once

#include "tests/unit/genicam/small_map.h"

#include <FirmwareUpdate/FirmwareUpdater.h>
#include <GenICam.h>
#include <algorithm>
#include <functional>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string.h>
#include <string>
#include <vector>

namespace koro::test
{

using Journal = std::vector<std::string>;

class FirmwareCamera : public GENAPI_NAMESPACE::IPort
{
public:
    enum Register : int64_t
    {
        FileSelector = 0x100,
        Operation = 0x104,
        OpenMode = 0x108,
        Execute = 0x10c,
        Offset = 0x110,
        Length = 0x114,
        Status = 0x118,
        Result = 0x11c,
        Gain = 0x120,
        Activate = 0x124,
        Secret = 0x128,
        Vendor = 0x200,
        Version = 0x240,
        Buffer = 0x1000
    };
    enum Operations
    {
        Open,
        Close,
        ReadFile,
        WriteFile,
        Delete
    };

    explicit FirmwareCamera(Journal& written, uint32_t bufferLength = 64) : journal(written), length(bufferLength)
    {
        Describe(Elements());
        SetText(Vendor, "Acme Vision");
        SetText(Version, "V1.2");
    }
    ~FirmwareCamera() { GENAPI_NAMESPACE::CastToIDestroy(map)->Destroy(); }
    FirmwareCamera(const FirmwareCamera&) = delete;
    FirmwareCamera& operator=(const FirmwareCamera&) = delete;

    void Read(void* buffer, int64_t address, int64_t size) override
    {
        if (address == failingRead) throw std::runtime_error("the port does not read");
        if (address == Execute) SetNumber(Execute, Poll());
        if (address == Activate) SetNumber(Activate, Poll());
        if (address == Status) journal.push_back("read Status");
        if (address == Result) journal.push_back("read Result");
        for (int64_t i = 0; i < size; ++i)
            static_cast<uint8_t*>(buffer)[i] = bytes[address + i];
    }
    void Write(const void* buffer, int64_t address, int64_t size) override
    {
        if (address == failingWrite) throw std::runtime_error("the port does not write");
        for (int64_t i = 0; i < size; ++i)
            bytes[address + i] = static_cast<const uint8_t*>(buffer)[i];
        journal.push_back(
            address == Buffer ? "write Buffer[" + std::to_string(size) + "]"
                              : "write " + NameOf(address) + "=" + std::to_string(Number(address)));
        if (address == Execute)
        {
            if (onExecute) onExecute();
            RunOperation();
        }
        if (address == Activate) pollsLeft = polls;
    }
    GENAPI_NAMESPACE::EAccessMode GetAccessMode() const override { return GENAPI_NAMESPACE::RW; }

    uint32_t Number(int64_t address)
    {
        uint32_t number = 0;
        for (int64_t i = 0; i < 4; ++i)
            number |= static_cast<uint32_t>(bytes[address + i]) << 8 * i;
        return number;
    }
    void SetNumber(int64_t address, uint32_t number)
    {
        for (int64_t i = 0; i < 4; ++i)
            bytes[address + i] = static_cast<uint8_t>(number >> 8 * i);
    }
    void SetText(int64_t address, const std::string& text)
    {
        for (size_t i = 0; i < 64; ++i)
            bytes[address + static_cast<int64_t>(i)] = i < text.size() ? static_cast<uint8_t>(text[i]) : 0;
    }
    // Makes a new node map of the elements.
    void Describe(const std::string& elements)
    {
        if (map) GENAPI_NAMESPACE::CastToIDestroy(map)->Destroy();
        map = GENAPI_NAMESPACE::CNodeMapFactory(Described(elements).c_str()).CreateNodeMap();
        map->Connect(this);
    }
    std::string Elements() const
    {
        return String("DeviceVendorName", Vendor) + String("DeviceFirmwareVersion", Version) +
               Number("Gain", Gain, "RW") + Number("Secret", Secret, "WO") + Number("ActivateReg", Activate, "RW") +
               "<Command Name=\"Activate\"><pValue>ActivateReg</pValue><CommandValue>1</CommandValue></Command>" +
               Choice("FileSelector", FileSelector, {"UserFile", "Firmware"}) +
               Choice("FileOperationSelector", Operation, {"Open", "Close", "Read", "Write", "Delete"}) +
               Choice("FileOpenMode", OpenMode, {"Read", "Write", "ReadWrite"}) +
               Choice("FileOperationStatus", Status, {"Success", "Failure"}) +
               Number("FileAccessOffset", Offset, "RW") + Number("FileAccessLength", Length, "RW") +
               Number("FileOperationResult", Result, "RO") + Number("ExecuteReg", Execute, "RW") +
               "<Command Name=\"FileOperationExecute\"><pValue>ExecuteReg</pValue><CommandValue>1</CommandValue>"
               "</Command><Register Name=\"FileAccessBuffer\"><Address>4096</Address><Length>" +
               std::to_string(length) +
               "</Length><AccessMode>RW</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable></Register>";
    }

    Journal& journal;
    GENAPI_NAMESPACE::INodeMap* map = nullptr;
    std::string file;                  // what was written into the selected one
    int polls = 0;                     // how often a command is still busy
    int failingOperation = -1;         // has the status Failure
    uint32_t takes = 0xffffffff;       // at most so many bytes of a block
    uint32_t refusesFrom = 0xffffffff; // offset at which writing fails
    uint32_t claims = 0;               // more taken than given
    int64_t failingRead = -1;
    int64_t failingWrite = -1;
    std::function<void()> onExecute; // an operation on a file is starting

private:
    static std::string Place(int64_t address, const std::string& mode, int size)
    {
        return "<Address>" + std::to_string(address) + "</Address><Length>" + std::to_string(size) +
               "</Length><AccessMode>" + mode + "</AccessMode><pPort>Device</pPort><Cachable>NoCache</Cachable>";
    }
    static std::string String(const std::string& name, int64_t address)
    {
        return "<StringReg Name=\"" + name + "\">" + Place(address, "RO", 64) + "</StringReg>";
    }
    static std::string Number(const std::string& name, int64_t address, const std::string& mode)
    {
        return "<IntReg Name=\"" + name + "\">" + Place(address, mode, 4) +
               "<Sign>Unsigned</Sign><Endianess>LittleEndian</Endianess></IntReg>";
    }
    static std::string Choice(const std::string& name, int64_t address, const std::vector<std::string>& entries)
    {
        std::string text = "<Enumeration Name=\"" + name + "\">";
        for (size_t i = 0; i < entries.size(); ++i)
        {
            text += "<EnumEntry Name=\"" + entries[i] + "\"><Value>" + std::to_string(i) + "</Value></EnumEntry>";
        }
        return text + "<pValue>" + name + "Reg</pValue></Enumeration>" + Number(name + "Reg", address, "RW");
    }
    static std::string NameOf(int64_t address)
    {
        switch (address)
        {
        case FileSelector:
            return "FileSelector";
        case Operation:
            return "Operation";
        case OpenMode:
            return "OpenMode";
        case Execute:
            return "Execute";
        case Offset:
            return "Offset";
        case Length:
            return "Length";
        case Gain:
            return "Gain";
        case Activate:
            return "Activate";
        case Secret:
            return "Secret";
        default:
            return std::to_string(address);
        }
    }

    // What a busy command register holds.
    uint32_t Poll() { return pollsLeft > 0 && pollsLeft-- > 0 ? 1 : 0; }

    void RunOperation()
    {
        pollsLeft = polls;
        const uint32_t operation = Number(Operation);
        const bool refused = operation == WriteFile && Number(Offset) >= refusesFrom;
        const bool failed = refused || static_cast<int>(operation) == failingOperation;
        SetNumber(Status, failed ? 1 : 0);
        SetNumber(Result, 0);
        if (failed) return;
        if (operation == Open) file.clear();
        if (operation == WriteFile)
        {
            const uint32_t taken = std::min(Number(Length), takes);
            file.resize(std::max(file.size(), size_t(Number(Offset)) + taken));
            for (uint32_t i = 0; i < taken; ++i)
                file[Number(Offset) + i] = static_cast<char>(bytes[Buffer + i]);
            SetNumber(Result, taken + claims);
        }
    }

    std::map<int64_t, uint8_t> bytes;
    uint32_t length;
    int pollsLeft = 0;
};

class UpdatableCamera : public GENAPI_NAMESPACE::IFirmwareUpdatableDevice
{
public:
    explicit UpdatableCamera(FirmwareCamera& used) : camera(used) {}

    void PrepareForFirmwareUpdate() override { Enter("Prepare"); }
    GENAPI_NAMESPACE::INodeMap* GetNodeMapOfDeviceToUpdate() override
    {
        Enter("GetNodeMap");
        return hasMap ? camera.map : nullptr;
    }
    GENAPI_NAMESPACE::INodeMap* DeviceResetWhileUpdatingFirmware(
        unsigned int duration_ms, unsigned int delay_ms) override
    {
        Enter("Reset(" + std::to_string(duration_ms) + ", " + std::to_string(delay_ms) + ")");
        if (onReset) onReset();
        return hasMapAfterReset ? camera.map : nullptr;
    }
    void CleanupAfterFirmwareUpdate() override { Enter("Cleanup"); }
    GENICAM_NAMESPACE::gcstring GetDisplayName() override
    {
        Enter("GetDisplayName");
        return "Acme #7";
    }

    FirmwareCamera& camera;
    std::string throwsAt; // the call of that name
    std::function<void()> thrown = [] { throw std::runtime_error("the device is gone"); };
    std::function<void()> onReset;
    bool hasMap = true;
    bool hasMapAfterReset = true;

private:
    void Enter(const std::string& call)
    {
        {
            // The lock guards the journal where other threads write registers beside the update.
            const GENAPI_NAMESPACE::AutoLock lock(camera.map->GetLock());
            camera.journal.push_back(call);
        }
        if (call == throwsAt) thrown();
    }
};

class RecordingObserver : public GENAPI_NAMESPACE::IFirmwareUpdateProgressObserver
{
public:
    explicit RecordingObserver(Journal& written) : journal(written) {}

    void OnFirmwareUpdateBegin(const GENAPI_NAMESPACE::CFirmwareUpdateInfo& info, unsigned int duration_ms) override
    {
        Tell("begin", std::string(info.GetInfo("Version")) + " " + std::to_string(duration_ms));
    }
    void OnFirmwareUpdateProgressStepBegin(
        GENAPI_NAMESPACE::EFirmwareUpdateProgressStepType type, unsigned int duration_ms,
        const char* description) override
    {
        Tell("step", std::to_string(type) + " " + std::to_string(duration_ms) + " '" + description + "'");
    }
    void OnFirmwareUpdateProgressStepPartialProgress(
        GENAPI_NAMESPACE::EFirmwareUpdateProgressStepType type, double percent) override
    {
        std::ostringstream text;
        text << type << " " << percent;
        Tell("progress", text.str());
    }
    void OnFirmwareUpdateProgressStepEnd(
        GENAPI_NAMESPACE::EFirmwareUpdateProgressStepType type, unsigned int duration_ms) override
    {
        Tell("step end", std::to_string(type) + " " + std::to_string(duration_ms));
    }
    void OnFirmwareUpdateEnd() override { Tell("end", ""); }
    void OnFirmwareUpdateError(const GENICAM_NAMESPACE::GenericException& error) override
    {
        errorText = error.GetDescription();
        Tell("error", "");
    }

    Journal& journal;
    std::string throwsAt; // the report of that name
    std::string errorText;

private:
    void Tell(const std::string& report, const std::string& text)
    {
        journal.push_back(report + (text.empty() ? "" : " ") + text);
        if (report == throwsAt) throw std::runtime_error("the observer gives up at " + report);
    }
};

} // namespace koro::test
