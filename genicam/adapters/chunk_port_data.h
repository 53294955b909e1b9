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
    // The port node, while there is one that this port was put behind.
    runtime::PortNode* Node() const { return map.Get() ? node : nullptr; }
    // Reads the text of the id; a text that cannot be read now is no id. Whether the id is another one than before.
    bool RefreshID();
    bool WantsCopy(int64_t size, int64_t maxCopy) const { return copiesAllowed && (maxCopy < 0 || size <= maxCopy); }
    // Memory for a copy; what is shown stays.
    void Reserve(int64_t size) { copy.reserve(static_cast<size_t>(size)); }
    // Fails only when a copy has no memory yet, and changes nothing then.
    void Show(uint8_t* newBase, int64_t newOffset, int64_t newLength, bool asCopy);
    void TakeCopy();
    uint8_t* Bytes() { return copied ? copy.data() : base + offset; }

    runtime::MapLink map;
    runtime::PortNode* node = nullptr;
    runtime::HexId id;
    bool copiesAllowed = false; // by the description
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
