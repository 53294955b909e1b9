// Functions of the application that the library calls: how they are stored, and the registrations that unregister them.
//
// Programs include <koro/koro.hpp>, which includes this header. Any thread may call these functions.
#ifndef KORO_CPP_CALLBACKS_HPP
#define KORO_CPP_CALLBACKS_HPP

#include <koro/cpp/support.hpp>
#include <koro/koro.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace koro
{

namespace detail
{

// The functions that the library may call. Their context is a number instead of an address, so a late call on any
// thread finds no function instead of freed memory. Never destroyed, since exit handlers may end registrations.
class KeptFunctions
{
public:
    using Number = void*; // the library passes it back unchanged; never null

    static KeptFunctions& OfProcess()
    {
        static auto* const functions = new KeptFunctions;
        return *functions;
    }

    // `group` is an address by which several functions are dropped together, or null.
    Number Keep(std::shared_ptr<void> function, const void* group)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const uintptr_t number = last + 1;
        functions.emplace(number, Entry{std::move(function), group});
        last = number;
        return reinterpret_cast<Number>(number);
    }
    // One call of a function, from the look-up to its return; the function is null if it has been dropped. Running
    // calls form a list on the stacks of their threads, so a call allocates no memory.
    class Call
    {
    public:
        explicit Call(Number number) : of(reinterpret_cast<uintptr_t>(number)), kept(OfProcess())
        {
            const std::lock_guard<std::mutex> lock(kept.mutex);
            const auto found = kept.functions.find(of);
            if (found != kept.functions.end()) function = found->second.function;
            next = std::exchange(kept.running, this);
        }
        Call(const Call&) = delete;
        Call& operator=(const Call&) = delete;
        ~Call()
        {
            function.reset(); // if it was the last reference, the captured objects are destroyed within the call
            const std::lock_guard<std::mutex> lock(kept.mutex);
            Call** link = &kept.running;
            while (*link != this)
                link = &(*link)->next;
            *link = next;
            kept.returned.notify_all();
        }

        const std::shared_ptr<void>& Function() const noexcept { return function; }

    private:
        friend class KeptFunctions;

        const uintptr_t of;
        KeptFunctions& kept;
        const std::thread::id thread = std::this_thread::get_id();
        std::shared_ptr<void> function;
        Call* next = nullptr; // guarded by the mutex of KeptFunctions
    };

    // Drops a function. Returns when no other thread is inside it. A function that drops itself does not wait.
    void Drop(Number number) noexcept
    {
        const std::shared_ptr<void> dropped = Take(number); // destroyed outside of the lock
        const auto of = reinterpret_cast<uintptr_t>(number);
        std::unique_lock<std::mutex> lock(mutex);
        const auto own = std::this_thread::get_id();
        if (Runs([&](const Call& call) { return call.of == of && call.thread == own; })) return;
        returned.wait(lock, [&] { return !Runs([&](const Call& call) { return call.of == of; }); });
    }
    std::shared_ptr<void> Take(Number number)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        const auto found = functions.find(reinterpret_cast<uintptr_t>(number));
        if (found == functions.end()) return nullptr;
        std::shared_ptr<void> taken = std::move(found->second.function);
        functions.erase(found);
        return taken;
    }
    void DropGroup(const void* group) noexcept
    {
        std::map<uintptr_t, Entry> dropped; // destroyed outside of the lock
        const std::lock_guard<std::mutex> lock(mutex);
        for (auto entry = functions.begin(); entry != functions.end();)
        {
            const auto looked = entry++;
            if (looked->second.group == group) dropped.insert(functions.extract(looked));
        }
    }

private:
    struct Entry
    {
        std::shared_ptr<void> function;
        const void* group;
    };

    template <typename IsMeant>
    bool Runs(IsMeant isMeant) const
    {
        for (const Call* call = running; call; call = call->next)
            if (isMeant(*call)) return true;
        return false;
    }

    std::mutex mutex;
    std::condition_variable returned;     // signalled when a call returns
    std::map<uintptr_t, Entry> functions; // guarded by mutex, like the next fields
    uintptr_t last = 0;
    Call* running = nullptr;
};

// A kept function, which is dropped when this object is destroyed.
class KeptFunction
{
public:
    KeptFunction() = default;
    explicit KeptFunction(std::shared_ptr<void> function, const void* group = nullptr)
        : number(KeptFunctions::OfProcess().Keep(std::move(function), group))
    {}
    KeptFunction(KeptFunction&& other) noexcept : number(other.Release()) {}
    KeptFunction& operator=(KeptFunction&& other) noexcept
    {
        if (this != &other)
        {
            Drop();
            number = other.Release();
        }
        return *this;
    }
    ~KeptFunction() { Drop(); }

