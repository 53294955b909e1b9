// What a module fetches once: by whoever comes first, and again after a failure.
#include "base/exceptions.h"
#include "tests/support/journal.h"
#include "tests/support/throws_exactly.h"
#include "tests/unit/modules/open_objects.h"

#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace koro::test
{

using namespace internal;

namespace
{

class FetchedOnce : public testing::Test
{
protected:
    // Not one of the descriptor's: this one has not fetched its remote device yet.
    std::shared_ptr<Device> FreshDevice() const
    {
        return std::make_shared<Device>(
            objects.device->Handle(), "if0-dev0", objects.interface, objects.library->Proxy());
    }

    std::vector<std::string> Calls(const std::string& function) const
    {
        return CallsOf(objects.producer->Journal(), {function});
    }

    OpenObjects objects;
};

} // namespace

TEST_F(FetchedOnce, ConcurrentRequestsForTheRemoteDeviceMakeOneCall)
{
    const auto device = FreshDevice();
    objects.producer->ClearJournal();
    std::vector<std::future<std::shared_ptr<RemoteDevice>>> requests;
    for (int thread = 0; thread < 4; ++thread)
        requests.push_back(std::async(std::launch::async, [&] { return device->GetRemoteDevice(); }));

    const auto first = requests.front().get();
    for (std::size_t other = 1; other < requests.size(); ++other)
        EXPECT_EQ(requests[other].get(), first);
    EXPECT_EQ(Calls("DevGetPort"), std::vector<std::string>{"DevGetPort(if0-dev0)"});
}

TEST_F(FetchedOnce, RemoteDeviceThatFailedIsFetchedByTheNextRequest)
{
    const auto device = FreshDevice();
    objects.producer->AnswerOnce("DevGetPort", GenTL::GC_ERR_IO);

    EXPECT_THAT(
        [&] { device->GetRemoteDevice(); },
        ThrowsExactly<IOException>(
            "[Function: DevGetPort | Error-Code: -1010 (GC_ERR_IO) | Error-Text: scripted failure of DevGetPort]"));
    EXPECT_EQ(device->FetchedRemoteDevice(), nullptr);
    EXPECT_NE(device->GetRemoteDevice(), nullptr);
    EXPECT_EQ(device->GetRemoteDevice(), device->FetchedRemoteDevice());
}

TEST_F(FetchedOnce, RemoteDeviceOfADeviceThatNobodyHoldsIsABadWeakPointer)
{
    Device device(objects.device->Handle(), "if0-dev0", objects.interface, objects.library->Proxy());

    EXPECT_THROW(device.GetRemoteDevice(), std::bad_weak_ptr);
    EXPECT_THROW(device.DataStreams(), std::bad_weak_ptr);
}

TEST_F(FetchedOnce, ConcurrentRequestsForTheSystemMakeOneDescriptor)
{
    const auto library = std::make_shared<ProducerLibrary>(objects.producer.Path());
    objects.producer->ClearJournal();
    std::vector<std::future<std::shared_ptr<SystemDescriptor>>> requests;
    for (int thread = 0; thread < 4; ++thread)
        requests.push_back(std::async(std::launch::async, [&] { return library->GetSystem(); }));

    const auto first = requests.front().get();
    for (std::size_t other = 1; other < requests.size(); ++other)
        EXPECT_EQ(requests[other].get(), first);
    EXPECT_EQ(Calls("GCGetInfo").size(), 2u);
}

} // namespace koro::test
