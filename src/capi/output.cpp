#include "capi/output.h"

#include <cstring>

namespace koro::internal
{

KORO_ReturnCode CopyBlockOut(const void* block, std::size_t needed, void* buffer, std::size_t* size, const char* name)
{
    if (!size) return RecordInvalidSizePointer(name);
    if (buffer)
    {
        if (*size < needed)
        {
            return RecordLastError(KORO_RETURN_CODE_BUFFER_TOO_SMALL, std::string(name) + " is too small!");
        }
        if (needed > 0) std::memcpy(buffer, block, needed);
    }
    *size = needed;
    return KORO_RETURN_CODE_SUCCESS;
}

KORO_ReturnCode RecordInvalidPointer(const char* name)
{
    return RecordLastError(KORO_RETURN_CODE_INVALID_ARGUMENT, std::string(name) + " is not a valid pointer!");
}

KORO_ReturnCode RecordInvalidSizePointer(const char* name)
{
    return RecordInvalidPointer((std::string(name) + "Size").c_str());
}

KORO_ReturnCode CopyStringOut(const std::string& text, char* buffer, std::size_t* size, const char* name)
{
    return CopyBlockOut(text.c_str(), text.size() + 1, buffer, size, name);
}

KORO_ReturnCode CopyInfoOut(const RawInfo& information, std::uint8_t* buffer, std::size_t* size, const char* name)
{
    return CopyBytesOut(information.bytes, buffer, size, name);
}

} // namespace koro::internal
