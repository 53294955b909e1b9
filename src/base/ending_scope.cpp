#include "base/ending_scope.h"

#include "base/instance.h"

#include <algorithm>
#include <atomic>
#include <utility>

namespace koro::internal
{

namespace
{

constinit thread_local const EndingScope* innermost = nullptr;

EndNumber NextNumber() noexcept
{
    static constinit std::atomic<EndNumber> lastNumber{0};
    return ++lastNumber;
}

} // namespace

EndingScope::EndingScope() noexcept : number(NextNumber()), outer(std::exchange(innermost, this)) {}

EndingScope::EndingScope(Objects parentObjects) noexcept
    : number(0), parents(std::move(parentObjects)), outer(std::exchange(innermost, this))
{}

EndingScope::~EndingScope()
{
    innermost = outer;
}

bool EndingScope::IsInEndOf(const Instance& object) noexcept
{
    const EndNumber end = object.EndedBy();
    if (end == 0) return false;
    for (const auto* scope = innermost; scope; scope = scope->outer)
    {
        if (scope->number == end) return true;
    }
    return false;
}

bool EndingScope::HasParent(const Instance& object) noexcept
{
    for (const auto* scope = innermost; scope; scope = scope->outer)
    {
        if (std::find(scope->parents.begin(), scope->parents.end(), &object) != scope->parents.end()) return true;
    }
    return IsInEndOf(object);
}

} // namespace koro::internal
