// ISelector: the features that a node selects, and those by which it is selected. Belongs to the node map.
#pragma once

#include <GenApi/IBase.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT ISelector : virtual public IBase
{
    virtual bool IsSelector() const = 0;
    virtual void GetSelectedFeatures(FeatureList_t & Features) const = 0;
    // Nearest selector first.
    virtual void GetSelectingFeatures(FeatureList_t & Features) const = 0;
};

// A reference to this interface.
template <class T>
class CSelectorRefT : public CBaseRefT<T, ISelector>
{
public:
    bool IsSelector() const override { return this->Target().IsSelector(); }
    void GetSelectedFeatures(FeatureList_t& Features) const override { this->Target().GetSelectedFeatures(Features); }
    void GetSelectingFeatures(FeatureList_t& Features) const override { this->Target().GetSelectingFeatures(Features); }
};

typedef CSelectorRefT<ISelector> CSelectorRef;

} // namespace GENAPI_NAMESPACE
