// DataStream: the one stream of an open camera.
#pragma once

#include "producers/kit/data_stream.h"
#include "producers/simulator/camera/camera.h"
#include "producers/simulator/face/stream_engine.h"
#include "producers/simulator/kit.h"

#include <memory>
#include <span>
#include <vector>

namespace koro::simulator
{

class Device;

class DataStream final : public kit::DataStream
{
public:
    explicit DataStream(std::shared_ptr<Device> parentDevice);

    Port& ModulePort() override { return port; }

private:
    kit::StreamEngine& Engine() noexcept override { return engine; }
    std::size_t PayloadBytes() const override { return camera->Features().PayloadBytes(); }
    std::size_t MaxChunks() const noexcept override { return numChunks; }
    std::vector<SINGLE_CHUNK_DATA> ChunksIn(std::span<const std::byte> payload) const override;
    void RequireStart() const override;
    void OnStart() override { camera->Features().OnStreamStart(); }
    void OnStop() noexcept override;
    void OnRunning(bool runs) override;

    PortRegisters MakeRegisters();

    const std::shared_ptr<Device> device;
    const std::shared_ptr<Camera> camera;
    Port port;
    StreamEngine engine;
};

} // namespace koro::simulator
