#include "tools/koro/dependency_order.h"

#include <gtest/gtest.h>

namespace
{

using koro::tool::DependenciesFirst;
using Order = std::vector<size_t>;

TEST(DependencyOrder, NodesWithoutDependenciesStayInTheirOrder)
{
    EXPECT_EQ(DependenciesFirst({}), Order());
    EXPECT_EQ(DependenciesFirst({{}, {}, {}}), (Order{0, 1, 2}));
}

TEST(DependencyOrder, WhatIsNeededComesFirst)
{
    EXPECT_EQ(DependenciesFirst({{2}, {}, {3}, {}}), (Order{3, 2, 0, 1}));
    EXPECT_EQ(DependenciesFirst({{}, {0, 2}, {0}}), (Order{0, 2, 1}));
}

TEST(DependencyOrder, NodesThatNeedEachOtherStayInTheirOrder)
{
    // 0 and 2 need each other, by way of 3; 1 is needed by both.
    EXPECT_EQ(DependenciesFirst({{3, 1}, {}, {0}, {2}}), (Order{1, 0, 2, 3}));
    EXPECT_EQ(DependenciesFirst({{0}, {1}}), (Order{0, 1}));
}

TEST(DependencyOrder, LongChainComesToAnEnd)
{
    const size_t length = 200000;
    std::vector<Order> chain(length);
    for (size_t i = 0; i + 1 < length; ++i)
        chain[i].push_back(i + 1);
    const Order order = DependenciesFirst(chain);
    ASSERT_EQ(order.size(), length);
    EXPECT_EQ(order.front(), length - 1);
    EXPECT_EQ(order.back(), 0u);
}

} // namespace
