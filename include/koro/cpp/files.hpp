// Files on a device, such as firmware, user data and tables.
//
// Programs include <koro/koro.hpp>, which includes this header. Any thread may call these functions; each call holds
// the lock of the node map while it runs.
#ifndef KORO_CPP_FILES_HPP
#define KORO_CPP_FILES_HPP

#include <koro/cpp/nodes.hpp>
#include <koro/cpp/support.hpp>
#include <koro/koro.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace koro
{

// One file of a device. Owns its handle. It does not keep the node map; after the end of the map each call throws
// Error.
class FileAdapter : public detail::Owner<KORO_FileAdapterHandle, KORO_FileAdapter_Destruct>
{
public:
    FileAdapter() = default;
    // `file` is an entry of the enumeration "FileSelector". For any other name the constructor throws Error with
    // KORO_RETURN_CODE_NOT_AVAILABLE and the name in its text.
    FileAdapter(const NodeMap& features, const std::string& file)
        : Owner(Construct(features.Get(), file)), nodes(features), name(file)
    {}

    uint64_t Size() const { return detail::Get(KORO_FileAdapter_GetSize, Get()); }
    uint64_t MaxSize() const { return detail::Get(KORO_FileAdapter_GetMaxSize, Get()); }

    // Reads exactly this number of bytes. Throws Error otherwise, with KORO_RETURN_CODE_OUT_OF_RANGE when the file ends
    // earlier.
    std::vector<uint8_t> Read(uint64_t size, uint64_t offset = 0) const
    {
        if (size > detail::maxBytesSize)
            throw Error(KORO_RETURN_CODE_ERROR, "A file is not read in pieces of " + std::to_string(size) + " bytes!");
        std::vector<uint8_t> bytes(static_cast<size_t>(size) + 1); // never empty, so that it has an address
        uint64_t count = 0;
        detail::Check(KORO_FileAdapter_Read(Get(), size, offset, bytes.data(), &count));
        bytes.resize(static_cast<size_t>(size));
        return bytes;
    }
    // Reads the whole file with its current size.
    std::vector<uint8_t> Read() const { return Read(Size()); }

    // Writes all bytes. Throws Error with the device's reason otherwise; some bytes may have been written then.
    void Write(const void* data, uint64_t size, uint64_t offset = 0) const
    {
        const uint8_t nothing = 0;
        const auto* const bytes = size > 0 ? static_cast<const uint8_t*>(data) : &nothing;
        const std::optional<NodeMapLock> lock = LockNodes(); // so that the device's status belongs to this write
        std::string refusal;
        const Registration watch = KeepRefusal(refusal);
        // One kind of failure has no error text and does not change the record of the previous failure, which must not
        // be reported instead.
        if (detail::LastErrorCode() == KORO_RETURN_CODE_ERROR) KORO_FileAdapter_GetSize(Get(), nullptr);
        const KORO_ReturnCode code = KORO_FileAdapter_Write(Get(), bytes, size, offset);
        if (code == KORO_RETURN_CODE_ERROR && detail::LastErrorCode() != code)
            throw Error(
                code, "The device did not take all bytes of the file \"" + name + "\"" + Reason("Write", refusal));
        detail::Check(code);
    }
    void Write(const std::vector<uint8_t>& bytes, uint64_t offset = 0) const
    {
        Write(bytes.data(), bytes.size(), offset);
    }

    // Throws Error when the device reports a refusal, or when the file is not empty afterwards. The C function reports
    // neither.
    void Delete() const
    {
        const std::optional<NodeMapLock> lock = LockNodes();
        detail::Check(KORO_FileAdapter_Delete(Get()));
        const std::string refusal = "The device did not delete the file \"" + name + "\"";
        if (!Offers("FileOperationSelector", "Delete"))
            throw Error(KORO_RETURN_CODE_BAD_ACCESS, refusal + ": it cannot be deleted!");
        const std::string status = Status();
        if (!status.empty() && status != "Success")
            throw Error(KORO_RETURN_CODE_ERROR, refusal + ": FileOperationStatus is " + status + "!");
        uint64_t left = 0;
        if (KORO_FileAdapter_GetSize(Get(), &left) == KORO_RETURN_CODE_SUCCESS && left > 0)
            throw Error(KORO_RETURN_CODE_ERROR, refusal + ": it still has " + std::to_string(left) + " bytes!");
    }

private:
    static KORO_FileAdapterHandle Construct(KORO_NodeMapHandle features, const std::string& file)
    {
        KORO_FileAdapterHandle handle{};
        const KORO_ReturnCode code = KORO_FileAdapter_Construct(features, file.c_str(), file.size() + 1, &handle);
        if (code == KORO_RETURN_CODE_NOT_AVAILABLE) throw Error(code, detail::LastErrorText() + " (" + file + ")");
        detail::Check(code);
        return handle;
    }

    // Empty when the node map has ended: the calls that follow report this.
    std::optional<NodeMapLock> LockNodes() const
    {
        try
        {
            return nodes.Lock();
        }
        catch (const Error&)
        {
            return std::nullopt;
        }
    }
    EnumerationNode Choice(const char* node) const
    {
        const Node found = nodes.TryNode(node);
        return found && found.Type() == KORO_NODE_TYPE_ENUMERATION ? found.ToEnumeration() : EnumerationNode();
    }
    // Whether the selected file has this entry; true when the device does not report it.
    bool Offers(const char* node, const char* entry) const
    {
        try
        {
            const EnumerationNode choice = Choice(node);
            const EnumerationEntryNode offered = choice ? choice.TryEntry(std::string(entry)) : EnumerationEntryNode();
            return !choice || (offered && offered.IsAvailable());
        }
        catch (const Error&)
        {
            return true;
        }
    }
    // Empty when the device does not report it.
    static std::string Current(const EnumerationNode& choice)
    {
        try
        {
            return choice ? choice.CurrentEntry(CachePolicy::IgnoreCache).SymbolicValue() : std::string();
        }
        catch (const Error&)
        {
            return {};
        }
    }
    // The status of the last operation; empty when the device does not report it.
    std::string Status() const
    {
        try
        {
            return Current(Choice("FileOperationStatus"));
        }
        catch (const Error&)
        {
            return {};
        }
    }
    // Stores the first refusal among the operations of a transfer. The last operation is the closing, so the status of
    // each operation is queried when the next one is selected.
    Registration KeepRefusal(std::string& refusal) const
    {
        try
        {
            const EnumerationNode operation = Choice("FileOperationSelector");
            if (!operation) return {};
            return operation.OnChanged([this, operation, &refusal](const Node&) {
                if (!refusal.empty() || Current(operation) == "Open") return;
                const std::string status = Status();
                if (status != "Success") refusal = status;
            });
        }
        catch (const Error&)
        {
            return {};
        }
    }
    // The final part of an error text.
    std::string Reason(const char* mode, const std::string& refusal) const
    {
        if (!refusal.empty()) return ": FileOperationStatus is " + refusal + "!";
        try
        {
            // The modes in which a file can be opened may depend on the operation.
            const EnumerationNode operation = Choice("FileOperationSelector");
            if (operation) operation.SetCurrentEntry(std::string("Open"));
        }
        catch (const Error& error)
        {
            return std::string(": ") + error.what();
        }
        return Offers("FileOpenMode", mode) ? "!" : ": it cannot be opened for that!";
    }

    NodeMap nodes;
    std::string name;
};

} // namespace koro

#endif
