// The foundation of the C++ interface: exceptions for return codes, owners and views of handles.
//
// Programs include <koro/koro.hpp>, which includes this header.
#ifndef KORO_CPP_SUPPORT_HPP
#define KORO_CPP_SUPPORT_HPP

#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace koro
{

// A failed call: its return code, and the error text of the library as what().
class Error : public std::runtime_error
{
public:
    Error(KORO_ReturnCode returnCode, const std::string& text) : std::runtime_error(text), code(returnCode) {}

    KORO_ReturnCode Code() const noexcept { return code; }

private:
    KORO_ReturnCode code;
};

// Raw information as the producer delivered it; dataType is a number of the GenTL list INFO_DATATYPE.
struct RawInfo
{
    int32_t dataType = 0;
    std::vector<uint8_t> bytes;
};

namespace detail
{

// The producer passes some texts through without a limit; larger ones are refused here.
constexpr size_t maxTextSize = size_t{16} << 20;
constexpr size_t maxBytesSize = size_t{256} << 20;
// How often a value may grow between the size query and the fetch before the call gives up.
constexpr int maxAttempts = 16;

inline std::string LastErrorText()
{
    KORO_ReturnCode code = KORO_RETURN_CODE_SUCCESS;
    size_t size = 0;
    if (KORO_Library_GetLastError(&code, nullptr, &size) != KORO_RETURN_CODE_SUCCESS || size == 0) return {};

    std::string text(size, '\0');
    if (KORO_Library_GetLastError(&code, text.data(), &size) != KORO_RETURN_CODE_SUCCESS) return {};
    text.resize(size - 1);
    return text;
}

// The code of the last failure that was recorded on this thread; success before the first failure.
inline KORO_ReturnCode LastErrorCode()
{
    KORO_ReturnCode code = KORO_RETURN_CODE_SUCCESS;
    size_t size = 0;
    KORO_Library_GetLastError(&code, nullptr, &size);
    return code;
}

// The text belongs to the last failure on this thread, so no other call may come in between.
inline void Check(KORO_ReturnCode code)
{
    if (code != KORO_RETURN_CODE_SUCCESS) throw Error(code, LastErrorText());
}

// Calls `query(Element* buffer, size_t* size)` for the size and again for the content, and repeats this if the value
// has grown in between.
template <typename Sequence, typename Query>
Sequence Fetch(const Query& query, size_t maxSize)
{
    for (int attempt = 1;; ++attempt)
    {
        size_t size = 0;
        Check(query(nullptr, &size));
        if (size > maxSize)
            throw Error(KORO_RETURN_CODE_ERROR, "A value claims a size of " + std::to_string(size) + " bytes!");
        if (size == 0) return {};

        Sequence result(size, 0);
        const KORO_ReturnCode code = query(result.data(), &size);
        if (code == KORO_RETURN_CODE_BUFFER_TOO_SMALL && attempt < maxAttempts) continue;
        Check(code);
        if (size < result.size()) result.resize(size);
        return result;
    }
}

template <typename Query>
std::string FetchText(const Query& query)
{
    std::string text = Fetch<std::string>(query, maxTextSize);
    const size_t end = text.find('\0');
    if (end != std::string::npos) text.resize(end);
    return text;
}

template <typename Handle>
std::string Text(KORO_ReturnCode (*get)(Handle, char*, size_t*), Handle handle)
{
    return FetchText([&](char* buffer, size_t* size) { return get(handle, buffer, size); });
}

template <typename Handle>
std::vector<uint8_t> Bytes(KORO_ReturnCode (*get)(Handle, uint8_t*, size_t*), Handle handle)
{
    return Fetch<std::vector<uint8_t>>(
        [&](uint8_t* buffer, size_t* size) { return get(handle, buffer, size); }, maxBytesSize);
}

template <typename Handle>
RawInfo Info(KORO_ReturnCode (*get)(Handle, int32_t, int32_t*, uint8_t*, size_t*), Handle handle, int32_t command)
{
    RawInfo info;
    info.bytes = Fetch<std::vector<uint8_t>>(
        [&](uint8_t* buffer, size_t* size) { return get(handle, command, &info.dataType, buffer, size); },
        maxBytesSize);
    return info;
}

// Lists of numbers whose size the C function counts in bytes.
template <typename Value, typename Handle>
std::vector<Value> Values(KORO_ReturnCode (*get)(Handle, Value*, size_t*), Handle handle)
{
    const auto bytes = Fetch<std::vector<uint8_t>>(
        [&](uint8_t* buffer, size_t* size) { return get(handle, reinterpret_cast<Value*>(buffer), size); },
        maxBytesSize);
    std::vector<Value> values(bytes.size() / sizeof(Value));
    if (!values.empty()) std::memcpy(values.data(), bytes.data(), values.size() * sizeof(Value));
    return values;
}

template <typename Handle, typename Value>
Value Get(KORO_ReturnCode (*get)(Handle, Value*), Handle handle)
{
    Value value{};
    Check(get(handle, &value));
    return value;
}

template <typename Enumeration, typename Handle>
Enumeration GetEnumeration(KORO_ReturnCode (*get)(Handle, int32_t*), Handle handle)
{
    return static_cast<Enumeration>(Get(get, handle));
}

template <typename Handle>
bool Flag(KORO_ReturnCode (*get)(Handle, KORO_Bool8*), Handle handle)
{
    return Get(get, handle) != 0;
}

template <typename Handle, typename Child>
Child GetAt(KORO_ReturnCode (*get)(Handle, size_t, Child*), Handle handle, size_t index)
{
    Child child{};
    Check(get(handle, index, &child));
    return child;
}

// All objects of a list that the C functions offer as a number and by index.
template <typename Child, typename Handle, typename ChildHandle>
std::vector<Child> Children(
    KORO_ReturnCode (*getNum)(Handle, size_t*), KORO_ReturnCode (*getChild)(Handle, size_t, ChildHandle*),
    Handle handle)
{
    std::vector<Child> children(Get(getNum, handle));
    for (size_t i = 0; i < children.size(); ++i)
        children[i] = Child(GetAt(getChild, handle, i));
    return children;
}

template <typename Child, typename Handle, typename ChildHandle>
Child FindByName(
    KORO_ReturnCode (*find)(Handle, const char*, size_t, ChildHandle*), Handle handle, const std::string& name)
{
    ChildHandle child{};
    Check(find(handle, name.c_str(), name.size() + 1, &child));
    return Child(child);
}

template <typename Descriptor>
std::string DescriptorID(
    KORO_ReturnCode (*toModuleDescriptor)(Descriptor, KORO_ModuleDescriptorHandle*), Descriptor descriptor)
{
    return Text(KORO_ModuleDescriptor_GetID, Get(toModuleDescriptor, descriptor));
}

// A handle that ends with its owner. Failures of the end are ignored: an invalid handle has already ended.
template <typename Handle, KORO_ReturnCode (*destruct)(Handle)>
class Owner
{
public:
    Owner() = default;
    explicit Owner(Handle owned) noexcept : handle(owned) {}
    Owner(Owner&& other) noexcept : handle(std::exchange(other.handle, Handle{})) {}
    // The replaced handle ends, unless the new handle has the same number: then the old object has already ended, and
    // the new object has received its number.
    Owner& operator=(Owner&& other) noexcept
    {
        if (this != &other)
        {
            const Handle taken = std::exchange(other.handle, Handle{});
            if (taken != handle) Close();
            handle = taken;
        }
        return *this;
    }
    ~Owner() { Close(); }

    // Empty after a move and after Close(); each call then throws Error with KORO_RETURN_CODE_INVALID_HANDLE.
    explicit operator bool() const noexcept { return handle != Handle{}; }
    KORO_ReturnCode Close() noexcept
    {
        const Handle closing = std::exchange(handle, Handle{});
        return closing == Handle{} ? KORO_RETURN_CODE_SUCCESS : destruct(closing);
    }
    Handle Get() const noexcept { return handle; }

private:
    Handle handle{};
};

template <typename Handle>
class View
{
public:
    View() = default;
    explicit View(Handle viewed) noexcept : handle(viewed) {}

    Handle Get() const noexcept { return handle; }
    explicit operator bool() const noexcept { return handle != Handle{}; }
    friend bool operator==(const View& left, const View& right) noexcept { return left.handle == right.handle; }
    friend bool operator!=(const View& left, const View& right) noexcept { return left.handle != right.handle; }

private:
    Handle handle{};
};

} // namespace detail

} // namespace koro

#endif
