#include "tests/boundary/node_test.h"

#include <string>
#include <vector>

namespace koro::test
{

using NodeMap = NodeTest;

TEST_F(NodeMap, NodesAreFoundByNameAndByIndexWithOneHandleEach)
{
    Describe("<Category Name=\"Root\"/>");
    const auto map = NodeMapOf(tree.remoteDevice);

    EXPECT_EQ(Get<std::size_t>(KORO_NodeMap_GetNumNodes, map), 2u);
    const auto root = Find(map, "Root");
    EXPECT_EQ(GetText(KORO_Node_GetName, root), "Root");
    EXPECT_EQ(Find(map, "Root"), root);
    EXPECT_EQ(Get<KORO_NodeHandle>(KORO_NodeMap_GetNode, map, std::size_t{0}), root);
    EXPECT_EQ(Get<KORO_NodeMapHandle>(KORO_Node_GetParentNodeMap, root), map);
}

} // namespace koro::test
