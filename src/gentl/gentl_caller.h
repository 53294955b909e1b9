// GenTLCaller: the checked layer over a producer's entry points, held by value by everything that calls it.
//
// It is one shared reference to the proxy. The function is named once, as the entry point, so that the call and the
// name in the message of its failure cannot differ:
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

    // The function's own result. Throws Exception when the producer lacks an optional function.
    template <auto Function, class... Arguments>
    GenTL::GC_ERROR Result(Arguments... arguments) const
    {
        const auto& entryPoint = (*proxy).*Function;
        const auto result = entryPoint(arguments...);
        if (entryPoint.IsRefusal(result)) ThrowRefusedCall(entryPoint.Name(), *proxy);
        return result;
    }

    // The function under the standard check.
    template <auto Function, class... Arguments>
    void Call(Arguments... arguments) const
    {
        Check<Function>(Result<Function>(arguments...));
    }

    // The standard check for a result that was looked at before.
    template <auto Function>
    void Check(GenTL::GC_ERROR result) const
    {
        CheckResult(((*proxy).*Function).Name(), result, *proxy);
    }

    // For destructors: a close that fails reaches nobody.
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
