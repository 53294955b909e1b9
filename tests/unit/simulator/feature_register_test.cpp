#include "producers/simulator/feature_register.h"

#include <gtest/gtest.h>
#include <limits>

namespace koro::simulator::test
{
namespace
{

TEST(SimulatorFeatureRegister, AllowsTheValuesBetweenItsLimits)
{
    constexpr NumberRegister number{{{0x824, 4, 4}, false}, 10, 20, 1};
    EXPECT_FALSE(number.Allows(9));
    EXPECT_TRUE(number.Allows(10));
    EXPECT_TRUE(number.Allows(20));
    EXPECT_FALSE(number.Allows(21));
}

TEST(SimulatorFeatureRegister, AllowsOnlyWholeStepsFromTheLowerLimit)
{
    constexpr NumberRegister number{{{0x820, 4, 4}, true}, 576, 9000, 4};
    EXPECT_TRUE(number.Allows(580));
    EXPECT_FALSE(number.Allows(578));
}

TEST(SimulatorFeatureRegister, DoesNotAllowWhatIsNoNumber)
{
    constexpr RealRegister number{{{0x510, 4, 4}, false}, 0.25, 4, 1};
    EXPECT_TRUE(number.Allows(0.3));
    EXPECT_FALSE(number.Allows(std::numeric_limits<double>::quiet_NaN()));
}

TEST(SimulatorFeatureRegister, ElementOfAnArrayKeepsTheRange)
{
    constexpr NumberRegister first{{{0x440, 4, 8}, true}, 0, 1, 1};
    constexpr NumberRegister second = first.At(1);
    EXPECT_EQ(second.address, 0x448U);
    EXPECT_TRUE(second.isLocked);
    EXPECT_EQ(second.most, 1U);
}

} // namespace
} // namespace koro::simulator::test
