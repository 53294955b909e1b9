#include "nodes/node_factory.h"

#include "map/node_map.h"
#include "nodes/boolean_node.h"
#include "nodes/command_node.h"
#include "nodes/converter_nodes.h"
#include "nodes/enumeration_node.h"
#include "nodes/number_nodes.h"
#include "nodes/port_node.h"
#include "nodes/register_nodes.h"
#include "nodes/structure_nodes.h"

#include <Base/GCException.h>

namespace GENAPI_NAMESPACE::runtime
{

std::unique_ptr<Node> MakeNode(NodeMap& map, NodeIndex node)
{
    const Element element = map.Source().nodes[node].element;
    switch (element)
    {
    case Element::Node:
        return std::make_unique<PlainNode>(map, node);
    case Element::Category:
        return std::make_unique<CategoryNode>(map, node);
    case Element::Integer:
        return std::make_unique<IntegerNode>(map, node);
    case Element::IntReg:
    case Element::MaskedIntReg:
        return std::make_unique<IntegerRegister>(map, node);
    case Element::Boolean:
        return std::make_unique<BooleanNode>(map, node);
    case Element::Command:
        return std::make_unique<CommandNode>(map, node);
    case Element::Enumeration:
        return std::make_unique<EnumerationNode>(map, node);
    case Element::EnumEntry:
        return std::make_unique<EnumEntryNode>(map, node);
    case Element::Float:
        return std::make_unique<FloatNode>(map, node);
    case Element::FloatReg:
        return std::make_unique<FloatRegister>(map, node);
    case Element::String:
        return std::make_unique<StringNode>(map, node);
    case Element::StringReg:
        return std::make_unique<StringRegister>(map, node);
    case Element::Register:
    case Element::ConfRom:
        return std::make_unique<RegisterNode>(map, node);
    case Element::Converter:
        return std::make_unique<FloatConverter>(map, node);
    case Element::IntConverter:
        return std::make_unique<IntegerConverter>(map, node);
    case Element::SwissKnife:
        return std::make_unique<FloatKnife>(map, node);
    case Element::IntSwissKnife:
        return std::make_unique<IntegerKnife>(map, node);
    case Element::Port:
        return std::make_unique<PortNode>(map, node);
    case Element::TextDesc:
        return std::make_unique<RomText>(map, node);
    case Element::IntKey:
        return std::make_unique<RomNumber>(map, node);
    case Element::AdvFeatureLock:
    case Element::SmartFeature:
        return std::make_unique<FeatureLockNode>(map, node);
    default:
        break;
    }
    throw RUNTIME_EXCEPTION(
        "Node '%.500s' : the element %s is not supported", std::string(map.Source().NameOf(node)).c_str(),
        NameOf(element));
}

} // namespace GENAPI_NAMESPACE::runtime
