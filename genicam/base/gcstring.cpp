#include <Base/GCException.h>
#include <Base/GCString.h>
#include <utility>

void ThrowBadAlloc(const char* sourceFile, int sourceLine)
{
    throw GENICAM_NAMESPACE::BadAllocException("Error while allocating memory", sourceFile, sourceLine);
}

namespace GENICAM_NAMESPACE
{

const size_t gcstring::npos;

gcstring::gcstring(const char* text, size_t count)
{
    assign(text, count);
}

gcstring& gcstring::operator=(const gcstring& other)
{
    bytes = other.bytes;
    return *this;
}

gcstring& gcstring::append(const gcstring& tail)
{
    bytes.append(tail.bytes);
    return *this;
}

gcstring& gcstring::append(size_t count, char letter)
{
    bytes.append(count, letter);
    return *this;
}

gcstring& gcstring::assign(const gcstring& text)
{
    bytes = text.bytes;
    return *this;
}

gcstring& gcstring::assign(size_t count, char letter)
{
    bytes.assign(count, letter);
    return *this;
}

gcstring& gcstring::assign(const char* text)
{
    bytes.assign(text ? text : "");
    return *this;
}

gcstring& gcstring::assign(const char* text, size_t count)
{
    if (text)
    {
        bytes.assign(text, count);
    }
    else
    {
        bytes.clear();
    }
    return *this;
}

int gcstring::compare(const gcstring& other) const
{
    return bytes.compare(other.bytes);
}

size_t gcstring::find(char letter, size_t offset) const
{
    return bytes.find(letter, offset);
}

size_t gcstring::find(const gcstring& text, size_t offset) const
{
    return bytes.find(text.bytes, offset);
}

size_t gcstring::find(const gcstring& text, size_t offset, size_t count) const
{
    return bytes.find(text.bytes.substr(0, count), offset);
}

size_t gcstring::find(const char* text, size_t offset) const
{
    return bytes.find(text ? text : "", offset);
}

size_t gcstring::find(const char* text, size_t offset, size_t count) const
{
    return text ? bytes.find(text, offset, count) : bytes.find("", offset);
}

void gcstring::resize(size_t count)
{
    bytes.resize(count);
}

void gcstring::reserve(size_t count)
{
    bytes.reserve(count);
}

gcstring& gcstring::erase(size_t position, size_t count)
{
    bytes.erase(position, count);
    return *this;
}

gcstring gcstring::substr(size_t offset, size_t count) const
{
    return gcstring(bytes.substr(offset, count));
}

size_t gcstring::find_first_of(const gcstring& letters, size_t offset) const
{
    return bytes.find_first_of(letters.bytes, offset);
}

size_t gcstring::find_first_not_of(const gcstring& letters, size_t offset) const
{
    return bytes.find_first_not_of(letters.bytes, offset);
}

size_t gcstring::find_last_of(const gcstring& letters, size_t offset) const
{
    return bytes.find_last_of(letters.bytes, offset);
}

size_t gcstring::find_last_of(char letter, size_t offset) const
{
    return bytes.find_last_of(letter, offset);
}

size_t gcstring::find_last_not_of(const gcstring& letters, size_t offset) const
{
    return bytes.find_last_not_of(letters.bytes, offset);
}

size_t gcstring::find_last_not_of(char letter, size_t offset) const
{
    return bytes.find_last_not_of(letter, offset);
}

void gcstring::swap(gcstring& other)
{
    bytes.swap(other.bytes);
}

bool gcstring::operator==(const char* text) const
{
    return bytes == (text ? text : "");
}

gcstring& gcstring::operator+=(const gcstring& tail)
{
    return append(tail);
}

gcstring gcstring::operator+=(const gcstring& tail) const
{
    return *this + tail;
}

gcstring& gcstring::operator+=(const char* tail)
{
    bytes += tail ? tail : "";
    return *this;
}

gcstring& gcstring::operator+=(char letter)
{
    bytes += letter;
    return *this;
}

gcstring gcstring::operator+=(char letter) const
{
    return gcstring(bytes + letter);
}

void* gcstring::operator new(size_t size)
{
    void* const memory = ::operator new(size, std::nothrow);
    if (!memory) ThrowBadAlloc(__FILE__, __LINE__);
    return memory;
}

void gcstring::operator delete(void* memory)
{
    ::operator delete(memory);
}

void* gcstring::operator new(size_t, void* place)
{
    return place;
}

void gcstring::operator delete(void*, void*) {}

gcstring operator+(const gcstring& left, const gcstring& right)
{
    return gcstring(left.bytes + right.bytes);
}

gcstring operator+(const gcstring& left, const char* right)
{
    return gcstring(left.bytes + (right ? right : ""));
}

gcstring operator+(const char* left, const gcstring& right)
{
    return gcstring((left ? left : "") + right.bytes);
}

std::istream& getline(std::istream& stream, gcstring& line)
{
    return getline(stream, line, '\n');
}

std::istream& getline(std::istream& stream, gcstring& line, char delimiter)
{
    std::string text;
    std::getline(stream, text, delimiter);
    line.assign(text.data(), text.size());
    return stream;
}

} // namespace GENICAM_NAMESPACE

std::ostream& operator<<(std::ostream& stream, const GENICAM_NAMESPACE::gcstring& text)
{
    return stream << text.c_str();
}

std::istream& operator>>(std::istream& stream, GENICAM_NAMESPACE::gcstring& word)
{
    std::string text;
    stream >> text;
    word.assign(text.data(), text.size());
    return stream;
}
