// CNodeWriteConcatenator: a list of names and values to be written to a map in one operation. Created by INodeMap,
// destroyed by Destroy.
#pragma once

#include <Base/GCString.h>
#include <GenApi/IDestroy.h>

namespace GENAPI_NAMESPACE
{

class GENAPI_DECL CNodeWriteConcatenator
{
public:
    virtual void Add(const GENICAM_NAMESPACE::gcstring& name, const GENICAM_NAMESPACE::gcstring& value) = 0;
    virtual void Add(const GENICAM_NAMESPACE::gcstring& name, const char* value) = 0;
    virtual void Add(const GENICAM_NAMESPACE::gcstring& name, int64_t value) = 0;
    virtual void Add(const GENICAM_NAMESPACE::gcstring& name, double value) = 0;
    virtual void Add(const GENICAM_NAMESPACE::gcstring& name, bool value) = 0;
    virtual void Clear() = 0;
    virtual void Destroy() = 0;

protected:
    virtual ~CNodeWriteConcatenator() {}
};

} // namespace GENAPI_NAMESPACE
