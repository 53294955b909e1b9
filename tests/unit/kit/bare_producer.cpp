#include "tests/unit/kit/bare_producer.h"

#include "producers/kit/runtime.h"
#include "producers/kit/system.h"

namespace kit_test
{
namespace
{
using namespace koro::kit;

class BareSystem final : public System
{
public:
    using System::System;

    Port& ModulePort() override { return port; }

private:
    Interfaces PresentInterfaces(std::uint64_t) const override { return {}; }
    std::shared_ptr<Interface> MakeInterface(const std::shared_ptr<const InterfaceFacts>&) override { return nullptr; }

    Port port{{"bare", "vendor", "model", "Custom", "TLSystem", "TLPort", "1.0"}};
};

class Made final : public Producer
{
public:
    explicit Made(const BareProducer& wanted)
        : Producer({"bare", "vendor", "model", "1.0", "Custom", wanted.claimed, wanted.answersNewerFunctions}),
          settings(wanted)
    {}

    bool InitIsStrict() const noexcept override { return settings.initIsStrict; }
    std::shared_ptr<CallWatch> Watch() const override { return settings.watch; }

private:
    std::shared_ptr<System> MakeSystem() override { return std::make_shared<BareSystem>(shared_from_this()); }

    const BareProducer settings;
};

Runtime runtime([] {
    if (Next().cannotStart) throw Failure(GC_ERR_IO, "no hardware");
    return std::make_shared<Made>(Next());
});

} // namespace

BareProducer& Next()
{
    static BareProducer next;
    return next;
}

} // namespace kit_test
