// SharedObject: one loaded .cti file, from load to unload.
//
// Owned by GenTLProxy alone; the destructor unloads. Thread-safe once constructed: nothing changes any more.
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
        std::string errorNumber; // why, as messages print it; empty when found
    };

    // No exception when absent: whether that matters depends on the GenTL version that the producer claims.
    FoundSymbol Symbol(const char* name) const;

private:
    void* handle;
};

} // namespace koro::internal
