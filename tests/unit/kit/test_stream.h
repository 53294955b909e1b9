// A module with queue and mutex as a stream has them, for tests of what a stream is made of.
#pragma once

#include "producers/kit/buffer_queue.h"
#include "producers/kit/module.h"

#include <array>
#include <memory>

namespace kit_test
{

class Stream final : public koro::kit::Module
{
public:
    koro::kit::Port& ModulePort() override { return port; }
    std::mutex& Mutex() noexcept { return mutex; }

    // Of 8 bytes each.
    std::shared_ptr<koro::kit::Buffer> Announce()
    {
        auto buffer = std::make_shared<koro::kit::Buffer>(8, nullptr, koro::kit::PortFacts{});
        koro::kit::Handles().Add(buffer);
        const std::lock_guard lock(mutex);
        queue.Announce(buffer);
        return buffer;
    }
    void Queue(koro::kit::Buffer& buffer)
    {
        const std::lock_guard lock(mutex);
        queue.QueueInput(buffer);
    }

    koro::kit::BufferQueue queue;

private:
    bool SupportsEvent(GenTL::EVENT_TYPE type) const noexcept override
    {
        return type == GenTL::EVENT_NEW_BUFFER || Module::SupportsEvent(type);
    }
    void OnRegistration(GenTL::EVENT_TYPE type, koro::kit::EventQueue* registration) noexcept override
    {
        if (type == GenTL::EVENT_NEW_BUFFER) queue.SetOutput(registration);
    }
    koro::kit::BufferObserver* Observer() noexcept override { return &queue; }
    void OnClose() override { queue.RevokeAll(); }

    koro::kit::Port port{{}};
};

inline std::shared_ptr<Stream> MakeStream()
{
    auto stream = std::make_shared<Stream>();
    koro::kit::Handles().Add(stream);
    return stream;
}

} // namespace kit_test
