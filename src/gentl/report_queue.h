// ReportQueue: the reports of one list of children, each delivered once, in the order of their arrival.
//
// One thread at a time delivers; the queue's lock is not held meanwhile. A report may cause further reports. If a
// thread that adds one is inside a report of any queue, or is a thread of the library, it does not wait: the thread
// that is delivering delivers the new report too. So reports cannot wait for each other in a circle. Thread-safe.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace koro::internal
{

class ReportQueue
{
public:
    using Report = std::function<void()>;

    // The limit of additions from inside reports during one delivery.
    static constexpr std::uint64_t maxAdditionsInside = 1000;

    // Throws the standard deadlock error when one more addition from inside a report would exceed the limit.
    void RefuseEndlessAdditions() const;
    void Add(std::vector<Report> reports);
    // Returns when all reports that existed at the call have been delivered. Returns at once when another thread, or an
    // outer call on this thread, is delivering and this call must not wait. If reports throw, the first exception is
    // rethrown at the end of the delivery that contained it; the other reports are still delivered.
    void Deliver();

private:
    bool IsLeftToOthers() const;
    bool TakeNext(Report& report);

    mutable std::mutex mutex; // guards all; nothing is called under it
    std::condition_variable changed;
    std::deque<Report> queued;
    std::uint64_t numAdded = 0;
    std::uint64_t numDelivered = 0;
    std::uint64_t numAdditionsInside = 0; // in the current delivery
    bool isDelivering = false;
};

} // namespace koro::internal
