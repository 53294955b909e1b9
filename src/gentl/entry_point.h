// Entry points: callable members of GenTLProxy, one for each function of a producer.
//
// Each one stores its name, so a message always names the function that was called. They are bound once while the proxy
// is constructed and never change afterwards. Thread-safe.
#pragma once

#include "gentl/api/gentl.h"

#include <string>

namespace koro::internal
{

// The result of a function that the producer does not offer; lies outside the standard's GC_ERROR values.
inline constexpr GenTL::GC_ERROR notImplementedCode = INT32_MIN;

// The last refused call through any proxy on this thread: 0 means that the last call reached a producer.
void ClearRefusedCall() noexcept;
// Stores the refusal with its text and returns notImplementedCode.
GenTL::GC_ERROR RefuseCall(const std::string& ctiPath, const char* function);
[[noreturn]] void ThrowMissingFunction(const std::string& ctiPath, const char* function);
// Call it in a catch clause around a producer's function: an exception of a producer must not be taken for one of the
// library, and must not outlive the producer's code.
[[noreturn]] void RethrowProducerException();

template <class Signature>
class EntryPoint;

template <class... Parameters>
class EntryPoint<GenTL::GC_ERROR(Parameters...)>
{
public:
    using Function = GenTL::GC_ERROR (*)(Parameters...);

    explicit EntryPoint(const char* functionName) : name(functionName) {}
    EntryPoint(const EntryPoint&) = delete;
    EntryPoint& operator=(const EntryPoint&) = delete;

    const char* Name() const { return name; }
    bool IsBound() const { return function != nullptr; }

    void Bind(void* address, const std::string& path)
    {
        function = reinterpret_cast<Function>(address);
        ctiPath = &path;
    }

protected:
    GenTL::GC_ERROR CallProducer(Parameters... parameters) const
    {
        try
        {
            return function(parameters...);
        }
        catch (...)
        {
            RethrowProducerException();
        }
    }

    const char* name;
    Function function = nullptr;
    const std::string* ctiPath = nullptr; // of the proxy that owns the entry point
};

template <class Signature>
class CoreEntryPoint;

// A function that every producer must offer. A producer of unknown version may lack it without failing to load; the
// call then throws an InternalErrorException.
template <class... Parameters>
class CoreEntryPoint<GenTL::GC_ERROR(Parameters...)> : public EntryPoint<GenTL::GC_ERROR(Parameters...)>
{
public:
    using EntryPoint<GenTL::GC_ERROR(Parameters...)>::EntryPoint;

    static constexpr bool IsRefusal(GenTL::GC_ERROR) { return false; }

    GenTL::GC_ERROR operator()(Parameters... parameters) const
    {
        ClearRefusedCall();
        if (!this->function) ThrowMissingFunction(*this->ctiPath, this->name);
        return this->CallProducer(parameters...);
    }
};

template <class Signature>
class OptionalEntryPoint;

// A function of a later version of the standard; returns notImplementedCode if the producer lacks it.
template <class... Parameters>
class OptionalEntryPoint<GenTL::GC_ERROR(Parameters...)> : public EntryPoint<GenTL::GC_ERROR(Parameters...)>
{
public:
    using EntryPoint<GenTL::GC_ERROR(Parameters...)>::EntryPoint;

    // Only the number counts, even if the producer itself returned it.
    static constexpr bool IsRefusal(GenTL::GC_ERROR result) { return result == notImplementedCode; }

    GenTL::GC_ERROR operator()(Parameters... parameters) const
    {
        if (!this->function) return RefuseCall(*this->ctiPath, this->name);
        return this->CallProducer(parameters...);
    }
};

} // namespace koro::internal
