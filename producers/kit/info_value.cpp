#include "producers/kit/info_value.h"

#include "producers/kit/failure.h"

#include <cstring>

namespace koro::kit
{
namespace
{

template <typename T>
InfoValue Scalar(INFO_DATATYPE type, T value)
{
    return {type, std::string(reinterpret_cast<const char*>(&value), sizeof value)};
}

} // namespace

InfoValue InfoValue::Text(std::string_view text)
{
    InfoValue value{INFO_DATATYPE_STRING, std::string(text)};
    value.bytes.push_back('\0');
    return value;
}

InfoValue InfoValue::Bool(bool value)
{
    return Scalar<bool8_t>(INFO_DATATYPE_BOOL8, value ? 1 : 0);
}

InfoValue InfoValue::Int32(std::int32_t value)
{
    return Scalar(INFO_DATATYPE_INT32, value);
}

InfoValue InfoValue::UInt32(std::uint32_t value)
{
    return Scalar(INFO_DATATYPE_UINT32, value);
}

InfoValue InfoValue::UInt64(std::uint64_t value)
{
    return Scalar(INFO_DATATYPE_UINT64, value);
}

InfoValue InfoValue::Size(std::size_t value)
{
    return Scalar(INFO_DATATYPE_SIZET, value);
}

InfoValue InfoValue::Pointer(const void* value)
{
    return Scalar(INFO_DATATYPE_PTR, value);
}

InfoValue InfoValue::Bytes(std::string_view bytes)
{
    return {INFO_DATATYPE_BUFFER, std::string(bytes)};
}

void CopyOut(std::string_view bytes, void* buffer, std::size_t* size)
{
    RequirePointer(size, "piSize");
    if (buffer != nullptr)
    {
        RequirePointer(buffer, "pBuffer");
        if (*size < bytes.size())
            throw Failure(
                GC_ERR_BUFFER_TOO_SMALL,
                std::to_string(bytes.size()) + " bytes are needed, the buffer has " + std::to_string(*size));
        std::memcpy(buffer, bytes.data(), bytes.size());
    }
    *size = bytes.size();
}

void InfoOutput::Require() const
{
    RequirePointer(type, "piType");
    RequirePointer(size, "piSize");
}

void InfoOutput::Write(const InfoValue& value) const
{
    CopyOut(value.bytes, buffer, size);
    *type = value.type;
}

} // namespace koro::kit
