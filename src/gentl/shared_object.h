// SharedObject: one loaded .cti file.
//
// Owned only by GenTLProxy. The destructor unloads the file, unless KeepMapped was called. Thread-safe after
// construction.
#pragma once

#include <string>

namespace koro::internal
{

class SharedObject
{
public:
    // Loads `path` as given, without search: a path without a slash means the working directory.
    // Throws CTILoadingException with the platform's error number in the text.
    explicit SharedObject(const std::string& path);
    ~SharedObject();
    SharedObject(const SharedObject&) = delete;
    SharedObject& operator=(const SharedObject&) = delete;

    struct FoundSymbol
    {
        void* address;           // null when absent
        std::string errorNumber; // the reason, as messages print it; empty when found
    };

    // Does not throw when the symbol is missing: whether that is an error depends on the GenTL version that the
    // producer claims.
    FoundSymbol Symbol(const char* name) const;

    // Keeps the file's code mapped until the process ends. Used for a producer that has started: it may have left
    // threads running, which would continue in unmapped code.
    void KeepMapped() const noexcept;

private:
    void* handle;
};

} // namespace koro::internal
