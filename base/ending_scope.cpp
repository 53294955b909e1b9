#include "base/ending_scope.h"

namespace koro::internal
{

namespace
{

constinit thread_local int numScopes = 0;

} // namespace

bool IsInEndingScope() noexcept
{
    return numScopes > 0;
}

EndingScope::EndingScope() noexcept
{
    ++numScopes;
}

EndingScope::~EndingScope()
{
    --numScopes;
}

} // namespace koro::internal
