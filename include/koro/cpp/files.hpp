// Files on a device: firmware, user data, tables.
//
// Included by <koro/koro.hpp>, which is the header for programs. Any thread; each call holds the lock of the map for
// its own length.
#ifndef KORO_CPP_FILES_HPP
#define KORO_CPP_FILES_HPP

#include <koro/cpp/nodes.hpp>
#include <koro/cpp/support.hpp>
#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace koro
{

// One file of a device. Owns its handle; it does not keep the features open, and once these have gone every call
// throws Error.
class FileAdapter : public detail::Owner<KORO_FileAdapterHandle, KORO_FileAdapter_Destruct>
{
public:
    FileAdapter() = default;
    // `file` is an entry of the enumeration "FileSelector". Throws Error with KORO_RETURN_CODE_NOT_AVAILABLE for any
    // other.
    FileAdapter(const NodeMap& features, const std::string& file) : Owner(Construct(features.Get(), file)) {}

    uint64_t Size() const { return detail::Get(KORO_FileAdapter_GetSize, Get()); }
    uint64_t MaxSize() const { return detail::Get(KORO_FileAdapter_GetMaxSize, Get()); }

    // All of these bytes, or Error: with KORO_RETURN_CODE_OUT_OF_RANGE when the file ends earlier.
    std::vector<uint8_t> Read(uint64_t size, uint64_t offset = 0) const
    {
        if (size > detail::maxBytesSize)
            throw Error(KORO_RETURN_CODE_ERROR, "A file is not read in pieces of " + std::to_string(size) + " bytes!");
        std::vector<uint8_t> bytes(static_cast<size_t>(size) + 1); // never without an address
        uint64_t count = 0;
        detail::Check(KORO_FileAdapter_Read(Get(), size, offset, bytes.data(), &count));
        bytes.resize(static_cast<size_t>(size));
        return bytes;
    }
    // As many bytes as the file has at the moment.
    std::vector<uint8_t> Read() const { return Read(Size()); }

    // All of these bytes, or Error; some may have been written then.
    void Write(const void* data, uint64_t size, uint64_t offset = 0) const
    {
        const uint8_t nothing = 0;
        const auto* const bytes = size > 0 ? static_cast<const uint8_t*>(data) : &nothing;
        // One failure alone comes without a text, and leaves the record of the one before, which must not look alike.
        if (detail::LastErrorCode() == KORO_RETURN_CODE_ERROR) KORO_FileAdapter_GetSize(Get(), nullptr);
        const KORO_ReturnCode code = KORO_FileAdapter_Write(Get(), bytes, size, offset);
        if (code == KORO_RETURN_CODE_ERROR && detail::LastErrorCode() != code)
            throw Error(code, "The device did not take all bytes of the file!");
        detail::Check(code);
    }
    void Write(const std::vector<uint8_t>& bytes, uint64_t offset = 0) const
    {
        Write(bytes.data(), bytes.size(), offset);
    }

    // What the device answers is not told.
    void Delete() const { detail::Check(KORO_FileAdapter_Delete(Get())); }

private:
    static KORO_FileAdapterHandle Construct(KORO_NodeMapHandle features, const std::string& file)
    {
        KORO_FileAdapterHandle handle{};
        detail::Check(KORO_FileAdapter_Construct(features, file.c_str(), file.size() + 1, &handle));
        return handle;
    }
};

} // namespace koro

#endif
