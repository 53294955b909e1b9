#include "base/expiring.h"
#include "tests/support/throws_exactly.h"

#include <gtest/gtest.h>
#include <memory>

using namespace koro::internal;
using koro::test::ThrowsExactly;

TEST(Expiring, LivingParentIsHeld)
{
    const auto parent = std::make_shared<int>(7);
    EXPECT_EQ(LockOrThrow(std::weak_ptr<int>(parent)), parent);
}

TEST(Expiring, GoneParentSaysThatThePointerHasExpired)
{
    std::weak_ptr<int> gone = std::make_shared<int>(7);
    EXPECT_THAT([&] { LockOrThrow(gone); }, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
    EXPECT_THAT([&] { LockOrThrow(gone, "Other words"); }, ThrowsExactly<InternalErrorException>("Other words"));
}
