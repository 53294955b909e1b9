#include "firmware/device_file.h"

#include "firmware/texts.h"
#include "firmware/waiting.h"

#include <algorithm>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

template <class Pointer>
void Find(INodeMap& map, const char* feature, Pointer& pointer)
{
    pointer = map.GetNode(feature);
    if (!pointer) throw LOGICAL_ERROR_EXCEPTION("The device has no feature '%s' to access its files with", feature);
}

// Asking instead of writing again: what the description lets be cached costs no transfer.
bool Selects(IEnumeration& selector, const char* entry)
{
    return IsReadable(selector.GetAccessMode()) && selector.ToString() == entry;
}

} // namespace

DeviceFile::DeviceFile(INodeMap& map, const std::string& name, uint32_t limit_ms)
    : lock(map.GetLock()), name(name), limit_ms(limit_ms)
{
    Find(map, "FileSelector", fileSelector);
    Find(map, "FileOperationSelector", operationSelector);
    Find(map, "FileOpenMode", openMode);
    Find(map, "FileAccessBuffer", buffer);
    Find(map, "FileAccessOffset", offsetNode);
    Find(map, "FileAccessLength", lengthNode);
    Find(map, "FileOperationExecute", execute);
    Find(map, "FileOperationStatus", status);
    Find(map, "FileOperationResult", result);
}

// What can be selected depends on what was selected before: first the file, then the mode, then the operation.
void DeviceFile::Open()
{
    const AutoLock held(lock);
    fileSelector->FromString(name.c_str());
    openMode->FromString("Write");
    Select("Open");
    Run();
    CheckStatus();
}

void DeviceFile::Write(std::string_view bytes, const std::function<void(size_t)>& progress)
{
    {
        const AutoLock held(lock);
        fileSelector->FromString(name.c_str());
        Select("Write");
    }
    for (size_t done = 0; done < bytes.size();)
    {
        done += WriteBlock(bytes.substr(done), done);
        progress(done);
    }
}

void DeviceFile::Close()
{
    const AutoLock held(lock);
    fileSelector->FromString(name.c_str());
    Select("Close");
    Run();
    CheckStatus();
}

void DeviceFile::CloseAfterFailure() noexcept
{
    try
    {
        Close();
    }
    catch (...)
    {
        // The first failure is the one to report.
    }
}

void DeviceFile::Select(const char* selected)
{
    operation = selected;
    operationSelector->FromString(selected);
}

// For the next block: other threads could move both selectors since the last one.
void DeviceFile::SelectAgain(const char* selected)
{
    if (!Selects(*fileSelector, name.c_str())) fileSelector->FromString(name.c_str());
    if (!Selects(*operationSelector, selected)) Select(selected);
}

void DeviceFile::Run()
{
    if (ExecuteAndWait(*execute, limit_ms)) return;
    throw RUNTIME_EXCEPTION(
        "The device did not finish the operation '%s' on its file '%s' within %u ms", operation.c_str(),
        Shown(name).c_str(), limit_ms);
}

void DeviceFile::CheckStatus()
{
    const GENICAM_NAMESPACE::gcstring text = status->ToString(false, true);
    if (text == "Success") return;
    throw RUNTIME_EXCEPTION(
        "The device answered '%s' to the operation '%s' on its file '%s'", Shown(text.c_str()).c_str(),
        operation.c_str(), Shown(name).c_str());
}

// Gives how many bytes the device took.
size_t DeviceFile::WriteBlock(std::string_view rest, size_t offset)
{
    const AutoLock held(lock);
    SelectAgain("Write");
    const int64_t room = buffer->GetLength();
    if (room <= 0) throw RUNTIME_EXCEPTION("The feature 'FileAccessBuffer' has a length of %" FMT_I64 "d", room);
    const size_t length = static_cast<size_t>(std::min(static_cast<uint64_t>(room), uint64_t(rest.size())));

    offsetNode->SetValue(static_cast<int64_t>(offset));
    lengthNode->SetValue(static_cast<int64_t>(length));
    buffer->Set(reinterpret_cast<const uint8_t*>(rest.data()), static_cast<int64_t>(length));
    Run();
    const int64_t taken = result->GetValue(false, true);
    CheckStatus();
    if (taken <= 0 || static_cast<uint64_t>(taken) > length)
    {
        throw RUNTIME_EXCEPTION(
            "The device took %" FMT_I64 "d of %zu bytes at %zu of its file '%s'", taken, length, offset,
            Shown(name).c_str());
    }
    return static_cast<size_t>(taken);
}

} // namespace GENAPI_NAMESPACE::runtime
