#include "nodes/value_node.h"

#include "nodes/node_inline.h"

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::gcstring;

gcstring ValueNode::ToString(bool Verify, bool IgnoreCache)
{
    const Entry entry(*this, "ToString");
    CheckReadable();
    return ValueText({Verify, IgnoreCache});
}

void ValueNode::FromString(const gcstring& ValueStr, bool Verify)
{
    Change("FromString", [&] {
        const Unrestricted unrestricted(map, !Verify);
        CheckWritable();
        SetText(ValueStr, Verify);
    });
}

bool ValueNode::IsValueCacheValid() const
{
    const Entry entry(*this, "IsValueCacheValid");
    return valueCached;
}

void ValueNode::DropCaches()
{
    Node::DropCaches();
    valueCached = false;
}

} // namespace GENAPI_NAMESPACE::runtime
