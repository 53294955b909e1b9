// OpenObjects: a scripted producer's tree as objects of the library, held by the test and by no handle table.
//
// Dropping a member ends that object alone: what is below it stays, with a parent that has gone.
#pragma once

#include "modules/data_stream.h"
#include "modules/device.h"
#include "modules/device_descriptor.h"
#include "modules/interface.h"
#include "modules/interface_descriptor.h"
#include "modules/producer_library.h"
#include "modules/remote_device.h"
#include "modules/system.h"
#include "modules/system_descriptor.h"
#include "tests/support/scripted_producer.h"

#include <memory>

namespace koro::test
{

// After an update.
template <class Parent>
auto FirstChild(Parent& parent)
{
    parent.UpdateChildren(0);
    return parent.Children()->front();
}

struct OpenObjects
{
    const ScriptedProducer producer;

    std::shared_ptr<internal::ProducerLibrary> library = std::make_shared<internal::ProducerLibrary>(producer.Path());
    std::shared_ptr<internal::SystemDescriptor> systemDescriptor = library->GetSystem();
    std::shared_ptr<internal::System> system = systemDescriptor->OpenSystem();
    std::shared_ptr<internal::InterfaceDescriptor> interfaceDescriptor = FirstChild(*system);
    std::shared_ptr<internal::Interface> interface = interfaceDescriptor->OpenInterface();
    std::shared_ptr<internal::DeviceDescriptor> deviceDescriptor = FirstChild(*interface);
    std::shared_ptr<internal::Device> device = deviceDescriptor->OpenDevice(GenTL::DEVICE_ACCESS_EXCLUSIVE);
    std::shared_ptr<internal::RemoteDevice> remoteDevice = device->GetRemoteDevice();
    std::shared_ptr<internal::DataStreamDescriptor> streamDescriptor = device->DataStreams()->front();
    std::shared_ptr<internal::DataStream> stream = streamDescriptor->OpenDataStream();
};

} // namespace koro::test
