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

    // Of additions from inside reports, in the course of one delivery.
    static constexpr std::uint64_t maxAdditionsInside = 1000;

    // Throws the standard deadlock error where one more addition from inside a report would be too many.
    void RefuseEndlessAdditions() const;
    void Add(std::vector<Report> reports);
    // Returns when all has been delivered that was there at the call; at once where another thread, or this one
    // further out, is delivering and this one must not wait. What a report throws comes at the end, the first of
    // it, out of the delivery that it was part of; no report is left out for it.
    void Deliver();

private:
    bool IsLeftToOthers() const;
    bool TakeNext(Report& report);

    mutable std::mutex mutex; // guards all; nothing is called under it
    std::condition_variable changed;
    std::deque<Report> queued;
    std::uint64_t numAdded = 0;
    std::uint64_t numDelivered = 0;
    std::uint64_t numAdditionsInside = 0; // of the delivery that is running
    bool isDelivering = false;
};

} // namespace koro::internal
