// Handles that the producer has opened when the object behind them cannot be made.
#include "base/exceptions.h"
#include "tests/support/journal.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/modules/open_objects.h"

#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

namespace koro::test
{

using namespace internal;

namespace
{

class HalfMadeOpens : public testing::Test
{
protected:
    std::vector<std::string> Calls(const std::vector<std::string>& functions) const
    {
        return CallsOf(objects.producer->Journal(), functions);
    }

    OpenObjects objects;
    const GenTLCaller caller{objects.library->Proxy()};
};

} // namespace

TEST_F(HalfMadeOpens, HandleIsClosedAgainAndTheFailurePasses)
{
    objects.producer->ClearJournal();
    const auto fail = []() -> int { throw std::bad_alloc(); };

    EXPECT_THROW((MakeOwnerOf<&GenTLProxy::IFClose>(objects.interface->Handle(), caller, fail)), std::bad_alloc);
    EXPECT_EQ(objects.producer->Journal(), std::vector<std::string>{"IFClose(if0)"});
}

TEST_F(HalfMadeOpens, FailureOfThatCloseIsNotTold)
{
    objects.producer->Answer("TLClose", GenTL::GC_ERR_BUSY);
    const auto fail = []() -> int { throw OutOfRangeException("the failure"); };
    const auto make = [&] { MakeOwnerOf<&GenTLProxy::TLClose>(objects.system->Handle(), caller, fail); };

    EXPECT_THAT(make, ThrowsExactly<OutOfRangeException>("the failure"));
}

TEST_F(HalfMadeOpens, SuccessClosesNothing)
{
    objects.producer->ClearJournal();
    EXPECT_EQ((MakeOwnerOf<&GenTLProxy::TLClose>(objects.system->Handle(), caller, [] { return 7; })), 7);
    EXPECT_EQ(objects.producer->Journal(), std::vector<std::string>{});
}

TEST_F(HalfMadeOpens, DeviceThatLosesItsInterfaceWhileItOpensIsClosedAgain)
{
    objects.stream.reset();
    objects.device.reset();
    objects.producer->ClearJournal();
    // The opening itself holds the interface, so it succeeds and leaves a device without a parent.
    objects.producer->OnEntry("IFOpenDevice", [&] { objects.interface.reset(); });
    auto device = objects.deviceDescriptor->OpenDevice(GenTL::DEVICE_ACCESS_CONTROL);
    EXPECT_THAT([&] { device->ParentInterface(); }, ThrowsExactly<InternalErrorException>("Pointer has expired!"));

    device.reset();
    EXPECT_EQ(Calls({"IFClose", "DevClose"}), (std::vector<std::string>{"IFClose(if0)", "DevClose(dead)"}));
}

TEST_F(HalfMadeOpens, DeviceWhoseRemotePortFailsIsClosedAgain)
{
    objects.stream.reset();
    objects.device.reset();
    objects.producer->ClearJournal();
    objects.producer->Answer("DevGetPort", GenTL::GC_ERR_NO_DATA);

    EXPECT_THAT(
        [&] { objects.deviceDescriptor->OpenDevice(GenTL::DEVICE_ACCESS_CONTROL); },
        ThrowsExactly<NoDataException>("[Function: DevGetPort | Error-Code: -1008 (GC_ERR_NO_DATA) | Error-Text: "
                                       "scripted failure of DevGetPort]"));
    EXPECT_EQ(
        Calls({"IFOpenDevice", "DevGetPort", "DevClose"}),
        (std::vector<std::string>{"IFOpenDevice(if0, if0-dev0, 3)", "DevGetPort(if0-dev0)", "DevClose(if0-dev0)"}));
}

TEST_F(HalfMadeOpens, StandardExceptionsOnTheWayAreInternalErrors)
{
    objects.producer->OnEntry("TLOpen", [] { throw std::length_error("a length"); });
    EXPECT_THAT([&] { objects.systemDescriptor->OpenSystem(); }, ThrowsExactly<InternalErrorException>("a length"));
}

TEST_F(HalfMadeOpens, ModulesCannotBeMadeWithoutTheirParents)
{
    const auto& proxy = objects.library->Proxy();
    const auto expired = ThrowsExactly<InternalErrorException>("Pointer has expired!");

    EXPECT_THAT([&] { System(nullptr, "id", std::weak_ptr<ProducerLibrary>(), proxy); }, expired);
    EXPECT_THAT([&] { Interface(nullptr, "id", std::weak_ptr<System>(), proxy); }, expired);
    EXPECT_THAT([&] { Device(nullptr, "id", std::weak_ptr<Interface>(), proxy); }, expired);
}

} // namespace koro::test
