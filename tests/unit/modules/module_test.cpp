#include "gentl/port.h"
#include "modules/module.h"
#include "tests/support/journal.h"
#include "tests/unit/modules/open_objects.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace koro::test
{

using namespace internal;

namespace
{

using Strings = std::vector<std::string>;

class ModuleTree : public testing::Test
{
protected:
    Strings Calls(const Strings& functions) const { return CallsOf(objects.producer->Journal(), functions); }

    OpenObjects objects;
};

} // namespace

TEST_F(ModuleTree, ParentModuleClimbsToTheSystemWhichHasNone)
{
    EXPECT_EQ(objects.system->ParentModule(), nullptr);
    EXPECT_EQ(objects.interface->ParentModule(), objects.system);
    EXPECT_EQ(objects.device->ParentModule(), objects.interface);
    EXPECT_EQ(objects.remoteDevice->ParentModule(), objects.device);
    EXPECT_EQ(objects.stream->ParentModule(), objects.device);
}

TEST_F(ModuleTree, KeysOfModuleAndDescriptorAreTheParentsKeyAndTheID)
{
    const std::string root = objects.producer.Path();
    EXPECT_EQ(objects.library->Key(), root);
    EXPECT_EQ(objects.systemDescriptor->Key(), root + "|scripted producer");
    EXPECT_EQ(objects.system->Key(), objects.systemDescriptor->Key());
    EXPECT_EQ(objects.interfaceDescriptor->Key(), objects.system->Key() + "|if0");
    EXPECT_EQ(objects.interface->Key(), objects.interfaceDescriptor->Key());
    EXPECT_EQ(objects.deviceDescriptor->Key(), objects.interface->Key() + "|if0-dev0");
    EXPECT_EQ(objects.device->Key(), objects.deviceDescriptor->Key());
    EXPECT_EQ(objects.streamDescriptor->Key(), objects.device->Key() + "|if0-dev0-stream0");
    EXPECT_EQ(objects.stream->Key(), objects.streamDescriptor->Key());
}

TEST_F(ModuleTree, HandleIsThatOfThePort)
{
    EXPECT_EQ(objects.system->Handle(), objects.system->Port()->Handle());
    EXPECT_NE(objects.device->Handle(), nullptr);
    EXPECT_NE(objects.device->Handle(), objects.remoteDevice->Handle());
}

TEST_F(ModuleTree, MakingAModuleMakesNoProducerCall)
{
    objects.producer->ClearJournal();
    const auto& proxy = objects.library->Proxy();
    const auto system = std::make_shared<System>(nullptr, "id", objects.library, proxy);
    const auto interface = std::make_shared<Interface>(nullptr, "id", objects.system, proxy);
    const auto device = std::make_shared<Device>(nullptr, "id", objects.interface, proxy);
    const auto remoteDevice = std::make_shared<RemoteDevice>(nullptr, objects.device, proxy);

    EXPECT_EQ(objects.producer->Journal(), Strings{});
    EXPECT_NE(system->Port(), nullptr);
    EXPECT_NE(remoteDevice->Port(), nullptr);
}

TEST_F(ModuleTree, PortOutlivesItsModuleOverAClosedHandle)
{
    const auto port = objects.interface->Port();
    objects.interface.reset();

    EXPECT_EQ(Calls({"IFClose"}), Strings{"IFClose(if0)"});
    EXPECT_ANY_THROW(port->ID());
}

TEST_F(ModuleTree, NothingBelowKeepsAnythingAboveAlive)
{
    const std::weak_ptr<ProducerLibrary> library = objects.library;
    const std::weak_ptr<System> system = objects.system;
    const std::weak_ptr<Interface> interface = objects.interface;
    const std::weak_ptr<Device> device = objects.device;
    objects.library.reset();
    objects.system.reset();
    objects.interface.reset();
    objects.device.reset();

    EXPECT_TRUE(library.expired());
    EXPECT_TRUE(system.expired());
    EXPECT_TRUE(interface.expired());
    EXPECT_TRUE(device.expired());
}

TEST_F(ModuleTree, OpenedChildIsHeldByNobodyButItsUser)
{
    const std::weak_ptr<Device> device = objects.device;
    const std::weak_ptr<RemoteDevice> remoteDevice = objects.remoteDevice;
    const std::weak_ptr<DeviceDescriptor> descriptor = objects.deviceDescriptor;
    objects.remoteDevice.reset();
    objects.deviceDescriptor.reset();
    EXPECT_FALSE(remoteDevice.expired()); // its device owns it
    EXPECT_FALSE(descriptor.expired());   // the interface's list does

    objects.device.reset();
    EXPECT_TRUE(device.expired());
    EXPECT_TRUE(remoteDevice.expired());
}

TEST_F(ModuleTree, CloseComesBeforeTheDestructionCallbacks)
{
    const auto recordCloses = [](Strings& calls, const ScriptedProducer& producer) {
        return [&] { calls = CallsOf(producer->Journal(), {"TLClose", "IFClose", "DevClose"}); };
    };
    Strings ofSystem;
    Strings ofInterface;
    Strings ofDevice;
    objects.system->AddDestructionCallback(recordCloses(ofSystem, objects.producer));
    objects.interface->AddDestructionCallback(recordCloses(ofInterface, objects.producer));
    objects.device->AddDestructionCallback(recordCloses(ofDevice, objects.producer));
    objects.stream.reset();
    objects.device.reset();
    objects.interface.reset();
    objects.system.reset();

    EXPECT_EQ(ofDevice, Strings{"DevClose(if0-dev0)"});
    EXPECT_EQ(ofInterface, (Strings{"DevClose(if0-dev0)", "IFClose(if0)"}));
    EXPECT_EQ(ofSystem, (Strings{"DevClose(if0-dev0)", "IFClose(if0)", "TLClose(system)"}));
}

TEST_F(ModuleTree, DestructionCallbacksOfALibraryComeBeforeItsClose)
{
    bool called = false;
    objects.library->AddDestructionCallback([&] {
        called = true;
        EXPECT_EQ(objects.producer->InitCount(), 1);
    });
    objects.library.reset();

    EXPECT_TRUE(called);
    EXPECT_EQ(objects.producer->InitCount(), 0);
}

TEST_F(ModuleTree, OpenedDeviceCanBeReopenedFromItsDescriptor)
{
    objects.stream.reset();
    objects.device.reset();
    const auto again = objects.deviceDescriptor->OpenDevice(GenTL::DEVICE_ACCESS_READONLY);

    EXPECT_EQ(again->Key(), objects.deviceDescriptor->Key());
    EXPECT_EQ(again->FetchedRemoteDevice(), again->GetRemoteDevice());
}

} // namespace koro::test
