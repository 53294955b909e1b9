// This family checks its pointers first and has its own messages. Programs may depend on the messages, so they do not
// change.
#include "nodes/file_adapter.h"

#include "capi/arguments.h"
#include "capi/node_entries.h"
#include <koro/file_adapter.h>

#include <memory>
#include <string>

using namespace koro::internal;

namespace
{

// For exports that report a null pointer as "data is invalid!"; the code differs from that of an invalid handle.
template <class Pointer>
KORO_ReturnCode InvalidOutput(const NamedArgument<Pointer>& pointer)
{
    return RecordLastError(KORO_RETURN_CODE_INVALID_ARGUMENT, std::string(pointer.name) + " is invalid!");
}

// Whether a file of `fileSize` bytes ends before `size` bytes from `offset` on do; the sum may not fit.
bool EndsWithin(std::uint64_t fileSize, std::uint64_t size, std::uint64_t offset)
{
    return size > fileSize || offset > fileSize - size;
}

template <class Getter>
KORO_ReturnCode GetFileSize(
    KORO_FileAdapterHandle fileAdapter, const NamedArgument<std::uint64_t*>& output, Getter&& getter)
{
    return ExecuteAndMapExceptions([&] {
        if (!output.value) return InvalidOutput(output);
        return GetScalar(KORO_ARG(fileAdapter), output, getter);
    });
}

} // namespace

KORO_ReturnCode KORO_FileAdapter_Construct(
    KORO_NodeMapHandle nodeMapHandle, const char* fileName, size_t fileNameSize,
    KORO_FileAdapterHandle* fileAdapterHandle)
{
    return ExecuteAndMapExceptions([&] {
        if (!nodeMapHandle) return InvalidPointer(KORO_ARG(nodeMapHandle));
        if (!fileAdapterHandle) return InvalidPointer(KORO_ARG(fileAdapterHandle));
        if (!fileName) return InvalidPointer(KORO_ARG(fileName));
        const auto nodeMap = Find(nodeMapHandle);
        if (!nodeMap)
        {
            return RecordLastError(KORO_RETURN_CODE_INVALID_HANDLE, "nodeMapHandle is not a valid handle!");
        }

        const std::string name = TextArgument(fileName, fileNameSize);
        if (!FileAdapter::HasFile(*nodeMap->Get(), name))
        {
            return RecordLastError(
                KORO_RETURN_CODE_NOT_AVAILABLE,
                "'FileSelector' node or it's entry with the given fileName is not available!");
        }
        *fileAdapterHandle =
            Table<FileAdapter>().AddBeside(std::make_shared<FileAdapter>(nodeMap->Get(), name), nodeMap->Get());
        return success;
    });
}

KORO_ReturnCode KORO_FileAdapter_Destruct(KORO_FileAdapterHandle fileAdapter)
{
    return Destruct(KORO_ARG(fileAdapter));
}

KORO_ReturnCode KORO_FileAdapter_GetSize(KORO_FileAdapterHandle fileAdapter, uint64_t* size)
{
    return GetFileSize(fileAdapter, KORO_ARG(size), &FileAdapter::Size);
}

KORO_ReturnCode KORO_FileAdapter_GetMaxSize(KORO_FileAdapterHandle fileAdapter, uint64_t* maxSize)
{
    return GetFileSize(fileAdapter, KORO_ARG(maxSize), &FileAdapter::MaxSize);
}

KORO_ReturnCode KORO_FileAdapter_Read(
    KORO_FileAdapterHandle fileAdapter, uint64_t size, uint64_t offset, uint8_t* data, uint64_t* dataSize)
{
    return ExecuteAndMapExceptions([&] {
        if (!data) return InvalidOutput(KORO_ARG(data));
        if (!dataSize) return InvalidOutput(KORO_ARG(dataSize));
        return WithObject(KORO_ARG(fileAdapter), [&](const auto& adapter) {
            *dataSize = adapter->Read(reinterpret_cast<char*>(data), size, offset);
            if (*dataSize == size) return success;
            if (EndsWithin(adapter->Size(), size, offset))
            {
                return RecordLastError(
                    KORO_RETURN_CODE_OUT_OF_RANGE, "size + offset exceeds the specified file's size!");
            }
            return RecordLastError(KORO_RETURN_CODE_ERROR, "An unknown error occurred reading the specified file!");
        });
    });
}

KORO_ReturnCode KORO_FileAdapter_Write(
    KORO_FileAdapterHandle fileAdapter, const uint8_t* data, uint64_t size, uint64_t offset)
{
    return ExecuteAndMapExceptions([&] {
        if (!data) return InvalidOutput(KORO_ARG(data));
        return WithObject(KORO_ARG(fileAdapter), [&](const auto& adapter) -> KORO_ReturnCode {
            if (adapter->Write(reinterpret_cast<const char*>(data), size, offset) >= size) return success;
            if (EndsWithin(adapter->MaxSize(), size, offset))
            {
                return RecordLastError(
                    KORO_RETURN_CODE_OUT_OF_RANGE, "data size + offset exceeds the specified file's size!");
            }
            return KORO_RETURN_CODE_ERROR; // without a text: kept, since programs may rely on the previous one
        });
    });
}

KORO_ReturnCode KORO_FileAdapter_Delete(KORO_FileAdapterHandle fileAdapter)
{
    return Perform(KORO_ARG(fileAdapter), &FileAdapter::Delete);
}
