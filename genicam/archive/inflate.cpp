#include "archive/inflate.h"

#include <Base/GCException.h>
#include <algorithm>
#define ZLIB_CONST
#include <zlib.h>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

// zlib counts in 32 bits; archives are smaller (maxArchiveSize), their expansion is taken in steps.
const size_t step = 64u << 10;

class Inflater
{
public:
    explicit Inflater(std::string_view packed)
    {
        if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) throw BAD_ALLOC_EXCEPTION("Error while expanding an archive");
        stream.next_in = reinterpret_cast<const Bytef*>(packed.data());
        stream.avail_in = static_cast<uInt>(packed.size());
    }
    ~Inflater() { inflateEnd(&stream); }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    // Appends what comes next, at most a step.
    int Next(std::string& expanded)
    {
        const size_t before = expanded.size();
        expanded.resize(before + step);
        stream.next_out = reinterpret_cast<Bytef*>(expanded.data() + before);
        stream.avail_out = static_cast<uInt>(step);
        const int result = inflate(&stream, Z_NO_FLUSH);
        expanded.resize(expanded.size() - stream.avail_out);
        return result;
    }

private:
    z_stream stream = {};
};

} // namespace

bool Inflate(std::string_view packed, size_t maxSize, std::string& expanded)
{
    Inflater inflater(packed);
    int result = Z_OK;
    while (result == Z_OK && expanded.size() <= maxSize)
        result = inflater.Next(expanded);
    return result == Z_STREAM_END && expanded.size() <= maxSize;
}

uint32_t Checksum(std::string_view bytes)
{
    return static_cast<uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

} // namespace GENAPI_NAMESPACE::runtime
