#include "map/concatenator.h"

#include <Base/GCException.h>
#include <GenApi/INode.h>
#include <GenApi/Pointer.h>
#include <charconv>

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

template <class Number>
gcstring NumberText(Number number)
{
    char text[64];
    const std::to_chars_result end = std::to_chars(text, text + sizeof text, number);
    return gcstring(text, static_cast<size_t>(end.ptr - text));
}

} // namespace

void Concatenator::Add(const gcstring& name, const gcstring& value)
{
    writes.emplace_back(name, value);
}

void Concatenator::Add(const gcstring& name, const char* value)
{
    writes.emplace_back(name, value);
}

void Concatenator::Add(const gcstring& name, int64_t value)
{
    writes.emplace_back(name, NumberText(value));
}

void Concatenator::Add(const gcstring& name, double value)
{
    writes.emplace_back(name, NumberText(value));
}

void Concatenator::Add(const gcstring& name, bool value)
{
    writes.emplace_back(name, value ? "true" : "false");
}

bool Concatenator::WriteTo(INodeMap& map, GENICAM_NAMESPACE::gcstring_vector* errors) const
{
    const AutoLock held(map.GetLock());
    bool good = true;
    for (const auto& [name, value] : writes)
    {
        try
        {
            const CValuePtr node = map.GetNode(name);
            if (!node.IsValid()) throw INVALID_ARGUMENT_EXCEPTION("Node '%s' not found", name.c_str());
            node->FromString(value);
        }
        catch (const GENICAM_NAMESPACE::GenericException& exception)
        {
            if (!errors) throw;
            good = false;
            errors->push_back(exception.what());
        }
    }
    return good;
}

} // namespace GENAPI_NAMESPACE::runtime
