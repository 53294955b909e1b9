// DeviceFile: a file on a device that is written from its beginning, through the features for file access.
//
// Used once: Open, Write, Close. The nodes belong to the map, which must outlive the object. Each operation of the
// device, including a block of a write, holds the lock of the map from selecting the file to reading the status, so no
// other thread can change the selection in between. Unlike a stream it reports why it failed: LogicalErrorException for
// a missing feature, RuntimeException for an operation that the device refused or did not finish, otherwise the
// exception of the node or port.
#pragma once

#include <GenApi/Pointer.h>
#include <GenApi/Synch.h>
#include <functional>
#include <string>
#include <string_view>

namespace GENAPI_NAMESPACE::runtime
{

class DeviceFile
{
public:
    // `limit_ms`: for each operation of the device.
    DeviceFile(INodeMap& map, const std::string& name, uint32_t limit_ms);

    void Open();
    // After each block `progress` receives the number of bytes that the device has accepted; the lock is not held.
    void Write(std::string_view bytes, const std::function<void(size_t)>& progress);
    void Close();
    // So that the file can be opened again; what fails meanwhile is left out.
    void CloseAfterFailure() noexcept;

private:
    void Select(const char* selected);
    void SelectAgain(const char* selected);
    void Run();
    void CheckStatus();
    size_t WriteBlock(std::string_view rest, size_t offset);

    CLock& lock;
    const std::string name;
    const uint32_t limit_ms;
    std::string operation; // the selected one
    CEnumerationPtr fileSelector;
    CEnumerationPtr operationSelector;
    CEnumerationPtr openMode;
    CEnumerationPtr status;
    CRegisterPtr buffer;
    CIntegerPtr offsetNode;
    CIntegerPtr lengthNode;
    CIntegerPtr result;
    CCommandPtr execute;
};

} // namespace GENAPI_NAMESPACE::runtime
