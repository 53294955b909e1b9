// Entry points: callable members of GenTLProxy, one for each function of a producer.
//
// Each one stores its name, so a message always names the function that was called. They are bound once while the proxy
// is constructed and never change afterwards. Thread-safe.
#pragma once

#include "gentl/api/gentl.h"

#include <string>

namespace koro::internal
{

// Answer for a function that the producer does not offer; lies outside the standard's GC_ERROR values.
inline constexpr GenTL::GC_ERROR notImplementedCode = INT32_MIN;

// The last call through any proxy that was refused on this thread: 0 means that the last one reached a producer.
void ClearRefusedCall() noexcept;
// Remembers the refusal with its text and returns notImplementedCode.
GenTL::GC_ERROR RefuseCall(const std::string& ctiPath, const char* function);
[[noreturn]] void ThrowMissingFunction(const std::string& ctiPath, const char* function);
// To be called in a catch clause around a producer's function: nothing that a producer throws may pass for an
// exception of ours, nor live longer than the producer's code.
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

// A function that every producer has to offer. One that is missing all the same, which only a producer of unknown
// version gets away with at load, ends in an InternalErrorException.
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

// A function of a later version of the standard: notImplementedCode where the producer lacks it.
template <class... Parameters>
class OptionalEntryPoint<GenTL::GC_ERROR(Parameters...)> : public EntryPoint<GenTL::GC_ERROR(Parameters...)>
{
public:
    using EntryPoint<GenTL::GC_ERROR(Parameters...)>::EntryPoint;

    // The number counts, also when the producer itself answers it.
    static constexpr bool IsRefusal(GenTL::GC_ERROR result) { return result == notImplementedCode; }

    GenTL::GC_ERROR operator()(Parameters... parameters) const
    {
        if (!this->function) return RefuseCall(*this->ctiPath, this->name);
        return this->CallProducer(parameters...);
    }
};

} // namespace koro::internal
