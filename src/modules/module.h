// Module and ModuleDescriptor: the base classes of all modules that can be opened, and of their descriptors.
//
// No child keeps its parent alive: a child holds its parent weakly, a parent holds the descriptors of its children, and
// the handle table links an opened child to its parent. The destructors of the concrete classes close the module
// handles; failures of these calls are ignored.
#pragma once

#include "base/instance.h"
#include "base/once.h"
#include "gentl/gentl_caller.h"

#include <memory>
#include <string>
#include <vector>

namespace koro::internal
{

class NodeMap;
class Port;

class Module : public Instance
{
public:
    // Creates the port at once; does not call the producer.
    Module(GenTL::PORT_HANDLE handle, const std::shared_ptr<const GenTLProxy>& proxy);
    ~Module() override;

    // The parent; empty for a System. Throws InternalErrorException when the parent has ended.
    virtual std::shared_ptr<Module> ParentModule() const = 0;

    // In GenTL every module handle is also a port handle, so this handle serves all functions of the module.
    GenTL::PORT_HANDLE Handle() const;
    const std::shared_ptr<internal::Port>& Port() const { return port; }
    // Fetched by the first successful call and never again. Empty without a usable description.
    std::vector<std::shared_ptr<NodeMap>> NodeMaps();

private:
    std::vector<std::shared_ptr<NodeMap>> nodeMaps; // set under nodeMapsOnce
    Once nodeMapsOnce;
    const std::shared_ptr<internal::Port> port;
};

class ModuleDescriptor : public Instance
{
public:
    // The id by which the producer identifies the module.
    virtual std::string ID() const = 0;
};

// Key of a module or descriptor: unique in the process as long as the paths of the producers are.
inline std::string ModuleKey(const std::string& parentKey, const std::string& id)
{
    return parentKey + "|" + id;
}

// Creates the object that will own an open GenTL handle; closes the handle when that fails.
template <auto CloseFunction, class Make>
auto MakeOwnerOf(void* handle, const GenTLCaller& gentl, Make&& make)
{
    try
    {
        return make();
    }
    catch (...)
    {
        gentl.CallIgnoringFailures<CloseFunction>(handle);
        throw;
    }
}

} // namespace koro::internal
