#include "firmware/matching.h"

#include "firmware/pattern.h"

#include <GenApi/Pointer.h>
#include <algorithm>

namespace GENAPI_NAMESPACE::runtime
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

bool Holds(INodeMap& map, const Condition& condition)
{
    try
    {
        IValue& value = ValueOf(map, condition.feature);
        if (!IsReadable(value.GetAccessMode())) return false;
        const gcstring text = value.ToString();
        return Pattern(condition.pattern).Matches({text.c_str(), text.size()});
    }
    catch (const GENICAM_NAMESPACE::GenericException&)
    {
        return false;
    }
    catch (const std::exception&) // the port's
    {
        return false;
    }
}

} // namespace

bool Matches(INodeMap& map, const std::vector<Condition>& conditions)
{
    return std::all_of(
        conditions.begin(), conditions.end(), [&map](const Condition& condition) { return Holds(map, condition); });
}

std::string TextOf(INodeMap& map, const std::string& feature)
{
    const gcstring text = ValueOf(map, feature).ToString();
    return std::string(text.c_str(), text.size());
}

IValue& ValueOf(INodeMap& map, const std::string& feature)
{
    const CValuePtr value = map.GetNode(feature.c_str());
    if (!value) throw LOGICAL_ERROR_EXCEPTION("The device has no feature '%s'", Shown(feature).c_str());
    return *value;
}

} // namespace GENAPI_NAMESPACE::runtime
