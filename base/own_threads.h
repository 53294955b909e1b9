// The library's own threads: a monitor's and a listener's. Who ends what they serve waits for them, and with them for a
// callback of the application that they are in: that callback must not wait in turn.
#pragma once

namespace koro::internal
{

bool IsOnOwnThread() noexcept;

// Marks the calling thread for its life.
class OwnThread
{
public:
    OwnThread() noexcept;
    ~OwnThread();
    OwnThread(const OwnThread&) = delete;
    OwnThread& operator=(const OwnThread&) = delete;
};

} // namespace koro::internal
