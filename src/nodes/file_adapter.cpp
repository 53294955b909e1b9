#include "nodes/file_adapter.h"

#include "base/exceptions.h"
#include "base/expiring.h"
#include "base/failures.h"
#include "nodes/enumeration_entry_node.h"
#include "nodes/enumeration_node.h"
#include "nodes/integer_node.h"
#include "nodes/translate_genapi_exceptions.h"

#include <algorithm>
#include <ios>
#include <utility>

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

namespace
{

constexpr std::uint64_t furthest = INT64_MAX; // the largest length and offset in GenApi

std::shared_ptr<EnumerationNode> FindFileSelector(NodeMap& map)
{
    return std::dynamic_pointer_cast<EnumerationNode>(map.TryFindNode("FileSelector"));
}

std::shared_ptr<IntegerNode> FindNumber(NodeMap& map, const char* node, const char* textIfMissing)
{
    auto number = std::dynamic_pointer_cast<IntegerNode>(map.TryFindNode(node));
    if (!number) throw BadAccessException(textIfMissing);
    return number;
}

std::shared_ptr<IntegerNode> FindReadableSize(NodeMap& map)
{
    auto size = FindNumber(map, "FileSize", "Missing FileSize node!");
    if (!IsReadable(size->AccessStatus())) throw BadAccessException("FileSize node was not readable!");
    return size;
}

std::uint64_t NotNegative(std::int64_t size)
{
    if (size < 0) throw InternalErrorException("FileSize tells a negative size (" + std::to_string(size) + ")!");
    return static_cast<std::uint64_t>(size);
}

// Some devices report the right limits of the offset only while the length is valid.
void PrepareLength(NodeMap& map)
{
    const auto length = FindNumber(map, "FileAccessLength", "Missing FileAccessLength node!");
    if (!IsWritable(length->AccessStatus())) throw BadAccessException("FileAccessLength node was not writable!");
    if (length->Maximum() > 0) length->SetValue(1);
}

void CheckOffset(NodeMap& map, std::uint64_t offset)
{
    // The text lacks a word; kept for compatibility.
    const auto node = FindNumber(map, "FileAccessOffset", "Missing FileOffset node!");
    if (!IsReadable(node->AccessStatus())) throw BadAccessException("FileAccessOffset node was not readable!");
    const std::int64_t maximum = node->Maximum();
    if (maximum < 0 || static_cast<std::uint64_t>(maximum) < offset)
    {
        throw OutOfRangeException("FileAccessOffset out of range!");
    }
}

// `move` receives offset and length as GenApi expects them. Nothing lies beyond their largest values.
template <class Move>
std::uint64_t MoveWithinRange(std::uint64_t size, std::uint64_t offset, const Move& move)
{
    if (offset > furthest) return 0;
    const auto length = static_cast<std::int64_t>(std::min(size, furthest - offset));
    const std::int64_t moved = move(static_cast<std::int64_t>(offset), length);
    return static_cast<std::uint64_t>(std::max<std::int64_t>(moved, 0));
}

} // namespace

// The open file; it is closed on every way out.
class FileAdapter::OpenFile
{
public:
    OpenFile(FileAdapter& adapter, std::ios_base::openmode mode)
        : opened(adapter), isOpen(adapter.openFile(adapter.fileName.c_str(), mode))
    {}
    // May only throw the unwinding of a cancelled thread.
    ~OpenFile() noexcept(false)
    {
        Succeeds([&] { opened.closeFile(opened.fileName.c_str()); }); // a failure would hide the result
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    bool IsOpen() const { return isOpen; }

private:
    FileAdapter& opened;
    const bool isOpen;
};

template <class Operation>
auto FileAdapter::WithLockedMap(Operation&& operation)
{
    const auto pinned = LockOrThrow(nodeMap);
    return InBothLayers([&] {
        const AutoLock lock(pinned->GenApiLock());
        return operation(*pinned);
    });
}

FileAdapter::FileAdapter(const std::shared_ptr<NodeMap>& parent, std::string file)
    : fileName(std::move(file)), nodeMap(parent)
{
    InBothLayers([&] { attach(parent->GenApiNodeMap()); });
}

bool FileAdapter::HasFile(NodeMap& features, const std::string& file)
{
    const auto selector = FindFileSelector(features);
    return selector && selector->TryFindEntry(file);
}

std::uint64_t FileAdapter::Size()
{
    return WithLockedMap([&](NodeMap& locked) {
        Select(locked);
        return NotNegative(FindReadableSize(locked)->Value(CachePolicy::UseCache));
    });
}

std::uint64_t FileAdapter::MaxSize()
{
    return WithLockedMap([&](NodeMap& locked) {
        Select(locked);
        return NotNegative(FindReadableSize(locked)->Maximum());
    });
}

std::uint64_t FileAdapter::Read(char* data, std::uint64_t size, std::uint64_t offset)
{
    return WithLockedMap([&](NodeMap& locked) -> std::uint64_t {
        Select(locked);
        const OpenFile file(*this, std::ios_base::in);
        if (!file.IsOpen()) return 0;
        PrepareLength(locked);
        return MoveWithinRange(size, offset, [&](std::int64_t begin, std::int64_t length) {
            return read(data, begin, length, fileName.c_str());
        });
    });
}

// Unlike reading, writing checks the offset.
std::uint64_t FileAdapter::Write(const char* data, std::uint64_t size, std::uint64_t offset)
{
    return WithLockedMap([&](NodeMap& locked) -> std::uint64_t {
        Select(locked);
        const OpenFile file(*this, std::ios_base::out);
        if (!file.IsOpen()) return 0;
        PrepareLength(locked);
        CheckOffset(locked, offset);
        return MoveWithinRange(size, offset, [&](std::int64_t begin, std::int64_t length) {
            return write(data, begin, length, fileName.c_str());
        });
    });
}

void FileAdapter::Delete()
{
    WithLockedMap([&](NodeMap&) { deleteFile(fileName.c_str()); });
}

void FileAdapter::Select(NodeMap& locked) const
{
    const auto selector = FindFileSelector(locked);
    // The failure is not one of a lock; the text is kept for compatibility.
    if (!selector) throw BadAccessException("Failed to lock the NodeMap!");
    const auto entry = selector->TryFindEntry(fileName);
    if (!entry || !IsAvailable(entry->AccessStatus())) throw BadAccessException("File selector entry not available!");
    selector->SetCurrentEntry(entry);
}

} // namespace koro::internal
