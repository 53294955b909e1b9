// GenTLCaller: checked calls of a producer's functions. Objects that call the producer hold one by value.
//
// It contains one shared reference to the proxy. A call names the function once, as its entry point, so the called
// function and the name in an error message cannot differ:
//
//     gentl.Call<&GenTLProxy::DSQueueBuffer>(Handle(), buffer.Handle());
#pragma once

#include "gentl/gentl_error.h"
#include "gentl/gentl_proxy.h"

#include <memory>
#include <utility>

namespace koro::internal
{

class GenTLCaller
{
public:
    explicit GenTLCaller(std::shared_ptr<const GenTLProxy> genTLProxy) : proxy(std::move(genTLProxy)) {}

    // Returns the function's result. Throws Exception when the producer lacks an optional function.
    template <auto Function, class... Arguments>
    GenTL::GC_ERROR Result(Arguments... arguments) const
    {
        const auto& entryPoint = (*proxy).*Function;
        const auto result = entryPoint(arguments...);
        if (entryPoint.IsRefusal(result)) ThrowRefusedCall(entryPoint.Name(), *proxy);
        return result;
    }

    // Calls the function with the standard check.
    template <auto Function, class... Arguments>
    void Call(Arguments... arguments) const
    {
        Check<Function>(Result<Function>(arguments...));
    }

    // The standard check of a result that the caller has examined before.
    template <auto Function>
    void Check(GenTL::GC_ERROR result) const
    {
        CheckResult(((*proxy).*Function).Name(), result, *proxy);
    }

    // For destructors: the failure of a close is ignored.
    template <auto Function, class... Arguments>
    void CallIgnoringFailures(Arguments... arguments) const noexcept
    {
        try
        {
            Call<Function>(arguments...);
        }
        catch (...)
        {}
    }

    const std::shared_ptr<const GenTLProxy>& Proxy() const { return proxy; }

private:
    std::shared_ptr<const GenTLProxy> proxy;
};

} // namespace koro::internal
