// ReportQueue: the reports of one list of children, delivered in the order in which they came, each once.
//
// One thread at a time delivers, under no lock of the queue. A report may lead to further ones: what comes while its
// thread is inside a report, of any queue, or is one of the library's own, is left to the thread that is delivering and
// waited for by nobody, so that reports cannot wait for each other in a circle. Any thread.
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
