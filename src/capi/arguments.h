// What all exported functions do with their arguments: look up handles, check pointers, return results.
//
// Handles are checked first: a call with an invalid handle and a null pointer reports the handle.
#pragma once

#include "capi/call_frame.h"
#include "capi/closing.h"
#include "capi/handle_tables.h"
#include "capi/output.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <utility>

// Pairs a parameter with its spelling, so that a message cannot drift from the signature.
#define KORO_ARG(parameter) ::koro::internal::Named(parameter, #parameter)

namespace koro::internal
{

template <class Value>
struct NamedArgument
{
    Value value;
    const char* name;
};

template <class Value>
NamedArgument<Value> Named(Value value, const char* name)
{
    return {value, name};
}

template <class Handle>
KORO_ReturnCode InvalidHandle(const NamedArgument<Handle>& handle)
{
    return RecordLastError(KORO_RETURN_CODE_INVALID_HANDLE, std::string(handle.name) + " is invalid!");
}

template <class Pointer>
KORO_ReturnCode InvalidPointer(const NamedArgument<Pointer>& pointer)
{
    return RecordInvalidPointer(pointer.name);
}

inline KORO_ReturnCode IndexOutOfRange()
{
    return RecordLastError(KORO_RETURN_CODE_OUT_OF_RANGE, "index is out of range!");
}

// `size` includes a terminating zero and is trusted as given; 0 means an empty text.
inline std::string TextArgument(const char* text, std::size_t size)
{
    return {text, size > 0 ? size - 1 : 0};
}

// Runs `body` with the object of the handle. The object stays alive until the body returns, even if another thread ends
// it. In that case it is closed here, and then its parents.
template <class Handle, class Body>
KORO_ReturnCode WithObject(const NamedArgument<Handle>& handle, Body&& body)
{
    return ExecuteAndMapExceptions([&]() -> KORO_ReturnCode {
        const auto held = Find(handle.value);
        if (!held) return InvalidHandle(handle);
        return body(held->Get());
    });
}

// Runs an operation without a result.
template <class Handle, class Operation>
KORO_ReturnCode Perform(const NamedArgument<Handle>& handle, Operation&& operation)
{
    return WithObject(handle, [&](const auto& object) {
        std::invoke(operation, *object);
        return success;
    });
}

// A getter runs before its output pointer is checked: if the getter fails, its failure is returned.
template <class Handle, class Output, class Getter>
KORO_ReturnCode GetScalar(const NamedArgument<Handle>& handle, const NamedArgument<Output*>& output, Getter&& getter)
{
    return WithObject(handle, [&](const auto& object) {
        return CopyScalarOut(static_cast<Output>(std::invoke(getter, *object)), output.value, output.name);
    });
}

template <class Handle, class Getter>
KORO_ReturnCode GetString(
    const NamedArgument<Handle>& handle, const NamedArgument<char*>& output, std::size_t* size, Getter&& getter)
{
    return WithObject(handle, [&](const auto& object) {
        return CopyStringOut(std::invoke(getter, *object), output.value, size, output.name);
    });
}

template <class Handle, class Element, class Getter>
KORO_ReturnCode GetBytes(
    const NamedArgument<Handle>& handle, const NamedArgument<Element*>& output, std::size_t* size, Getter&& getter)
{
    return WithObject(handle, [&](const auto& object) {
        return CopyBytesOut(std::invoke(getter, *object), output.value, size, output.name);
    });
}

// The data type is stored before the buffer is checked, so it is valid even when the buffer is too small.
template <class Handle>
KORO_ReturnCode GetRawInfo(
    const NamedArgument<Handle>& handle, std::int32_t infoCommand, const NamedArgument<std::int32_t*>& infoDataType,
    const NamedArgument<std::uint8_t*>& info, std::size_t* infoSize)
{
    return WithObject(handle, [&](const auto& object) {
        if (!infoDataType.value) return InvalidPointer(infoDataType);
        const auto information = object->Info(infoCommand);
        *infoDataType.value = information.dataType;
        return CopyInfoOut(information, info.value, infoSize, info.name);
    });
}

// Calls `supply`, which returns the new handle, only when the output pointer is valid: otherwise nobody could end the
// new object.
template <class Handle, class NewHandle, class Supply>
KORO_ReturnCode GetHandle(
    const NamedArgument<Handle>& handle, const NamedArgument<NewHandle*>& newHandle, Supply&& supply)
{
    return WithObject(handle, [&](const auto& object) {
        if (!newHandle.value) return InvalidPointer(newHandle);
        *newHandle.value = supply(object);
        return success;
    });
}

template <class List>
const List& ElementsOf(const List& list)
{
    return list;
}
template <class List>
const List& ElementsOf(const std::shared_ptr<const List>& list)
{
    return *list;
}

// Returns the handle of one element of a list, or of a list that is shared; `enter` makes its entry.
template <class Handle, class NewHandle, class List, class Enter>
KORO_ReturnCode GetIndexed(
    const NamedArgument<Handle>& handle, std::size_t index, const NamedArgument<NewHandle*>& newHandle, List&& list,
    Enter&& enter)
{
    return WithObject(handle, [&](const auto& object) {
        if (!newHandle.value) return InvalidPointer(newHandle);
        const auto& given = std::invoke(list, *object); // a walk over a list must not copy it at each step
        const auto& elements = ElementsOf(given);
        if (index >= elements.size()) return IndexOutOfRange();
        *newHandle.value = enter(object, elements[index]);
        return success;
    });
}

// Returns the handle of a parent. Makes no entry, since the parent already has one.
template <class Handle, class ParentHandle, class Getter>
KORO_ReturnCode GetParent(
    const NamedArgument<Handle>& handle, const NamedArgument<ParentHandle*>& parentHandle, Getter&& getter)
{
    return GetHandle(handle, parentHandle, [&](const auto& object) { return HandleFor(std::invoke(getter, *object)); });
}

// Casts to a base type. The result is a separate entry that is tied to the object's parent, not to the object, which it
// would keep alive. The parent is locked first, so a cast fails after the parent has ended.
template <class Handle, class BaseHandle, class ParentGetter>
KORO_ReturnCode CastTo(
    const NamedArgument<Handle>& handle, const NamedArgument<BaseHandle*>& baseHandle, ParentGetter&& parentGetter)
{
    return GetHandle(handle, baseHandle, [&](const auto& object) {
        const auto parent = std::invoke(parentGetter, *object);
        return Table<ClassOf<BaseHandle>>().AddFurther(object, parent);
    });
}

// Ends the object of a handle, its base handles and everything below it.
template <class Handle>
KORO_ReturnCode Destruct(const NamedArgument<Handle>& handle)
{
    return ExecuteAndMapExceptions([&]() -> KORO_ReturnCode {
        auto held = Find(handle.value);
        if (!held) return InvalidHandle(handle);
        EndObject(std::move(held));
        return success;
    });
}

} // namespace koro::internal
