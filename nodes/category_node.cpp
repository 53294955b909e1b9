#include "nodes/category_node.h"

#include "nodes/text.h"

#include <GenApi/Container.h>

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

std::vector<std::shared_ptr<Node>> CategoryNode::SubNodes()
{
    return Ask([&] {
        return subNodes
            .Get([&] {
                value_vector features;
                category->GetFeatures(features);
                return LinkedFeatures(features, *ParentNodeMap());
            })
            .All();
    });
}

} // namespace koro::internal
