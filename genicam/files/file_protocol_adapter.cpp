#include "base/failures.h"

#include <Base/GCException.h>
#include <GenApi/Filestream.h>
#include <GenApi/Synch.h>
#include <thread>

namespace GENAPI_NAMESPACE
{

namespace
{

// Null when neither reading nor writing is requested.
const char* OpenModeFor(std::ios_base::openmode mode)
{
    const bool in = (mode & std::ios_base::in) != 0;
    const bool out = (mode & std::ios_base::out) != 0;
    if (in && out) return "ReadWrite";
    if (in) return "Read";
    return out ? "Write" : nullptr;
}

} // namespace

FileProtocolAdapter::FileProtocolAdapter() : map(nullptr), timeLimit(std::chrono::minutes(10)) {}

FileProtocolAdapter::~FileProtocolAdapter() {}

bool FileProtocolAdapter::Nodes::AreValid() const
{
    return file.IsValid() && operation.IsValid() && openMode.IsValid() && buffer.IsValid() && offset.IsValid() &&
           length.IsValid() && execute.IsValid() && status.IsValid() && result.IsValid();
}

bool FileProtocolAdapter::attach(INodeMap* pInterface)
{
    map = nullptr;
    if (!pInterface) throw RUNTIME_EXCEPTION("The node map of a file protocol adapter must not be NULL");
    const AutoLock held(pInterface->GetLock());
    nodes.file = pInterface->GetNode("FileSelector");
    nodes.operation = pInterface->GetNode("FileOperationSelector");
    nodes.openMode = pInterface->GetNode("FileOpenMode");
    nodes.buffer = pInterface->GetNode("FileAccessBuffer");
    nodes.offset = pInterface->GetNode("FileAccessOffset");
    nodes.length = pInterface->GetNode("FileAccessLength");
    nodes.execute = pInterface->GetNode("FileOperationExecute");
    nodes.status = pInterface->GetNode("FileOperationStatus");
    nodes.result = pInterface->GetNode("FileOperationResult");
    if (!nodes.AreValid()) return false;
    map = pInterface;
    return true;
}

void FileProtocolAdapter::Select(const char* file, const char* operation)
{
    nodes.file->FromString(file);
    nodes.operation->FromString(operation);
}

// Queries a few times without a pause, since most devices are quick, then less and less often.
void FileProtocolAdapter::ExecuteAndWait()
{
    using Clock = std::chrono::steady_clock;
    const std::chrono::milliseconds longestPause(20);
    const int quickQuestions = 16;
    const Clock::time_point start = Clock::now();
    std::chrono::milliseconds pause(1);
    nodes.execute->Execute();
    for (int question = 0; !nodes.execute->IsDone(); ++question)
    {
        if (Clock::now() - start >= timeLimit) throw TIMEOUT_EXCEPTION("The file operation does not end");
        if (question < quickQuestions) continue;
        std::this_thread::sleep_for(pause);
        pause = std::min(2 * pause, longestPause);
    }
}

// The device changes the value by itself, regardless of the caching mode in its description.
bool FileProtocolAdapter::Succeeded()
{
    return nodes.status->ToString(false, true) == "Success";
}

bool FileProtocolAdapter::SelectAndRun(const char* file, const char* operation)
{
    Select(file, operation);
    ExecuteAndWait();
    return Succeeded();
}

bool FileProtocolAdapter::openFile(const char* pFileName, std::ios_base::openmode mode)
{
    const char* const openMode = OpenModeFor(mode);
    if (!map || !openMode) return false;
    const AutoLock held(map->GetLock());
    nodes.file->FromString(pFileName);
    bool good = false;
    runtime::Succeeds([&] {
        nodes.openMode->FromString(openMode);
        nodes.operation->FromString("Open");
        ExecuteAndWait();
        good = Succeeded();
    });
    return good;
}

bool FileProtocolAdapter::closeFile(const char* pFileName)
{
    if (!map) return false;
    const AutoLock held(map->GetLock());
    bool good = false;
    runtime::Succeeds([&] { good = SelectAndRun(pFileName, "Close"); });
    return good;
}

bool FileProtocolAdapter::deleteFile(const char* pFileName)
{
    if (!map) return false;
    const AutoLock held(map->GetLock());
    bool good = false;
    runtime::Succeeds([&] { good = SelectAndRun(pFileName, "Delete"); });
    return good;
}

// Transfers block after block until everything is moved, the device moves nothing or it reports a failure. A device
// that claims to have moved more than requested is not believed, and the transfer ends.
template <class Prepare, class Finish>
int64_t FileProtocolAdapter::Transfer(
    const char* file, const char* operation, int64_t offset, int64_t length, const Prepare& prepare,
    const Finish& finish)
{
    if (!map || offset < 0 || length <= 0) return 0;
    const AutoLock held(map->GetLock());
    int64_t done = 0;
    runtime::Succeeds([&] {
        Select(file, operation);
        const int64_t capacity = nodes.buffer->GetLength();
        while (done < length)
        {
            const int64_t block = std::min(length - done, capacity);
            if (block <= 0 || block > GC_INT64_MAX - offset - done) return;
            nodes.offset->SetValue(offset + done);
            nodes.length->SetValue(block);
            prepare(done, block);
            ExecuteAndWait();
            const int64_t moved = nodes.result->GetValue(false, true);
            if (moved <= 0 || moved > block) return;
            finish(done, moved);
            done += moved;
            if (!Succeeded()) return;
        }
    });
    return done;
}

GenICam_streamsize FileProtocolAdapter::write(const char* buf, int64_t offs, int64_t len, const char* pFileName)
{
    if (!buf) return 0;
    const auto fill = [&](int64_t done, int64_t block) {
        nodes.buffer->Set(reinterpret_cast<const uint8_t*>(buf) + done, block);
    };
    return Transfer(pFileName, "Write", offs, len, fill, [](int64_t, int64_t) {});
}

GenICam_streamsize FileProtocolAdapter::read(char* buf, int64_t offs, GenICam_streamsize len, const char* pFileName)
{
    if (!buf) return 0;
    const auto fetch = [&](int64_t done, int64_t moved) {
        nodes.buffer->Get(reinterpret_cast<uint8_t*>(buf) + done, moved, false, true);
    };
    return Transfer(
        pFileName, "Read", offs, len, [](int64_t, int64_t) {}, fetch);
}

int64_t FileProtocolAdapter::getBufSize(const char* pFileName, std::ios_base::openmode mode)
{
    if (!map || !OpenModeFor(mode)) return 0;
    const AutoLock held(map->GetLock());
    int64_t size = 0;
    runtime::Succeeds([&] {
        Select(pFileName, (mode & std::ios_base::out) != 0 ? "Write" : "Read");
        size = nodes.buffer->GetLength();
    });
    return size;
}

} // namespace GENAPI_NAMESPACE
