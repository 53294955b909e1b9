#include "adapters/gendc_walk.h"

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

const uint32_t signature = 0x43444E47;
const int64_t containerHeaderSize = 56; // then an offset for each component
const int64_t componentHeaderSize = 48; // then an offset for each part
const int64_t partHeaderSize = 40;      // what all types have
const int64_t offsetSize = 8;
const unsigned invalidComponent = 1; // flag
const unsigned chunkPart = 0x4000;   // header type

} // namespace

GenDCWalk::GenDCWalk(const uint8_t* buffer, int64_t length)
    : start(buffer), size(buffer && length > 0 ? length : 0), partsLeft(size / partHeaderSize), chunkDataLeft(size)
{}

ChunkWalk::Step GenDCWalk::Next(Chunk& chunk)
{
    if (!opened && !OpenContainer()) return Step::Broken;
    while (true)
    {
        if (chunks)
        {
            const Step step = chunks->Next(chunk);
            if (step == Step::Broken) return Break(chunks->Fault(), dataOffset + chunks->FaultPosition());
            if (step == Step::Chunk)
            {
                chunk.offset += dataOffset;
                return step;
            }
            chunks.reset();
        }
        if (part < partCount)
        {
            if (!OpenPart()) return Step::Broken;
        }
        else if (component < componentCount)
        {
            if (!OpenComponent()) return Step::Broken;
        }
        else
        {
            return foundChunks ? Step::End : Break("the container has no chunk data", 0);
        }
    }
}

bool GenDCWalk::OpenContainer()
{
    if (!Has(0, containerHeaderSize)) return Refuse("no room for the header of a container", 0);
    if (Little32(start) != signature) return Refuse("this is no container", 0);
    componentCount = Little32(start + 52);
    if (!Has(containerHeaderSize, componentCount * offsetSize)) return Refuse("too many components", 52);
    opened = true;
    return true;
}

bool GenDCWalk::OpenComponent()
{
    const int64_t header = OffsetAt(containerHeaderSize, component++);
    if (!Has(header, componentHeaderSize)) return Refuse("no room for the header of a component", header);
    const bool valid = (Little16(start + header + 2) & invalidComponent) == 0;
    parts = header + componentHeaderSize;
    part = 0;
    partCount = valid ? Little16(start + header + 46) : 0;
    if (!Has(parts, partCount * offsetSize)) return Refuse("too many parts", header);
    return true;
}

// Nested parts would make the walk long for a short buffer.
bool GenDCWalk::OpenPart()
{
    const int64_t header = OffsetAt(parts, part++);
    if (!Has(header, partHeaderSize)) return Refuse("no room for the header of a part", header);
    if (partsLeft-- == 0) return Refuse("the headers of parts lie in each other", header);
    if (Little16(start + header) != chunkPart) return true;
    const uint64_t dataSize = Little64(start + header + 24);
    dataOffset = static_cast<int64_t>(Little64(start + header + 32));
    if (dataSize > static_cast<uint64_t>(size) || !Has(dataOffset, static_cast<int64_t>(dataSize)))
    {
        return Refuse("the data of a part lies outside", header);
    }
    if (dataSize == 0) return true;
    chunkDataLeft -= static_cast<int64_t>(dataSize);
    if (chunkDataLeft < 0) return Refuse("the data of parts lies in each other", header);
    foundChunks = true;
    chunks.emplace(ByteOrder::Little, start + dataOffset, static_cast<int64_t>(dataSize));
    return true;
}

bool GenDCWalk::Has(int64_t offset, int64_t wanted) const
{
    return offset >= 0 && offset <= size && wanted <= size - offset;
}

int64_t GenDCWalk::OffsetAt(int64_t list, int64_t position) const
{
    return static_cast<int64_t>(Little64(start + list + position * offsetSize));
}

bool GenDCWalk::Refuse(const char* reason, int64_t position)
{
    Break(reason, position);
    return false;
}

} // namespace GENAPI_NAMESPACE::runtime
