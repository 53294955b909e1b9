// The data of a chunk port.
#pragma once

#include "adapters/hex_id.h"
#include "adapters/map_link.h"
#include "nodes/port_node.h"

#include <GenApi/ChunkPort.h>
#include <vector>

namespace GENAPI_NAMESPACE
{

struct CChunkPort::Data
{
    // The port node to which this port is connected, if any.
    runtime::PortNode* Node() const { return map.Get() ? node : nullptr; }
    // Reads the text of the id; a text that cannot be read now is not an id. Returns whether the id has changed.
    bool RefreshID();
    bool WantsCopy(int64_t size, int64_t maxCopy) const { return copiesAllowed && (maxCopy < 0 || size <= maxCopy); }
    // Allocates memory for a copy; the attached data does not change.
    void Reserve(int64_t size) { copy.reserve(static_cast<size_t>(size)); }
    // Fails only when there is no memory for a copy, and then changes nothing.
    void Show(uint8_t* newBase, int64_t newOffset, int64_t newLength, bool asCopy);
    void TakeCopy();
    uint8_t* Bytes() { return copied ? copy.data() : base + offset; }

    runtime::MapLink map;
    runtime::PortNode* node = nullptr;
    runtime::HexId id;
    bool copiesAllowed = false; // from the description
    bool turned = false;        // likewise

    bool attached = false;
    uint8_t* base = nullptr; // the application's
    int64_t offset = 0;
    int64_t length = 0;
    bool wantsCopy = false;
    bool copied = false; // the data is that of `copy`
    std::vector<uint8_t> copy;
};

} // namespace GENAPI_NAMESPACE
