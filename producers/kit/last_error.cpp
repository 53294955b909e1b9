#include "producers/kit/last_error.h"

#include <cstdio>

namespace koro::kit
{
namespace
{

struct Record
{
    GC_ERROR code;
    char text[lastErrorCapacity];
};

thread_local Record record{};

} // namespace

void RecordLastError(GC_ERROR code, const char* text) noexcept
{
    record.code = code;
    std::snprintf(record.text, sizeof record.text, "%s", text);
}

void RecordLastError(GC_ERROR code, const char* function, const char* text) noexcept
{
    record.code = code;
    std::snprintf(record.text, sizeof record.text, "%s: %s", function, text);
}

bool HasLastError() noexcept
{
    return record.code != GC_ERR_SUCCESS;
}

GC_ERROR LastErrorCode() noexcept
{
    return record.code;
}

const char* LastErrorText() noexcept
{
    return HasLastError() ? record.text : "No Error";
}

} // namespace koro::kit
