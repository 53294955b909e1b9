// IChunkPort: a port node whose registers lie in a chunk of a buffer. Belongs to the node map.
#pragma once

#include <GenApi/IPort.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IChunkPort : virtual public IPort
{
    virtual GENICAM_NAMESPACE::gcstring GetChunkID() const = 0;
    virtual EYesNo CacheChunkData() const = 0;
};

} // namespace GENAPI_NAMESPACE
