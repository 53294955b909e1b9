// ICategory: a group of features. Belongs to the node map.
#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT ICategory : virtual public IValue
{
    // In the order of the description.
    virtual void GetFeatures(FeatureList_t & Features) const = 0;
};

// A reference to this interface.
template <class T>
class CCategoryRefT : public CValueRefT<T, ICategory>
{
public:
    void GetFeatures(FeatureList_t& Features) const override { this->Target().GetFeatures(Features); }
};

typedef CCategoryRefT<ICategory> CCategoryRef;

} // namespace GENAPI_NAMESPACE
