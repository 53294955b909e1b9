#include <Base/GCException.h>
#include <GenApi/Pointer.h>
#include <GenApi/SelectorState.h>
#include <GenApi/Synch.h>

namespace GENAPI_NAMESPACE
{

using GENICAM_NAMESPACE::gcstring;

bool CSelectorState::SetFirst()
{
    position = 0;
    return !selectors.empty();
}

bool CSelectorState::SetNext()
{
    if (position + 1 >= selectors.size()) return false;
    ++position;
    return true;
}

void CSelectorState::AddSelector(IValue& item)
{
    INode* const node = item.GetNode();
    if (!node) throw INVALID_ARGUMENT_EXCEPTION("A selector must be a node");
    AddSelector(node->GetName(), item.ToString());
}

void CSelectorState::AddSelector(gcstring name, gcstring value)
{
    selectors.push_back({name, value});
}

const CSelectorState::Selector& CSelectorState::Present() const
{
    if (position >= selectors.size()) throw LOGICAL_ERROR_EXCEPTION("The selector state is empty");
    return selectors[position];
}

gcstring CSelectorState::GetNodeName()
{
    return Present().name;
}

gcstring CSelectorState::GetNodeValue()
{
    return Present().value;
}

// Written without checks, like everything from a bag: an entry that is not available now may become available on the
// device.
bool CSelectorState::RestoreState(INodeMap* pNodeMap, GENICAM_NAMESPACE::gcstring_vector* pErrorList)
{
    if (!pNodeMap) throw INVALID_ARGUMENT_EXCEPTION("The node map must not be NULL");
    const AutoLock held(pNodeMap->GetLock());
    for (const Selector& selector : selectors)
    {
        const CValuePtr node = pNodeMap->GetNode(selector.name);
        if (!node.IsValid()) continue;
        try
        {
            node->FromString(selector.value, false);
        }
        catch (const GENICAM_NAMESPACE::GenericException& exception)
        {
            if (pErrorList)
            {
                pErrorList->push_back("Error while writing selector '" + selector.name + "': " + exception.what());
            }
            return false;
        }
    }
    return true;
}

} // namespace GENAPI_NAMESPACE
