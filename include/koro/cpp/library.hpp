// The library: its initialisation, the installed producers, and the end of the process.
//
// Programs include <koro/koro.hpp>, which includes this header.
#ifndef KORO_CPP_LIBRARY_HPP
#define KORO_CPP_LIBRARY_HPP

#include <koro/cpp/support.hpp>
#include <koro/koro.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace koro
{

namespace detail
{

// Closes the library when the process ends by exit(). exit() does not destroy the local variables of functions that
// have not returned, and some producers crash if their static objects are destroyed while a module is open.
//
// Exit handlers and destructors of static objects run together, in the reverse order of their registrations and
// constructions. A handler must run before the destructors of a producer's static objects, including those that its
// functions construct at their first call. So a handler is registered after each file that is loaded for the first
// time, and after the first openings that follow. The first handler that runs closes the library; the others find
// nothing to do.
class ClosingAtExit
{
public:
    static ClosingAtExit& OfProcess()
    {
        static auto* const closing = new ClosingAtExit; // never destroyed: exit handlers use it
        return *closing;
    }

    void Opened() noexcept { ++numOpen; }
    // Returns whether the caller must close the library, because the handler has not done it.
    bool TakeOne() noexcept
    {
        for (int count = numOpen; count > 0;)
        {
            if (numOpen.compare_exchange_weak(count, count - 1)) return true;
        }
        return false;
    }
    void FileLoaded(const std::string& path)
    {
        {
            const std::lock_guard<std::mutex> lock(mutex);
            if (!files.insert(path).second) return;
        }
        handlersLeft = handlersPerFile;
        ModuleOpened();
    }
    void ModuleOpened() noexcept
    {
        if (handlersLeft.load(std::memory_order_relaxed) > 0 && handlersLeft-- > 0) std::atexit(Close);
    }

private:
    static constexpr int handlersPerFile = 16;

    static void Close() noexcept
    {
        while (OfProcess().TakeOne())
        {
            if (KORO_Library_Close() != KORO_RETURN_CODE_SUCCESS) return;
        }
    }

    std::atomic<int> numOpen{0};
    std::atomic<int> handlersLeft{0};
    std::mutex mutex;
    std::set<std::string> files; // guarded by mutex
};

// Returns the result of an opening function after registering the exit handler.
template <typename Handle>
Handle Opened(Handle handle) noexcept
{
    ClosingAtExit::OfProcess().ModuleOpened();
    return handle;
}

} // namespace detail

// One initialisation of the library, which is counted. Keep it until all other objects of this interface have been
// destroyed. exit() closes the initialisations that are left; end your own threads before. When exit() is called in a
// callback, it may fail to do so: a call that does not return holds its modules, and a close on a thread of the library
// is refused.
class Library
{
public:
    [[nodiscard]] static Library Initialize()
    {
        detail::Check(KORO_Library_Initialize());
        detail::ClosingAtExit::OfProcess().Opened();
        return Library();
    }
    Library(Library&& other) noexcept : counted(std::exchange(other.counted, false)) {}
    Library& operator=(Library&& other) noexcept
    {
        if (this != &other)
        {
            Close();
            counted = std::exchange(other.counted, false);
        }
        return *this;
    }
    ~Library() { Close(); }

    void Close() noexcept
    {
        if (std::exchange(counted, false) && detail::ClosingAtExit::OfProcess().TakeOne()) KORO_Library_Close();
    }
    static bool IsInitialized()
    {
        KORO_Bool8 initialized = 0;
        detail::Check(KORO_Library_IsInitialized(&initialized));
        return initialized != 0;
    }
    // The version as a text, for example "1.11.1".
    static std::string Version()
    {
        uint32_t major = 0;
        uint32_t minor = 0;
        uint32_t subminor = 0;
        detail::Check(KORO_Library_GetVersionMajor(&major));
        detail::Check(KORO_Library_GetVersionMinor(&minor));
        detail::Check(KORO_Library_GetVersionSubminor(&subminor));
        return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(subminor);
    }

private:
    Library() = default;

    bool counted = true;
};

// The producers in the directories of GENICAM_GENTL64_PATH. The list belongs to the process and outlives the library.
class EnvironmentInspector
{
public:
    // Searches the directories. Loads each new candidate once to find out whether it works.
    static void Update() { detail::Check(KORO_EnvironmentInspector_UpdateCTIPaths()); }
    // Returns the list of the last update.
    static std::vector<std::string> CTIPaths()
    {
        size_t count = 0;
        detail::Check(KORO_EnvironmentInspector_GetNumCTIPaths(&count));
        std::vector<std::string> paths;
        for (size_t index = 0; index < count; ++index)
        {
            paths.push_back(detail::FetchText([index](char* buffer, size_t* size) {
                return KORO_EnvironmentInspector_GetCTIPath(index, buffer, size);
            }));
        }
        return paths;
    }
};

} // namespace koro

#endif
