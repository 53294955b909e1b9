// DataStreamDescriptor: a data stream of a device, before it is opened.
//
// Held by the child list of its Device, which it holds weakly. Thread-safe.
#pragma once

#include "modules/module.h"

#include <memory>
#include <string>

namespace koro::internal
{

class DataStream;
class Device;

class DataStreamDescriptor final : public ModuleDescriptor
{
public:
    DataStreamDescriptor(
        std::string streamID, const std::shared_ptr<Device>& device, const std::shared_ptr<const GenTLProxy>& proxy);

    const std::string& Key() const { return key; }
    std::string ID() const override { return id; }

    std::shared_ptr<Device> ParentDevice() const;

    std::shared_ptr<DataStream> OpenDataStream() const;

private:
    const GenTLCaller gentl;
    const std::weak_ptr<Device> parent;
    const std::string key;
    const std::string id;
};

} // namespace koro::internal
