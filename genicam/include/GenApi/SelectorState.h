// CSelectorState: the values that the selectors of a feature had when the feature was read, outermost selector first.
//
// A value with a position. Not thread-safe; RestoreState takes the map's lock.
#pragma once

#include <Base/GCStringVector.h>
#include <GenApi/INodeMap.h>
#include <GenApi/IValue.h>
#include <vector>

namespace GENAPI_NAMESPACE
{

class GENAPI_DECL CSelectorState
{
public:
    CSelectorState() : position(0) {}

    // Returns false when there is none.
    bool SetFirst();
    bool SetNext();
    // Adds the name and the current value of a selector.
    void AddSelector(IValue& item);
    void AddSelector(GENICAM_NAMESPACE::gcstring name, GENICAM_NAMESPACE::gcstring value);
    // At the current position; throws LogicalErrorException for an empty state.
    GENICAM_NAMESPACE::gcstring GetNodeName();
    GENICAM_NAMESPACE::gcstring GetNodeValue();
    bool IsEmpty() { return selectors.empty(); }
    // Writes the values in their order. Selectors that the map does not have are skipped; the first one that does not
    // accept its value ends the writing. The function then returns false and appends the reason to the list.
    bool RestoreState(INodeMap* pNodeMap, GENICAM_NAMESPACE::gcstring_vector* pErrorList = nullptr);

private:
    friend class CFeatureBag;

    struct Selector
    {
        GENICAM_NAMESPACE::gcstring name;
        GENICAM_NAMESPACE::gcstring value;
    };

    const Selector& Present() const;

    std::vector<Selector> selectors;
    size_t position;
};

} // namespace GENAPI_NAMESPACE
