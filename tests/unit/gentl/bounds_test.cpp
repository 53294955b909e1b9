#include "base/exceptions.h"
#include "gentl/bounds.h"
#include "tests/support/throws_exactly.h"

#include <gtest/gtest.h>

using namespace koro::internal;
using koro::test::ThrowsExactly;

TEST(Bounds, ClaimUpToTheBoundPasses)
{
    EXPECT_NO_THROW(CheckClaim(informationBound, 0, "DSGetInfo"));
    EXPECT_NO_THROW(CheckClaim(informationBound, 16u << 20, "DSGetInfo"));
    EXPECT_NO_THROW(CheckClaim(textBound, 16u << 20, "IFGetDeviceID"));
    EXPECT_NO_THROW(CheckClaim(eventBlockBound, 256u << 20, "EventGetInfo"));
    EXPECT_NO_THROW(CheckClaim(childrenBound, 65536, "IFGetNumDevices"));
}

TEST(Bounds, ClaimBeyondSaysWhichBoundItBreaks)
{
    EXPECT_THAT(
        [] { CheckClaim(informationBound, (16u << 20) + 1, "DSGetInfo"); },
        ThrowsExactly<InternalErrorException>(
            "[Function: DSGetInfo | Error: 16777217 information bytes exceed the bound of 16777216]"));
    EXPECT_THAT(
        [] { CheckClaim(textBound, (16u << 20) + 1, "IFGetDeviceID"); },
        ThrowsExactly<InternalErrorException>(
            "[Function: IFGetDeviceID | Error: 16777217 text bytes exceed the bound of 16777216]"));
    EXPECT_THAT(
        [] { CheckClaim(eventBlockBound, std::uint64_t{1} << 40, "EventGetInfo"); },
        ThrowsExactly<InternalErrorException>(
            "[Function: EventGetInfo | Error: 1099511627776 event block bytes exceed the bound of 268435456]"));
    EXPECT_THAT(
        [] { CheckClaim(childrenBound, 0xFFFFFFFF, "IFGetNumDevices"); },
        ThrowsExactly<InternalErrorException>(
            "[Function: IFGetNumDevices | Error: 4294967295 children of one module exceed the bound of 65536]"));
}
