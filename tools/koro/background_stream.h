// BackgroundStream: a camera that takes pictures which nobody looks at, for what else comes with them.
//
// Owned by one command; the stream and the nodes outlive it. Its thread gives finished buffers back until its end.
#pragma once

#include <koro/koro.hpp>

#include <atomic>
#include <optional>
#include <thread>

namespace koro::tool
{

class BackgroundStream
{
public:
    // Starts the camera. Throws koro::Error.
    BackgroundStream(const DataStream& stream, const NodeMap& nodes);
    BackgroundStream(const BackgroundStream&) = delete;
    BackgroundStream& operator=(const BackgroundStream&) = delete;
    ~BackgroundStream();

private:
    void GiveBack() noexcept;

    const DataStream& stream;
    std::optional<Acquisition> acquisition;
    std::atomic<bool> ending{false};
    std::thread worker; // last: it uses everything above
};

} // namespace koro::tool
