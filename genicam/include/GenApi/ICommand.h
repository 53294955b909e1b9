// ICommand: something that the device does when told. Belongs to the node map.
#pragma once

#include <GenApi/IValue.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT ICommand : virtual public IValue
{
    virtual void Execute(bool Verify = true) = 0;
    virtual void operator()() = 0;
    // True without a preceding Execute; else asks the port until the command value is gone.
    virtual bool IsDone(bool Verify = true) = 0;
};

} // namespace GENAPI_NAMESPACE
