// Objects that are still held when their parent has gone: what needs the parent says so, what does not still answers.
#include "base/exceptions.h"
#include "tests/support/journal.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/modules/open_objects.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace koro::test
{

namespace
{

using internal::InternalErrorException;

class ExpiredParents : public testing::Test
{
protected:
    OpenObjects objects;
    const std::string path = objects.producer.Path();
};

using Operations = std::vector<std::pair<const char*, std::function<void()>>>;

void ExpectExpired(const Operations& operations)
{
    for (const auto& [name, operation] : operations)
    {
        SCOPED_TRACE(name);
        EXPECT_THAT(operation, ThrowsExactly<InternalErrorException>("Pointer has expired!"));
    }
}

template <class Parent, class Callbacks>
Operations ListOperations(Parent& parent, Callbacks found)
{
    return {
        {"UpdateChildren", [&] { parent.UpdateChildren(0); }},
        {"Children", [&] { parent.Children(); }},
        {"RegisterFoundCallback", [&, found] { parent.RegisterFoundCallback(found); }},
        {"UnregisterFoundCallback", [&] { parent.UnregisterFoundCallback(nullptr); }},
        {"RegisterLostCallback", [&] { parent.RegisterLostCallback([](const std::string&) {}); }},
        {"UnregisterLostCallback", [&] { parent.UnregisterLostCallback(nullptr); }},
    };
}

} // namespace

TEST_F(ExpiredParents, SystemDescriptorNeedsItsLibrary)
{
    const auto& descriptor = *objects.systemDescriptor;
    objects.library.reset();

    ExpectExpired({
        {"ParentLibrary", [&] { descriptor.ParentLibrary(); }},
        {"OpenSystem", [&] { descriptor.OpenSystem(); }},
        {"Info", [&] { descriptor.Info(0); }},
        {"DisplayName", [&] { descriptor.DisplayName(); }},
        {"VendorName", [&] { descriptor.VendorName(); }},
        {"ModelName", [&] { descriptor.ModelName(); }},
        {"Version", [&] { descriptor.Version(); }},
        {"TLType", [&] { descriptor.TLType(); }},
        {"CTIFileName", [&] { descriptor.CTIFileName(); }},
        {"CTIFullPath", [&] { descriptor.CTIFullPath(); }},
        {"CharacterEncoding", [&] { descriptor.CharacterEncoding(); }},
        {"GenTLVersionMajor", [&] { descriptor.GenTLVersionMajor(); }},
        {"GenTLVersionMinor", [&] { descriptor.GenTLVersionMinor(); }},
    });
    EXPECT_EQ(descriptor.Key(), path + "|scripted producer");
    EXPECT_EQ(descriptor.ID(), "scripted producer");
}

TEST_F(ExpiredParents, SystemNeedsItsLibrary)
{
    auto& system = *objects.system;
    objects.library.reset();

    ExpectExpired({
        {"ParentLibrary", [&] { system.ParentLibrary(); }},
        {"ID", [&] { system.ID(); }},
        {"Info", [&] { system.Info(0); }},
        {"DisplayName", [&] { system.DisplayName(); }},
        {"VendorName", [&] { system.VendorName(); }},
        {"ModelName", [&] { system.ModelName(); }},
        {"Version", [&] { system.Version(); }},
        {"TLType", [&] { system.TLType(); }},
        {"CTIFileName", [&] { system.CTIFileName(); }},
        {"CTIFullPath", [&] { system.CTIFullPath(); }},
        {"CharacterEncoding", [&] { system.CharacterEncoding(); }},
        {"GenTLVersionMajor", [&] { system.GenTLVersionMajor(); }},
        {"GenTLVersionMinor", [&] { system.GenTLVersionMinor(); }},
    });
    ExpectExpired(ListOperations(system, [](const std::shared_ptr<internal::InterfaceDescriptor>&) {}));
    EXPECT_EQ(system.Key(), path + "|scripted producer");
    EXPECT_EQ(system.ParentModule(), nullptr);
}

TEST_F(ExpiredParents, InterfaceDescriptorNeedsItsSystem)
{
    const auto& descriptor = *objects.interfaceDescriptor;
    objects.system.reset();

    ExpectExpired({
        {"ParentSystem", [&] { descriptor.ParentSystem(); }},
        {"ID", [&] { descriptor.ID(); }},
        {"Info", [&] { descriptor.Info(0); }},
        {"DisplayName", [&] { descriptor.DisplayName(); }},
        {"TLType", [&] { descriptor.TLType(); }},
        {"OpenInterface", [&] { descriptor.OpenInterface(); }},
    });
    EXPECT_EQ(descriptor.Key(), path + "|scripted producer|if0");
}

TEST_F(ExpiredParents, InterfaceNeedsItsSystem)
{
    auto& interface = *objects.interface;
    objects.system.reset();

    ExpectExpired({
        {"ParentSystem", [&] { interface.ParentSystem(); }},
        {"ParentModule", [&] { interface.ParentModule(); }},
        {"ID", [&] { interface.ID(); }},
        {"Info", [&] { interface.Info(0); }},
        {"DisplayName", [&] { interface.DisplayName(); }},
        {"TLType", [&] { interface.TLType(); }},
    });
    ExpectExpired(ListOperations(interface, [](const std::shared_ptr<internal::DeviceDescriptor>&) {}));
    EXPECT_EQ(interface.Key(), path + "|scripted producer|if0");
}

TEST_F(ExpiredParents, DeviceDescriptorNeedsItsInterface)
{
    auto& descriptor = *objects.deviceDescriptor;
    objects.interface.reset();
    std::size_t size = 0;

    ExpectExpired({
        {"ParentInterface", [&] { descriptor.ParentInterface(); }},
        {"ID", [&] { descriptor.ID(); }},
        {"Info", [&] { descriptor.Info(0); }},
        {"RawStringInfo", [&] { descriptor.RawStringInfo(1, nullptr, &size); }},
        {"AccessStatus", [&] { descriptor.AccessStatus(); }},
        {"TimestampTickFrequency", [&] { descriptor.TimestampTickFrequency(); }},
        {"IsOpenable", [&] { descriptor.IsOpenable(GenTL::DEVICE_ACCESS_READONLY); }},
        {"IsOpenableExclusive", [&] { descriptor.IsOpenableExclusive(); }},
        {"OpenDevice", [&] { descriptor.OpenDevice(GenTL::DEVICE_ACCESS_CONTROL); }},
    });
    EXPECT_EQ(descriptor.Key(), path + "|scripted producer|if0|if0-dev0");
}

TEST_F(ExpiredParents, DeviceNeedsItsInterface)
{
    auto& device = *objects.device;
    objects.interface.reset();

    ExpectExpired({
        {"ParentInterface", [&] { device.ParentInterface(); }},
        {"ParentModule", [&] { device.ParentModule(); }},
        {"ID", [&] { device.ID(); }},
        {"Info", [&] { device.Info(0); }},
        {"DisplayName", [&] { device.DisplayName(); }},
        {"VendorName", [&] { device.VendorName(); }},
        {"ModelName", [&] { device.ModelName(); }},
        {"Version", [&] { device.Version(); }},
        {"TLType", [&] { device.TLType(); }},
        {"UserDefinedName", [&] { device.UserDefinedName(); }},
        {"SerialNumber", [&] { device.SerialNumber(); }},
        {"AccessStatus", [&] { device.AccessStatus(); }},
        {"TimestampTickFrequency", [&] { device.TimestampTickFrequency(); }},
        {"DataStreams", [&] { device.DataStreams(); }},
        {"GetRemoteDevice", [&] { device.GetRemoteDevice(); }},
    });
    EXPECT_EQ(device.Key(), path + "|scripted producer|if0|if0-dev0");
}

TEST_F(ExpiredParents, RemoteDeviceNeedsItsLocalDevice)
{
    const auto& remoteDevice = *objects.remoteDevice;
    objects.device.reset();

    const auto expired = ThrowsExactly<InternalErrorException>("Local device has expired!");
    EXPECT_THAT([&] { remoteDevice.LocalDevice(); }, expired);
    EXPECT_THAT([&] { remoteDevice.ParentModule(); }, expired);
}

TEST_F(ExpiredParents, DataStreamDescriptorNeedsItsDevice)
{
    const auto& descriptor = *objects.streamDescriptor;
    objects.device.reset();

    ExpectExpired({
        {"ParentDevice", [&] { descriptor.ParentDevice(); }},
        {"OpenDataStream", [&] { descriptor.OpenDataStream(); }},
    });
    EXPECT_EQ(descriptor.Key(), path + "|scripted producer|if0|if0-dev0|if0-dev0-stream0");
    EXPECT_EQ(descriptor.ID(), "if0-dev0-stream0");
}

TEST_F(ExpiredParents, NothingIsAskedOfTheProducerForThem)
{
    objects.interface.reset();
    objects.producer->ClearJournal();
    std::size_t size = 0;

    EXPECT_ANY_THROW(objects.device->VendorName());
    EXPECT_ANY_THROW(objects.device->DataStreams());
    EXPECT_ANY_THROW(objects.deviceDescriptor->RawStringInfo(1, nullptr, &size));
    EXPECT_ANY_THROW(objects.deviceDescriptor->OpenDevice(4));
    EXPECT_EQ(objects.producer->Journal(), std::vector<std::string>{});
}

TEST_F(ExpiredParents, ObjectsThatOutliveTheirParentsCloseAllTheSame)
{
    objects.producer->ClearJournal();
    objects.system.reset();
    objects.interface.reset();
    objects.device.reset();
    objects.remoteDevice.reset();
    objects.library.reset();

    EXPECT_EQ(
        CallsOf(objects.producer->Journal(), {"TLClose", "IFClose", "DevClose", "GCCloseLib"}),
        (std::vector<std::string>{"TLClose(system)", "IFClose(dead)", "DevClose(dead)", "GCCloseLib()"}));
}

} // namespace koro::test
