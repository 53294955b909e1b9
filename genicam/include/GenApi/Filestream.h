// FileProtocolAdapter: files on a device, through the nodes of the file access features. The streams IDevFileStream and
// ODevFileStream use it.
//
// The map must outlive the adapter. Each operation holds the map's lock from its first node to its last. An exception
// of a node or port during an operation ends the operation, and only the result shows it; the one exception that passes
// is that of an unknown file name in openFile.
#pragma once

#include <GenApi/INodeMap.h>
#include <GenApi/Pointer.h>
#include <algorithm>
#include <chrono>
#include <ios>
#include <istream>
#include <ostream>
#include <streambuf>
#include <string>
#include <vector>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IFileProtocolAdapter
{
    // Returns true if the map has all the nodes; otherwise the adapter has no map.
    virtual bool attach(INodeMap * pInterface) = 0;
    virtual bool openFile(const char* pFileName, std::ios_base::openmode mode) = 0;
    virtual bool closeFile(const char* pFileName) = 0;
    // Returns the number of bytes that were transferred: all, or those before the end of the file or a failure.
    virtual GenICam_streamsize write(const char* buf, int64_t offs, int64_t len, const char* pFileName) = 0;
    virtual GenICam_streamsize read(char* buf, int64_t offs, GenICam_streamsize len, const char* pFileName) = 0;
    // The number of bytes of one transfer; 0 after a failure.
    virtual int64_t getBufSize(const char* pFileName, std::ios_base::openmode mode) = 0;
    virtual bool deleteFile(const char* pFileName) = 0;

protected:
    ~IFileProtocolAdapter() = default;
};

class GENAPI_DECL FileProtocolAdapter : public IFileProtocolAdapter
{
public:
    FileProtocolAdapter();
    virtual ~FileProtocolAdapter();
    FileProtocolAdapter(const FileProtocolAdapter&) = delete;
    FileProtocolAdapter& operator=(const FileProtocolAdapter&) = delete;

    bool attach(INodeMap* pInterface) override;
    bool openFile(const char* pFileName, std::ios_base::openmode mode) override;
    bool closeFile(const char* pFileName) override;
    GenICam_streamsize write(const char* buf, int64_t offs, int64_t len, const char* pFileName) override;
    GenICam_streamsize read(char* buf, int64_t offs, GenICam_streamsize len, const char* pFileName) override;
    int64_t getBufSize(const char* pFileName, std::ios_base::openmode mode) override;
    bool deleteFile(const char* pFileName) override;

protected:
    // The time limit of one operation, after which it has failed. Initially ten minutes: some devices write their flash
    // memory when a file is closed.
    void SetTimeLimit(std::chrono::milliseconds limit) { timeLimit = limit; }

private:
    struct Nodes
    {
        CEnumerationPtr file;
        CEnumerationPtr operation;
        CEnumerationPtr openMode;
        CRegisterPtr buffer;
        CIntegerPtr offset;
        CIntegerPtr length;
        CCommandPtr execute;
        CEnumerationPtr status;
        CIntegerPtr result;

        bool AreValid() const;
    };

    template <class Prepare, class Finish>
    int64_t Transfer(
        const char* file, const char* operation, int64_t offset, int64_t length, const Prepare& prepare,
        const Finish& finish);
    bool SelectAndRun(const char* file, const char* operation);
    void Select(const char* file, const char* operation);
    void ExecuteAndWait();
    bool Succeeded();

    INodeMap* map;
    Nodes nodes;
    std::chrono::milliseconds timeLimit;
};

// What the buffers of both streams have in common: one open file and a block of bytes.
template <typename CharType, typename Traits>
class DevFileStreamBuf : public std::basic_streambuf<CharType, Traits>
{
    static_assert(sizeof(CharType) == 1, "Files of a device are made of bytes");

public:
    DevFileStreamBuf() : offset(0), opened(false) {}
    DevFileStreamBuf(const DevFileStreamBuf&) = delete;
    DevFileStreamBuf& operator=(const DevFileStreamBuf&) = delete;

    bool is_open() const { return opened; }

protected:
    bool Open(INodeMap* map, const char* file, std::ios_base::openmode mode)
    {
        if (opened || !file || !adapter.attach(map) || !adapter.openFile(file, mode)) return false;
        opened = true;
        name = file;
        offset = 0;
        const int64_t size = adapter.getBufSize(file, mode);
        if (size > 0) block.resize(static_cast<size_t>(std::min<int64_t>(size, maxBlock)));
        if (size <= 0) Close();
        return opened;
    }
    bool Close()
    {
        opened = false;
        return adapter.closeFile(name.c_str());
    }

    FileProtocolAdapter adapter;
    std::string name;
    int64_t offset; // in the file, for the next transfer
    std::vector<CharType> block;

private:
    enum
    {
        maxBlock = 1 << 20
    }; // bytes, regardless of what the device reports

    bool opened;
};

template <typename CharType, typename Traits>
class IDevFileStreamBuf : public DevFileStreamBuf<CharType, Traits>
{
public:
    ~IDevFileStreamBuf() override { close(); }

