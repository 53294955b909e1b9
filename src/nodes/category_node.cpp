#include "nodes/category_node.h"

#include "nodes/text.h"

#include <GenApi/Container.h>

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

NodeList CategoryNode::SubNodes()
{
    return Ask([&] {
        const auto nodeMap = ParentNodeMap();
        return NodeList(nodeMap, subNodes.Get([&] {
            value_vector features;
            category->GetFeatures(features);
            return LinkedFeatures(features, *nodeMap);
        }));
    });
}

} // namespace koro::internal
