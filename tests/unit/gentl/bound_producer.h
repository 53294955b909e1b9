// A scripted producer that the library's proxy has loaded, for tests of the binding.
#pragma once

#include "gentl/gentl_caller.h"
#include "gentl/gentl_proxy.h"
#include "tests/support/scripted_producer.h"

#include <initializer_list>
#include <memory>
#include <string>

namespace koro::test
{

struct BoundProducer
{
    explicit BoundProducer(const std::string& variant = "scripted_1_5", std::initializer_list<std::string> lacking = {})
        : producer(variant, lacking), proxy(std::make_shared<const internal::GenTLProxy>(producer.Path())), gentl(proxy)
    {
        producer->ClearJournal();
    }

    scripted::Script* operator->() const { return producer.operator->(); }

    ScriptedProducer producer;
    std::shared_ptr<const internal::GenTLProxy> proxy;
    internal::GenTLCaller gentl;
};

// The same, initialised and with its system open.
struct OpenProducer : BoundProducer
{
    OpenProducer()
    {
        gentl.Call<&internal::GenTLProxy::GCInitLib>();
        gentl.Call<&internal::GenTLProxy::TLOpen>(&system);
        producer->ClearJournal();
    }

    GenTL::TL_HANDLE system = nullptr;
};

} // namespace koro::test
