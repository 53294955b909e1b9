// CategoryNode, PlainNode: the elements Category and Node, which have no value.
#pragma once

#include "nodes/value_node.h"

#include <GenApi/ICategory.h>

namespace GENAPI_NAMESPACE::runtime
{

class CategoryNode : public ValueNode, public ICategory
{
public:
    using ValueNode::ValueNode;
    void GetFeatures(FeatureList_t& Features) const override;

protected:
    GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) override;
    void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) override;
    EAccessMode LinkedMode() const override;
    EAccessMode KindMode() const override { return RO; }
    EAccessMode ModeOfLinksAndConditions() const override;
};

class PlainNode : public ValueNode
{
public:
    using ValueNode::ValueNode;

protected:
    GENICAM_NAMESPACE::gcstring ValueText(ReadOptions options) override;
    void SetText(const GENICAM_NAMESPACE::gcstring& text, bool verify) override;
};

} // namespace GENAPI_NAMESPACE::runtime
