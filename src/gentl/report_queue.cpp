#include "gentl/report_queue.h"

#include "base/own_threads.h"

#include <exception>
#include <iterator>
#include <system_error>
#include <utility>

namespace koro::internal
{

namespace
{

constinit thread_local int numReportsInside = 0; // the number of reports that this thread is inside, of all queues

struct Inside
{
    Inside() noexcept { ++numReportsInside; }
    ~Inside() { --numReportsInside; }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;
};

} // namespace

bool ReportQueue::IsLeftToOthers() const
{
    return isDelivering && (numReportsInside > 0 || IsOnOwnThread());
}

void ReportQueue::RefuseEndlessAdditions() const
{
    const std::lock_guard lock(mutex);
    if (IsLeftToOthers() && numAdditionsInside >= maxAdditionsInside)
        throw std::system_error(std::make_error_code(std::errc::resource_deadlock_would_occur));
}

void ReportQueue::Add(std::vector<Report> reports)
{
    const std::lock_guard lock(mutex);
    queued.insert(queued.end(), std::make_move_iterator(reports.begin()), std::make_move_iterator(reports.end()));
    numAdded += reports.size();
    if (IsLeftToOthers()) ++numAdditionsInside;
}

void ReportQueue::Deliver()
{
    std::unique_lock lock(mutex);
    const auto last = numAdded;
    if (IsLeftToOthers()) return;
    changed.wait(lock, [&] { return !isDelivering || numDelivered >= last; });
    if (numDelivered >= last || queued.empty()) return;
    isDelivering = true;
    numAdditionsInside = 0;
    lock.unlock();

    std::exception_ptr failure;
    for (Report report; TakeNext(report);)
    {
        try
        {
            const Inside inside;
            report();
        }
        catch (...)
        {
            if (!failure) failure = std::current_exception();
        }
    }
    if (failure) std::rethrow_exception(failure);
}

// Counts the previous report as delivered. If there is no other one, another thread may deliver.
bool ReportQueue::TakeNext(Report& report)
{
    Report next;
    const std::lock_guard lock(mutex);
    if (report) ++numDelivered;
    isDelivering = !queued.empty();
    if (isDelivering)
    {
        next = std::move(queued.front());
        queued.pop_front();
    }
    changed.notify_all();
    report.swap(next); // the delivered report is released after the lock
    return isDelivering;
}

} // namespace koro::internal
