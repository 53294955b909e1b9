#include "gentl/shared_object.h"

#include "base/exceptions.h"

#include <cerrno>
#include <dlfcn.h>

namespace koro::internal
{

namespace
{

// The loader sets no number for every failure of its own.
std::string ErrorNumberText(int number)
{
    return number == 0 ? "<not available>" : std::to_string(number);
}

// Local scope, since all producers export the same names; no deep binding, which sanitizers cannot follow.
void* Load(const std::string& path)
{
    const bool hasFolder = path.find('/') != std::string::npos;
    return dlopen(hasFolder ? path.c_str() : ("./" + path).c_str(), RTLD_NOW | RTLD_LOCAL);
}

} // namespace

SharedObject::SharedObject(const std::string& path)
{
    errno = 0;
    handle = Load(path);
    const int number = errno;
    if (!handle)
    {
        throw CTILoadingException("Loading CTI " + path + " failed! Code: " + ErrorNumberText(number) + ".");
    }
}

SharedObject::~SharedObject()
{
    dlclose(handle);
}

SharedObject::FoundSymbol SharedObject::Symbol(const char* name) const
{
    errno = 0;
    void* const address = dlsym(handle, name);
    const int number = errno;
    if (address) return {address, {}};
    return {nullptr, ErrorNumberText(number)};
}

} // namespace koro::internal
