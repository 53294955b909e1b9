// node_vector and value_vector: lists of nodes and of value interfaces; the nodes belong to their map. Values, like
// GCSequence; at() past the end throws the standard exception.
#pragma once

#include <Base/GCArray.h>
#include <GenICamFwd.h>

namespace GENAPI_NAMESPACE
{

class node_vector : public GENICAM_NAMESPACE::GCSequence<INode*>
{
public:
    node_vector() {}
    explicit node_vector(size_t count) : GENICAM_NAMESPACE::GCSequence<INode*>(count, nullptr) {}

    virtual void resize(size_t count) { elements.resize(count); }
};

class value_vector : public GENICAM_NAMESPACE::GCSequence<IValue*>
{
public:
    value_vector() {}
    explicit value_vector(size_t count) : GENICAM_NAMESPACE::GCSequence<IValue*>(count, nullptr) {}

    virtual void resize(size_t count, IValue* value) { elements.resize(count, value); }
};

} // namespace GENAPI_NAMESPACE