    KeptFunctions::Number Number() const noexcept { return number; }
    KeptFunctions::Number Release() noexcept { return std::exchange(number, nullptr); }
    void Drop() noexcept
    {
        if (number) KeptFunctions::OfProcess().Drop(Release());
    }

private:
    KeptFunctions::Number number = nullptr;
};

// Calls the function of a context if it has not been dropped.
template <typename Function, typename... Arguments>
void CallKept(void* context, Arguments&&... arguments)
{
    const KeptFunctions::Call call(context);
    if (call.Function()) (*static_cast<Function*>(call.Function().get()))(std::forward<Arguments>(arguments)...);
}

} // namespace detail

// A registered callback, which ends with this object. The function runs on the thread that causes the notification. It
// runs while a lock is held: the lock of the callback registry for found and lost, the lock of the map for nodes. The
// unsolicited notifications (list changed, disconnected, reconnected) run on a thread of the library that all
// interfaces of the system share, with the lock of their registry. A function must not throw: that would end the
// program. A function, except one for nodes, must not make or end registrations of its own kind. A function for
// unsolicited notifications also must not open or close an interface of its system or a parent of the interface.
class Registration
{
public:
    Registration() = default;
    Registration(detail::KeptFunction called, std::function<KORO_ReturnCode()> unregisterFunction)
        : function(std::move(called)), unregister(std::move(unregisterFunction))
    {}
    Registration(Registration&& other) noexcept
        : function(std::move(other.function)), unregister(std::exchange(other.unregister, nullptr))
    {}
    Registration& operator=(Registration&& other) noexcept
    {
        if (this != &other)
        {
            End();
            function = std::move(other.function);
            unregister = std::exchange(other.unregister, nullptr);
        }
        return *this;
    }
    ~Registration() { End(); }

    // Unregisters the callback. Afterwards the function is not called any more, and calls of it on other threads have
    // returned, even if the module ended before. Two functions that end each other's registrations on two threads may
    // wait for each other forever. Inside a callback of the same kind the library refuses, and this function returns
    // its code. The application's function is still not called any more then; another End() elsewhere tries the
    // unregistration again. A function that ends its own registration stays alive until it returns.
    KORO_ReturnCode End() noexcept
    {
        const KORO_ReturnCode code = unregister ? unregister() : KORO_RETURN_CODE_SUCCESS;
        const bool refused = code != KORO_RETURN_CODE_SUCCESS && code != KORO_RETURN_CODE_INVALID_HANDLE &&
                             code != KORO_RETURN_CODE_NOT_INITIALIZED;
        if (!refused) unregister = nullptr;
        function.Drop();
        return code;
    }

private:
    detail::KeptFunction function;
    std::function<KORO_ReturnCode()> unregister;
};

namespace detail
{

template <typename Descriptor, typename Handle>
void CallFound(Handle found, void* context) noexcept
{
    CallKept<std::function<void(Descriptor)>>(context, Descriptor(found));
}

inline void CallLost(const char* id, size_t idSize, void* context) noexcept
{
    CallKept<std::function<void(const std::string&)>>(context, std::string(id, idSize > 0 ? idSize - 1 : 0));
}

inline void CallListChanged(void* context) noexcept
{
    CallKept<std::function<void()>>(context);
}

inline void CallInformationChanged(const int32_t* roles, size_t numRoles, void* context) noexcept
{
    CallKept<std::function<void(const std::vector<int32_t>&)>>(
        context, numRoles > 0 ? std::vector<int32_t>(roles, roles + numRoles) : std::vector<int32_t>());
}

template <typename Descriptor>
void CallReconnected(
    KORO_DeviceDescriptorHandle descriptor, const KORO_DEVICE_RECONNECT_INFORMATION* information,
    void* context) noexcept
{
    CallKept<std::function<void(Descriptor, const KORO_DEVICE_RECONNECT_INFORMATION&)>>(
        context, Descriptor(descriptor), *information);
}

template <typename Function, typename Parent, typename Callback, typename CallbackHandle>
Registration Register(
    KORO_ReturnCode (*registerCallback)(Parent, Callback, void*, CallbackHandle*),
    KORO_ReturnCode (*unregisterCallback)(Parent, CallbackHandle), Parent parent, std::common_type_t<Callback> callback,
    Function function)
{
    if (!function) throw Error(KORO_RETURN_CODE_INVALID_ARGUMENT, "A callback needs a function!");
    KeptFunction kept(std::make_shared<Function>(std::move(function)));
    CallbackHandle handle{};
    Check(registerCallback(parent, callback, kept.Number(), &handle));
    return Registration(std::move(kept), [=] { return unregisterCallback(parent, handle); });
}

} // namespace detail

} // namespace koro

#endif
