// A complete GenTL producer: one camera that shows bars which move to the left. docs/write-a-producer.md walks through
// it.
#include "producers/kit/data_stream.h"
#include "producers/kit/discovering_interface.h"
#include "producers/kit/runtime.h"
#include "producers/kit/system.h"

namespace example
{
using namespace koro::kit;

extern const Description moving_barsDescription; // of moving_bars.xml

const ProducerFacts producerFacts{"example_moving_bars", "zvr", "moving bars", "1.0.0", "Custom", {1, 5}};
constexpr std::uint64_t mono8 = 0x01080001;

PortFacts FactsOf(const std::string& id, const char* module, const char* port)
{
    const ProducerFacts& facts = producerFacts;
    return {id, facts.vendor, facts.model, facts.tlType, module, port, facts.version};
}

// The camera as it stands on the desk, which outlives every opening. Its values are guarded by the lock of its
// registers.
class Camera
{
public:
    Camera()
    {
        AddCommonRegisters(*registers, FactsOf("bars0", "Device", "Device"), moving_barsDescription);
        AddSide(0x200, width, 16);
        AddSide(0x204, height, 1);
        registers->AddCommand(0x208, [this] { isActive = true; });
        registers->AddCommand(0x20C, [this] { isActive = false; });
        registers->AddFloat(
            0x210, 8, [this] { return rate; },
            [this](double wanted) {
                if (!(wanted >= 1 && wanted <= 1000)) RefuseValue("the rate is out of range");
                rate = wanted;
            });
    }

    PortRegisters Registers() const { return {registers, {LocalURL(moving_barsDescription)}}; }

    std::size_t PayloadBytes() const
    {
        const std::lock_guard lock(registers->Lock());
        return width * height;
    }
    bool IsActive() const
    {
        const std::lock_guard lock(registers->Lock());
        return isActive;
    }
    std::chrono::nanoseconds Period() const
    {
        const std::lock_guard lock(registers->Lock());
        return std::chrono::nanoseconds(static_cast<std::int64_t>(1e9 / rate));
    }

    // Bars of 16 grey values, one column further with each frame. What does not fit is left out.
    void Draw(std::uint64_t frameId, std::span<std::byte> memory, FrameFacts& frame) const
    {
        const std::lock_guard lock(registers->Lock());
        const std::size_t lines = std::min(height, memory.size() / width);
        for (std::size_t at = 0; at < lines * width; ++at)
            memory[at] = static_cast<std::byte>((at % width + frameId) / 16 * 16);
        frame.frameId = frameId;
        frame.dataSize = width * height;
        frame.sizeFilled = lines * width;
        frame.incomplete = lines < height;
        frame.largerThanBuffer = frame.incomplete;
        frame.image = {mono8, width, height, 0, 0, lines};
    }

private:
    void AddSide(std::uint64_t address, std::size_t& side, std::uint64_t least)
    {
        registers->AddInteger(
            address, 4, [&side] { return side; },
            [this, &side, least](std::uint64_t wanted) {
                if (isActive) throw Failure(GC_ERR_ACCESS_DENIED, "the camera is taking images");
                if (wanted < least || wanted > 1024) RefuseValue("the size is out of range");
                side = wanted;
            });
    }

    const std::shared_ptr<RegisterMap> registers = std::make_shared<RegisterMap>();
    std::size_t width = 320;
    std::size_t height = 240;
    double rate = 50;
    bool isActive = false;
};

const Camera camera;

class Engine final : public StreamEngine
{
public:
    using StreamEngine::StreamEngine;
    ~Engine() override { Stop(true); }

private:
    void Run(Lock& lock, std::uint64_t number) override
    {
        std::uint64_t frameId = 0;
        for (std::uint64_t filled = 0; filled < number;)
        {
            if (!AwaitTime(lock, Clock::now() + camera.Period()) || !AwaitPermission(lock)) return;
            if (!camera.IsActive()) continue;
            ++frameId;
            const auto fill = [&](const Buffer& buffer, FrameFacts& frame) {
                frame.timestamp_ns = static_cast<std::uint64_t>(Clock::now().time_since_epoch().count());
                camera.Draw(frameId, buffer.Memory(), frame);
            };
            if (FillNext(fill)) ++filled;
        }
        grabbing = false;
    }
    void OnFailure(const Failure&) override {}
};

class BarStream final : public DataStream
{
public:
    explicit BarStream(std::shared_ptr<Device> device)
        : DataStream(std::move(device), StreamId(0), FactsOf("", "TLBuffer", "BufferPort")), engine(mutex, queue)
    {}

