// DeviceFile: a file on a device that is written from its begin, through the features for file access.
//
// One use: Open, Write, Close. The nodes belong to the map, which must outlive the object. Each operation of the
// device, a block of a write included, holds the lock of the map from the selection to the status, so that no other
// thread's selection can lead it elsewhere. It tells why it failed, which a stream does not: LogicalErrorException for
// a feature that is missing, RuntimeException for an operation that the device refused or did not finish, the node's or
// the port's own exception otherwise.
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
    // After each block, without the lock, the progress is told the number of bytes that the device has taken.
    void Write(std::string_view bytes, const std::function<void(size_t)>& progress);
    void Close();
    // So that the file can be opened again; what fails meanwhile is left out.
    void CloseAfterFailure() noexcept;

private:
    void Select(const char* operation);
    void SelectAgain(const char* operation);
    void Run();
    void CheckStatus();
    size_t WriteBlock(std::string_view block, size_t offset);

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
