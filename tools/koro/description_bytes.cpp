#include "tools/koro/description_bytes.h"

#include "tools/koro/failure.h"
#include "tools/koro/if_known.h"
#include "tools/koro/report.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <string_view>
#include <zlib.h>

namespace koro::tool
{

namespace
{

constexpr uint64_t maxBytes = uint64_t{256} << 20;
constexpr size_t maxText = size_t{64} << 20;

[[noreturn]] void Refuse(const std::string& url, const std::string& why)
{
    throw ToolError("The description at " + Printable(url) + " " + why + ".");
}

// An URL is "scheme:name;address;size?query", address and size hexadecimal; used where the producer does not take it
// apart.
struct URLParts
{
    std::string scheme;
    std::string name;
    std::string address;
    std::string size;
};

URLParts Split(const std::string& url)
{
    URLParts parts;
    const std::string place = url.substr(0, url.find('?'));
    const size_t colon = place.find(':');
    if (colon == place.npos) return parts;
    parts.scheme = place.substr(0, colon);
    std::transform(parts.scheme.begin(), parts.scheme.end(), parts.scheme.begin(), [](unsigned char c) {
        return std::tolower(c);
    });
    const size_t first = place.find(';', colon);
    parts.name = place.substr(colon + 1, first == place.npos ? first : first - colon - 1);
    if (first == place.npos) return parts;
    const size_t second = place.find(';', first + 1);
    parts.address = place.substr(first + 1, second == place.npos ? second : second - first - 1);
    if (second != place.npos) parts.size = place.substr(second + 1);
    return parts;
}

uint64_t ParseHexadecimal(const std::string& text, const std::string& url)
{
    size_t end = 0;
    try
    {
        const uint64_t number = std::stoull(text, &end, 16);
        if (end == text.size()) return number;
    }
    catch (const std::logic_error&)
    {}
    Refuse(url, "has no place that can be understood");
}

std::vector<uint8_t> ReadFile(const std::string& name, const std::string& url)
{
    // "file:///path" and "file:path" both.
    const size_t start = name.find_first_not_of('/');
    const std::string path = start == name.npos || start == 0 ? name : name.substr(start - 1);
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    if (!file) Refuse(url, "is no file that can be read");
    const std::streamoff size = file.tellg();
    if (size < 0 || static_cast<uint64_t>(size) > maxBytes) Refuse(url, "is beyond the limit of 256 MiB");
    file.seekg(0);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(file), {});
}

// A little-endian number inside the archive.
uint32_t Number(const std::vector<uint8_t>& bytes, size_t at, size_t width)
{
    if (at > bytes.size() || width > bytes.size() - at) throw ToolError("The description's archive is cut off.");
    uint32_t number = 0;
    for (size_t i = 0; i < width; ++i)
        number |= uint32_t{bytes[at + i]} << (8 * i);
    return number;
}

std::string Inflate(const uint8_t* data, size_t size)
{
    z_stream stream = {};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) throw ToolError("The description cannot be expanded.");
    stream.next_in = const_cast<Bytef*>(data);
    stream.avail_in = static_cast<uInt>(size);
    std::string text;
    int result = Z_OK;
    while (result == Z_OK && text.size() <= maxText)
    {
        char piece[65536];
        stream.next_out = reinterpret_cast<Bytef*>(piece);
        stream.avail_out = sizeof piece;
        result = inflate(&stream, Z_NO_FLUSH);
        text.append(piece, sizeof piece - stream.avail_out);
    }
    inflateEnd(&stream);
    if (text.size() > maxText) throw ToolError("The description expands beyond the limit of 64 MiB.");
    if (result != Z_STREAM_END) throw ToolError("The description's archive is broken.");
    return text;
}

// Where the directory of the archive ends: its record lies before a comment of at most 64 KiB.
size_t EndOfDirectory(const std::vector<uint8_t>& bytes)
{
    constexpr size_t recordSize = 22;
    constexpr size_t maxComment = 65535;
    if (bytes.size() < recordSize) throw ToolError("The description's archive is cut off.");
    const size_t last = bytes.size() - recordSize;
    for (size_t at = last;; --at)
    {
        if (Number(bytes, at, 4) == 0x06054b50) return at;
        if (at == 0 || last - at == maxComment) throw ToolError("The description's archive has no directory.");
    }
}

