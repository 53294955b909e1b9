#include "nodes/make_node.h"

#include "nodes/boolean_node.h"
#include "nodes/category_node.h"
#include "nodes/command_node.h"
#include "nodes/enumeration_entry_node.h"
#include "nodes/enumeration_node.h"
#include "nodes/float_node.h"
#include "nodes/integer_node.h"
#include "nodes/register_node.h"
#include "nodes/string_node.h"

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

std::shared_ptr<Node> MakeNode(INode* genApiNode, const std::shared_ptr<NodeMap>& nodeMap)
{
    switch (genApiNode->GetPrincipalInterfaceType())
    {
    case intfIBoolean:
        return std::make_shared<BooleanNode>(genApiNode, nodeMap);
    case intfICategory:
        return std::make_shared<CategoryNode>(genApiNode, nodeMap);
    case intfICommand:
        return std::make_shared<CommandNode>(genApiNode, nodeMap);
    case intfIEnumeration:
        return std::make_shared<EnumerationNode>(genApiNode, nodeMap);
    case intfIEnumEntry:
        return std::make_shared<EnumerationEntryNode>(genApiNode, nodeMap);
    case intfIFloat:
        return std::make_shared<FloatNode>(genApiNode, nodeMap);
    case intfIInteger:
        return std::make_shared<IntegerNode>(genApiNode, nodeMap);
    case intfIRegister:
        return std::make_shared<RegisterNode>(genApiNode, nodeMap);
    case intfIString:
        return std::make_shared<StringNode>(genApiNode, nodeMap);
    default:
        return std::make_shared<Node>(genApiNode, nodeMap);
    }
}

} // namespace koro::internal
