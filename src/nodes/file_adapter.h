// FileAdapter: one file of a device, named by an entry of the enumeration FileSelector.
//
// Created and owned only by the application. Holds its map weakly; after the map has ended every operation throws
// InternalErrorException with "Pointer has expired!". Thread-safe: each operation holds the lock of the map from its
// first node to its last, so node accesses of other threads wait for the whole transfer.
//
// BadAccessException states which node is missing or must not be used now. Failures of nodes are translated. A failure
// in the middle of a transfer ends the transfer; only the number of bytes shows it.
#pragma once

#include "base/instance.h"
#include "nodes/node_map.h"

#include <GenApi/Filestream.h>
#include <cstdint>
#include <memory>
#include <string>

namespace koro::internal
{

class FileAdapter final : public Instance, public GENAPI_NAMESPACE::FileProtocolAdapter
{
public:
    // Does not open the file. The caller must check that the map has such a file.
    FileAdapter(const std::shared_ptr<NodeMap>& parent, std::string file);

    static bool HasFile(NodeMap& features, const std::string& file);

    std::uint64_t Size();
    std::uint64_t MaxSize();
    // Returns the number of bytes that were transferred: fewer than requested at the end of the file or after a
    // failure, 0 when the file could not be opened. Throws OutOfRangeException for writing at an offset beyond the
    // maximum of FileAccessOffset.
    std::uint64_t Read(char* data, std::uint64_t size, std::uint64_t offset);
    std::uint64_t Write(const char* data, std::uint64_t size, std::uint64_t offset);
    // Does not report whether the device has deleted it.
    void Delete();

private:
    class OpenFile;

    template <class Operation>
    auto WithLockedMap(Operation&& operation);
    void Select(NodeMap& locked) const;

    const std::string fileName;
    const std::weak_ptr<NodeMap> nodeMap;
};

} // namespace koro::internal
