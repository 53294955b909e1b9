// gcstring: a text of bytes with a length. Embedded zeros are kept; c_str() is zero-terminated.
//
// A value: copies are independent. Several threads may read it, but not change it.
#pragma once

#include <Base/GCLinkage.h>
#include <Base/GCTypes.h>
#include <istream>
#include <new>
#include <ostream>
#include <string>

#define GCSTRING_NPOS size_t(-1)

// Throws GenICam's BadAllocException with the given place.
GCBASE_API void ThrowBadAlloc(const char* sourceFile, int sourceLine);

namespace GENICAM_NAMESPACE
{

class GCBASE_RTTI_CLASS_API gcstring
{
public:
    gcstring() {}
    gcstring(const char* text) : bytes(text ? text : "") {} // intentionally implicit; null is the empty text
    gcstring(const char* text, size_t count);
    gcstring(size_t count, char letter) : bytes(count, letter) {}
    gcstring(const gcstring& other) : bytes(other.bytes) {}
    virtual ~gcstring() {}
    gcstring& operator=(const gcstring& other);

    virtual gcstring& append(const gcstring& tail);
    virtual gcstring& append(size_t count, char letter);
    virtual gcstring& assign(const gcstring& text);
    virtual gcstring& assign(size_t count, char letter);
    virtual gcstring& assign(const char* text);
    virtual gcstring& assign(const char* text, size_t count);
    virtual int compare(const gcstring& other) const;
    virtual const char* c_str() const { return bytes.c_str(); }
    virtual bool empty() const { return bytes.empty(); }
    virtual size_t find(char letter, size_t offset = 0) const;
    virtual size_t find(const gcstring& text, size_t offset = 0) const;
    virtual size_t find(const gcstring& text, size_t offset, size_t count) const;
    virtual size_t find(const char* text, size_t offset = 0) const;
    virtual size_t find(const char* text, size_t offset, size_t count) const;
    virtual size_t length() const { return bytes.length(); }
    virtual size_t size() const { return bytes.size(); }
    virtual void resize(size_t count);
    virtual void reserve(size_t count = 0);
    virtual gcstring& erase(size_t position, size_t count = GCSTRING_NPOS);
    virtual size_t max_size() const { return bytes.max_size(); }
    virtual gcstring substr(size_t offset = 0, size_t count = GCSTRING_NPOS) const;
    virtual size_t find_first_of(const gcstring& letters, size_t offset = 0) const;
    virtual size_t find_first_not_of(const gcstring& letters, size_t offset = 0) const;
    virtual size_t find_last_of(const gcstring& letters, size_t offset = GCSTRING_NPOS) const;
    virtual size_t find_last_of(char letter, size_t offset = GCSTRING_NPOS) const;
    virtual size_t find_last_not_of(const gcstring& letters, size_t offset = GCSTRING_NPOS) const;
    virtual size_t find_last_not_of(char letter, size_t offset = GCSTRING_NPOS) const;
    static size_t _npos() { return GCSTRING_NPOS; }
    virtual void swap(gcstring& other);

    bool operator==(const gcstring& other) const { return bytes == other.bytes; }
    bool operator==(const char* text) const;
    bool operator!=(const gcstring& other) const { return bytes != other.bytes; }
    bool operator!=(const char* text) const { return !(*this == text); }
    bool operator<(const gcstring& other) const { return bytes < other.bytes; }
    bool operator>(const gcstring& other) const { return bytes > other.bytes; }
    gcstring& operator+=(const gcstring& tail);
    gcstring operator+=(const gcstring& tail) const; // on a constant: a new text, this one stays
    gcstring& operator+=(const char* tail);
    gcstring& operator+=(char letter);
    gcstring operator+=(char letter) const;
    operator const char*() const { return bytes.c_str(); }

    void* operator new(size_t size);
    void operator delete(void* memory);
    void* operator new(size_t size, void* place);
    void operator delete(void* memory, void* place);

    friend gcstring operator+(const gcstring& left, const gcstring& right);
    friend gcstring operator+(const gcstring& left, const char* right);
    friend gcstring operator+(const char* left, const gcstring& right);

    static const size_t npos = GCSTRING_NPOS;

private:
    explicit gcstring(const std::string& text) : bytes(text) {}

    std::string bytes;
};

gcstring operator+(const gcstring& left, const gcstring& right);
gcstring operator+(const gcstring& left, const char* right);
gcstring operator+(const char* left, const gcstring& right);

GCBASE_API std::istream& getline(std::istream& stream, gcstring& line);
GCBASE_API std::istream& getline(std::istream& stream, gcstring& line, char delimiter);

} // namespace GENICAM_NAMESPACE

// Prints up to the first zero byte.
GCBASE_API std::ostream& operator<<(std::ostream& stream, const GENICAM_NAMESPACE::gcstring& text);
// Reads one word.
GCBASE_API std::istream& operator>>(std::istream& stream, GENICAM_NAMESPACE::gcstring& word);