std::string Expand(const std::vector<uint8_t>& bytes)
{
    const size_t end = EndOfDirectory(bytes);
    size_t record = Number(bytes, end + 16, 4);
    for (uint32_t entry = Number(bytes, end + 10, 2); entry > 0; --entry)
    {
        if (Number(bytes, record, 4) != 0x02014b50) throw ToolError("The description's archive is broken.");
        const uint32_t method = Number(bytes, record + 10, 2);
        const uint32_t size = Number(bytes, record + 20, 4);
        const uint32_t nameSize = Number(bytes, record + 28, 2);
        const size_t local = Number(bytes, record + 42, 4);
        Number(bytes, record + 46, 0);
        if (nameSize > bytes.size() - record - 46) throw ToolError("The description's archive is cut off.");
        const std::string_view name(reinterpret_cast<const char*>(bytes.data()) + record + 46, nameSize);
        record += 46 + nameSize + Number(bytes, record + 30, 2) + Number(bytes, record + 32, 2);
        if (name.size() < 4 || name.substr(name.size() - 4) != ".xml") continue;

        const size_t data = local + 30 + Number(bytes, local + 26, 2) + Number(bytes, local + 28, 2);
        if (data > bytes.size() || size > bytes.size() - data) throw ToolError("The description's archive is cut off.");
        if (method == 0)
            return std::string(
                bytes.begin() + static_cast<ptrdiff_t>(data), bytes.begin() + static_cast<ptrdiff_t>(data + size));
        if (method == Z_DEFLATED) return Inflate(bytes.data() + data, size);
        throw ToolError("The description is packed by method " + std::to_string(method) + ", which is unknown.");
    }
    throw ToolError("The description's archive holds no .xml file.");
}

} // namespace

std::vector<uint8_t> DescriptionBytes(const Port& port, size_t index)
{
    const std::vector<PortURL> urls = port.URLs();
    if (index >= urls.size())
        throw ToolError("The module has " + std::to_string(urls.size()) + " descriptions, counted from 0.");
    const PortURL& place = urls[index];
    const std::string url = IfKnown([&] { return place.URL(); }).value_or("-");
    const URLParts parts = Split(url);
    const auto scheme = IfKnown([&] { return place.Scheme(); });
    if (scheme ? *scheme == KORO_URL_SCHEME_FILE : parts.scheme == "file") return ReadFile(parts.name, url);
    if (scheme ? *scheme != KORO_URL_SCHEME_LOCAL : parts.scheme != "local")
        Refuse(url, "is not in the registers of the camera, and the tool does not fetch it");

    const auto address = IfKnown([&] { return place.FileRegisterAddress(); });
    const auto size = IfKnown([&] { return place.FileSize(); });
    const uint64_t claimed = size ? *size : ParseHexadecimal(parts.size, url);
    if (claimed > maxBytes) Refuse(url, "claims " + std::to_string(claimed) + " bytes, which is beyond the limit");
    return port.Read(address ? *address : ParseHexadecimal(parts.address, url), static_cast<size_t>(claimed));
}

std::string DescriptionText(const std::vector<uint8_t>& bytes)
{
    const bool isArchive = bytes.size() >= 4 && bytes[0] == 'P' && bytes[1] == 'K';
    return isArchive ? Expand(bytes) : std::string(bytes.begin(), bytes.end());
}

ToolError NoDescription(const std::string& owner, const Port& port)
{
    const std::string text = owner + " has no description that can be fetched";
    try
    {
        DescriptionText(DescriptionBytes(port, 0));
    }
    catch (const Error& error)
    {
        return ToolError(text + ": " + error.what(), HintFor(error));
    }
    catch (const ToolError& error)
    {
        return ToolError(text + ": " + error.what(), error.Hint());
    }
    return ToolError(text + ".", "`koro info` shows where its descriptions lie.");
}

} // namespace koro::tool
