// IUserData: one pointer that the application stores at a node or a map; the runtime never uses it.
#pragma once

#include <Base/GCLinkage.h>
#include <GenApi/Types.h>
#include <GenICamFwd.h>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT IUserData
{
    virtual UserData_t GetUserData() const = 0;
    // Returns the previous pointer.
    virtual UserData_t SetUserData(UserData_t UserData) = 0;

protected:
    ~IUserData() = default;
};

} // namespace GENAPI_NAMESPACE
