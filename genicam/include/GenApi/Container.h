// node_vector and value_vector: lists of nodes and of value interfaces; the nodes belong to their map. Values, as
// GCSequence; at() past the end throws the standard exception.
#pragma once

#include <Base/GCSequence.h>
#include <GenICamFwd.h>

namespace GENAPI_NAMESPACE
{

class node_vector : public GENICAM_NAMESPACE::GCSequence<INode*>
{
public:
    node_vector() {}
    explicit node_vector(size_t count) : GENICAM_NAMESPACE::GCSequence<INode*>(count, nullptr) {}
};

class value_vector : public GENICAM_NAMESPACE::GCSequence<IValue*>
{
public:
    value_vector() {}
    explicit value_vector(size_t count) : GENICAM_NAMESPACE::GCSequence<IValue*>(count, nullptr) {}
};

} // namespace GENAPI_NAMESPACE
