#include "archive/read_file.h"

#include <Base/GCException.h>
#include <algorithm>
#include <errno.h>
#include <memory>
#include <stdio.h>
#include <string.h>

namespace GENAPI_NAMESPACE::runtime
{

namespace
{

struct CloseFile
{
    void operator()(FILE* file) const { fclose(file); }
};

const size_t bytesAtOnce = 1u << 20;

} // namespace

std::string ReadFile(const std::string& path, size_t maxSize)
{
    const std::unique_ptr<FILE, CloseFile> file(fopen(path.c_str(), "rb"));
    if (!file) throw RUNTIME_EXCEPTION("Failed to open the file '%.1000s': %s", path.c_str(), strerror(errno));
    std::string bytes;
    for (;;)
    {
        // Reading one byte more than allowed shows that the file is too long.
        const size_t before = bytes.size();
        bytes.resize(before + std::min(bytesAtOnce, maxSize + 1 - before));
        const size_t count = fread(bytes.data() + before, 1, bytes.size() - before, file.get());
        bytes.resize(before + count);
        if (bytes.size() > maxSize)
        {
            throw RUNTIME_EXCEPTION(
                "The file '%.1000s' has more than %zu bytes, which is the most that is taken", path.c_str(), maxSize);
        }
        if (count > 0) continue;
        if (!ferror(file.get())) return bytes;
        throw RUNTIME_EXCEPTION("Failed to read the file '%.1000s': %s", path.c_str(), strerror(errno));
    }
}

} // namespace GENAPI_NAMESPACE::runtime
