#include "nodes/node.h"

#include "base/exceptions.h"
#include "nodes/text.h"

namespace koro::internal
{

using namespace GENAPI_NAMESPACE;

std::string Node::Name() const
{
    return AskInBothLayers([&] { return ToText(genApiNode->GetName(false)); });
}

std::string Node::DisplayName() const
{
    return AskInBothLayers([&] { return ToText(genApiNode->GetDisplayName()); });
}

std::string Node::ToolTip() const
{
    return AskInBothLayers([&] { return ToText(genApiNode->GetToolTip()); });
}

std::string Node::Description() const
{
    return AskInBothLayers([&] { return ToText(genApiNode->GetDescription()); });
}

ENameSpace Node::Namespace() const
{
    return Ask([&] { return genApiNode->GetNameSpace(); });
}

EVisibility Node::Visibility() const
{
    return Ask([&] { return genApiNode->GetVisibility(); });
}

EAccessMode Node::AccessStatus() const
{
    return Ask([&] { return genApiNode->GetAccessMode(); });
}

ECachingMode Node::CachingMode() const
{
    return Ask([&] { return genApiNode->GetCachingMode(); });
}

bool Node::IsCacheable() const
{
    return Ask([&] { return genApiNode->IsCachable(); });
}

bool Node::IsAccessStatusCacheable() const
{
    return Ask([&] { return genApiNode->IsAccessModeCacheable(); }) == Yes;
}

std::int64_t Node::PollingTime() const
{
    return Ask([&] { return genApiNode->GetPollingTime(); });
}

NodeType Node::Type() const
{
    switch (Ask([&] { return genApiNode->GetPrincipalInterfaceType(); }))
    {
    case intfIInteger:
        return NodeType::Integer;
    case intfIBoolean:
        return NodeType::Boolean;
    case intfICommand:
        return NodeType::Command;
    case intfIFloat:
        return NodeType::Float;
    case intfIString:
        return NodeType::String;
    case intfIRegister:
        return NodeType::Register;
    case intfICategory:
        return NodeType::Category;
    case intfIEnumeration:
        return NodeType::Enumeration;
    case intfIEnumEntry:
        return NodeType::EnumerationEntry;
    default:
        return NodeType::Other;
    }
}

bool Node::IsFeature() const
{
    return Ask([&] { return genApiNode->IsFeature(); });
}

bool Node::IsDeprecated() const
{
    return Ask([&] { return genApiNode->IsDeprecated(); });
}

bool Node::IsStreamable() const
{
    return Ask([&] { return genApiNode->IsStreamable(); });
}

std::shared_ptr<NodeMap> Node::ParentNodeMap() const
{
    return LockOrThrow(parentNodeMap);
}

} // namespace koro::internal