    Port& ModulePort() override { return port; }

private:
    StreamEngine& Engine() noexcept override { return engine; }
    std::size_t PayloadBytes() const override { return camera.PayloadBytes(); }

    Port port{FactsOf(StreamId(0), "TLDataStream", "StreamPort")};
    example::Engine engine;
};

class BarDevice final : public Device
{
public:
    BarDevice(std::shared_ptr<Interface> interface, std::shared_ptr<const DeviceFacts> openedFacts)
        : Device(std::move(interface)), facts(std::move(openedFacts))
    {}

    const std::string& Id() const noexcept override { return facts->id; }
    InfoValue Info(DEVICE_INFO_CMD command) const override { return facts->Info(AccessStatus(), command); }
    Port& ModulePort() override { return port; }

private:
    std::shared_ptr<RemoteDevice> MakeRemote() override
    {
        return std::make_shared<RemoteDevice>(FactsOf(facts->id, "Device", "Device"), camera.Registers(), Port::Gate());
    }
    std::shared_ptr<DataStream> MakeStream(const std::string&) override
    {
        return std::make_shared<BarStream>(std::static_pointer_cast<Device>(shared_from_this()));
    }

    const std::shared_ptr<const DeviceFacts> facts;
    Port port{FactsOf(facts->id, "TLDevice", "DevicePort")};
};

class BarInterface final : public DiscoveringInterface
{
public:
    using DiscoveringInterface::DiscoveringInterface;

    Port& ModulePort() override { return port; }

private:
    // The one camera is always there. A producer of real cameras searches them here.
    Devices PresentDevices(std::uint64_t) const override { return {device}; }
    std::shared_ptr<Device> OpenFound(const std::shared_ptr<const DeviceFacts>& found, DEVICE_ACCESS_FLAGS) override
    {
        return std::make_shared<BarDevice>(std::static_pointer_cast<Interface>(shared_from_this()), found);
    }

    const std::shared_ptr<const DeviceFacts> device = std::make_shared<DeviceFacts>(DeviceFacts{
        "bars0",
        producerFacts.vendor,
        "MovingBars",
        producerFacts.version,
        producerFacts.tlType,
        "Moving bars",
        "B-001",
        {},
        1'000'000'000});
    Port port{FactsOf("bars", "TLInterface", "InterfacePort")};
};

class BarSystem final : public System
{
public:
    using System::System;

    Port& ModulePort() override { return port; }

private:
    Interfaces PresentInterfaces(std::uint64_t) const override { return {interface}; }
    std::shared_ptr<Interface> MakeInterface(const std::shared_ptr<const InterfaceFacts>& found) override
    {
        return std::make_shared<BarInterface>(std::static_pointer_cast<System>(shared_from_this()), found);
    }

    const std::shared_ptr<const InterfaceFacts> interface =
        std::make_shared<InterfaceFacts>(InterfaceFacts{"bars", "Moving bars", producerFacts.tlType});
    Port port{FactsOf(producerFacts.id, "TLSystem", "TLPort")};
};

class BarProducer final : public Producer
{
public:
    BarProducer() : Producer(producerFacts) {}

private:
    std::shared_ptr<System> MakeSystem() override { return std::make_shared<BarSystem>(shared_from_this()); }
};

Runtime runtime([] { return std::make_shared<BarProducer>(); }); // behind all that its threads use

} // namespace example
