// ZipBuilder: makes zip archives for tests, also ones that lie.
#pragma once

#include <stdint.h>
#include <string>
#include <vector>
#include <zlib.h>

namespace koro::test
{

// Data without a head, as zip archives have them.
inline std::string Deflated(const std::string& content)
{
    z_stream stream = {};
    deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    std::string packed(deflateBound(&stream, static_cast<uLong>(content.size())), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

class ZipBuilder
{
public:
    // What is written of an entry; a test may bend it before Bytes().
    struct Entry
    {
        std::string name;
        std::string packed;
        uint16_t flags = 0;
        uint16_t method = 8;
        uint32_t checksum = 0;
        uint32_t packedSize = 0;
        uint32_t size = 0;
    };

    Entry& AddStored(const std::string& name, const std::string& content) { return Add(name, content, content, 0); }
    Entry& AddDeflated(const std::string& name, const std::string& content)
    {
        return Add(name, content, Deflated(content), 8);
    }
    std::string Bytes() const
    {
        std::string bytes;
        std::string directory;
        for (const Entry& entry : entries)
        {
            const bool described = (entry.flags & 8) != 0; // sizes behind the data
            const std::string sizes = Number(entry.checksum, 4) + Number(entry.packedSize, 4) + Number(entry.size, 4);
            const std::string kind = Number(20, 2) + Number(entry.flags, 2) + Number(entry.method, 2) + Number(0, 4);
            const std::string names = Number(entry.name.size(), 2) + Number(0, 2);
            directory += "PK\1\2" + Number(20, 2) + kind + sizes + names + Number(0, 2 + 2 + 2 + 4) +
                         Number(bytes.size(), 4) + entry.name;
            bytes += "PK\3\4" + kind + (described ? std::string(12, '\0') : sizes) + names + entry.name + entry.packed;
            if (described) bytes += "PK\7\10" + sizes;
        }
        const std::string count = Number(claimedCount < 0 ? entries.size() : static_cast<size_t>(claimedCount), 2);
        return bytes + directory + "PK\5\6" + Number(0, 4) + count + count + Number(directory.size(), 4) +
               Number(bytes.size(), 4) + Number(comment.size(), 2) + comment;
    }

    std::string comment;
    int claimedCount = -1; // the true one

private:
    static std::string Number(uint64_t number, int size)
    {
        std::string text;
        for (int i = 0; i < size; ++i)
            text += static_cast<char>(i < 8 ? number >> 8 * i & 0xff : 0);
        return text;
    }
    Entry& Add(const std::string& name, const std::string& content, const std::string& packed, uint16_t method)
    {
        Entry entry;
        entry.name = name;
        entry.packed = packed;
        entry.method = method;
        entry.checksum = static_cast<uint32_t>(
            crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size())));
        entry.packedSize = static_cast<uint32_t>(packed.size());
        entry.size = static_cast<uint32_t>(content.size());
        entries.push_back(entry);
        return entries.back();
    }

    std::vector<Entry> entries;
};

} // namespace koro::test