    // Returns null on a failure, like all file buffers.
    IDevFileStreamBuf* open(
        INodeMap* pInterface, const char* pFileName, std::ios_base::openmode mode = std::ios_base::in)
    {
        return this->Open(pInterface, pFileName, mode) ? this : nullptr;
    }
    IDevFileStreamBuf* close()
    {
        if (!this->is_open()) return nullptr;
        this->setg(nullptr, nullptr, nullptr);
        return this->Close() ? this : nullptr;
    }

protected:
    typename Traits::int_type underflow() override
    {
        if (!this->is_open()) return Traits::eof();
        char* const bytes = reinterpret_cast<char*>(this->block.data());
        const int64_t size = static_cast<int64_t>(this->block.size());
        const int64_t got = this->adapter.read(bytes, this->offset, size, this->name.c_str());
        if (got <= 0) return Traits::eof();
        this->offset += got;
        this->setg(this->block.data(), this->block.data(), this->block.data() + got);
        return Traits::to_int_type(this->block[0]);
    }
};

template <typename CharType, typename Traits>
class ODevFileStreamBuf : public DevFileStreamBuf<CharType, Traits>
{
public:
    ~ODevFileStreamBuf() override { close(); }

    // Returns null on a failure, like all file buffers.
    ODevFileStreamBuf* open(
        INodeMap* pInterface, const char* pFileName, std::ios_base::openmode mode = std::ios_base::out)
    {
        if (!this->Open(pInterface, pFileName, mode)) return nullptr;
        this->setp(this->block.data(), this->block.data() + this->block.size());
        return this;
    }
    // Also returns null when the device did not accept the last bytes; the file is closed nevertheless.
    ODevFileStreamBuf* close()
    {
        if (!this->is_open()) return nullptr;
        const bool written = Flush();
        this->setp(nullptr, nullptr);
        return this->Close() && written ? this : nullptr;
    }

protected:
    typename Traits::int_type overflow(typename Traits::int_type letter = Traits::eof()) override
    {
        if (!this->is_open() || !Flush()) return Traits::eof();
        if (Traits::eq_int_type(letter, Traits::eof())) return Traits::not_eof(letter);
        *this->pptr() = Traits::to_char_type(letter);
        this->pbump(1);
        return letter;
    }
    int sync() override { return this->is_open() && Flush() ? 0 : -1; }

private:
    // Bytes that the device did not accept stay in the block.
    bool Flush()
    {
        const char* const bytes = reinterpret_cast<const char*>(this->pbase());
        const int64_t size = this->pptr() - this->pbase();
        const int64_t taken = size > 0 ? this->adapter.write(bytes, this->offset, size, this->name.c_str()) : 0;
        this->offset += taken;
        std::copy(this->pbase() + taken, this->pptr(), this->block.data());
        this->setp(this->block.data(), this->block.data() + this->block.size());
        this->pbump(static_cast<int>(size - taken));
        return taken == size;
    }
};

// Works like std::ifstream for a file of a device: failures set the state of the stream.
template <typename CharType, typename Traits>
class IDevFileStreamBase : public std::basic_istream<CharType, Traits>
{
public:
    IDevFileStreamBase() : std::basic_istream<CharType, Traits>(nullptr) { this->init(&buffer); }
    IDevFileStreamBase(INodeMap* pInterface, const char* pFileName, std::ios_base::openmode mode = std::ios_base::in)
        : IDevFileStreamBase()
    {
        open(pInterface, pFileName, mode);
    }

    IDevFileStreamBuf<CharType, Traits>* rdbuf() const
    {
        return const_cast<IDevFileStreamBuf<CharType, Traits>*>(&buffer);
    }
    bool is_open() const { return buffer.is_open(); }
    void open(INodeMap* pInterface, const char* pFileName, std::ios_base::openmode mode = std::ios_base::in)
    {
        bool good = false;
        try
        {
            good = buffer.open(pInterface, pFileName, mode | std::ios_base::in) != nullptr;
        }
        catch (const GENICAM_NAMESPACE::GenericException&)
        {}
        if (good) this->clear();
        if (!good) this->setstate(std::ios_base::failbit);
    }
    void close()
    {
        if (!buffer.close()) this->setstate(std::ios_base::failbit);
    }

private:
    IDevFileStreamBuf<CharType, Traits> buffer;
};

// Works like std::ofstream for a file of a device: failures set the state of the stream. Close it to detect failures of
// the last bytes.
template <typename CharType, typename Traits>
class ODevFileStreamBase : public std::basic_ostream<CharType, Traits>
{
public:
    ODevFileStreamBase() : std::basic_ostream<CharType, Traits>(nullptr) { this->init(&buffer); }
    ODevFileStreamBase(INodeMap* pInterface, const char* pFileName, std::ios_base::openmode mode = std::ios_base::out)
        : ODevFileStreamBase()
    {
        open(pInterface, pFileName, mode);
    }

    ODevFileStreamBuf<CharType, Traits>* rdbuf() const
    {
        return const_cast<ODevFileStreamBuf<CharType, Traits>*>(&buffer);
    }
    bool is_open() const { return buffer.is_open(); }
    void open(INodeMap* pInterface, const char* pFileName, std::ios_base::openmode mode = std::ios_base::out)
    {
        bool good = false;
        try
        {
            good = buffer.open(pInterface, pFileName, mode | std::ios_base::out) != nullptr;
        }
        catch (const GENICAM_NAMESPACE::GenericException&)
        {}
        if (good) this->clear();
        if (!good) this->setstate(std::ios_base::failbit);
    }
    void close()
    {
        if (!buffer.close()) this->setstate(std::ios_base::failbit);
    }

private:
    ODevFileStreamBuf<CharType, Traits> buffer;
};

typedef IDevFileStreamBase<char, std::char_traits<char>> IDevFileStream;
typedef ODevFileStreamBase<char, std::char_traits<char>> ODevFileStream;

} // namespace GENAPI_NAMESPACE
