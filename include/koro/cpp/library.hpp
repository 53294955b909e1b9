// The library itself: its initialisation, the producers that are there, and the end of the process.
//
// Included by <koro/koro.hpp>, which is the header for programs.
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

// Closes the library when the process ends by exit(), which ends no object of a function that has not returned: some
// producers crash when their static objects end while something is open.
//
// Exit handlers run in the reverse order of their registration, mixed with the ends of static objects, in the reverse
// order of their beginnings. A handler has to be younger than the static objects of a producer, those included that its
// functions make when they run for the first time: so one is registered behind each file that is loaded for the first
// time, and behind the first openings that follow. The first of them that runs closes; the others find nothing to do.
class ClosingAtExit
{
public:
    static ClosingAtExit& OfProcess()
    {
        static auto* const closing = new ClosingAtExit; // never destroyed: exit handlers use it
        return *closing;
    }

    void Opened() noexcept { ++numOpen; }
    // Whether the caller has to close, which the handler has not done for it.
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

// What an opening function gives, by the way of the handlers at exit.
template <typename Handle>
Handle Opened(Handle handle) noexcept
{
    ClosingAtExit::OfProcess().ModuleOpened();
    return handle;
}

} // namespace detail

// One count of the library's initialisation. Keep it until everything else of this header has gone. exit(), called by
// any function but a callback, gives back the counts that are left: end your own threads before. In a callback it may
// not be able to: a call that never returns holds modules, and a close on a thread of the library's own is refused.
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
    // As "1.11.1".
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

// The producers that GENICAM_GENTL64_PATH leads to. The list belongs to the process and outlives the library's end.
class EnvironmentInspector
{
public:
    // Loads every new candidate once to see whether it works.
    static void Update() { detail::Check(KORO_EnvironmentInspector_UpdateCTIPaths()); }
    // The list of the latest update.
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
