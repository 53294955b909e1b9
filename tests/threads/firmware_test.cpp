// Updates of cameras while other threads register at their observer, end it, and collect.
#include "tests/boundary/firmware_test.h"

#include "tests/threads/threads.h"

#include <atomic>

using namespace koro::test;

namespace
{

class FirmwareInThreads : public FirmwareTest
{
protected:
    FirmwareInThreads()
    {
        EditDevices([](Devices& devices) { firmware::MakeUpdatable(*devices[1]); });
        secondDescriptor = Get<KORO_DeviceDescriptorHandle>(KORO_Interface_GetDevice, tree.interface, std::size_t{1});
        producer->KeepJournal(false);
    }

    static constexpr int rounds = 20;
    KORO_DeviceDescriptorHandle secondDescriptor = nullptr;
};

} // namespace

TEST_F(FirmwareInThreads, CallbacksComeAndGoWhileTwoUpdatesShareTheirObserver)
{
    const UpdateFileOnDisk file =
        FileWithSteps(firmware::UploadStep("a.bin") + firmware::ResetStep(), {{"a.bin", "some bytes"}});
    Require(CollectAll(file.path));
    const auto information = Found();
    KORO_FirmwareUpdateProgressObserverHandle shared = nullptr;
    Require(KORO_FirmwareUpdateProgressObserver_Construct(&shared));

    std::atomic<int> calls{0};
    std::atomic<int> updating{2};
    Threads threads;
    threads.Add(2, [&](std::size_t number) {
        const auto descriptor = number == 0 ? tree.deviceDescriptor : secondDescriptor;
        for (int round = 0; round < rounds; ++round)
            Require(KORO_FirmwareUpdater_UpdateDevice(updater, descriptor, information, shared));
        --updating;
    });
    threads.Add(2, [&](std::size_t) {
        while (updating > 0)
        {
            const auto callback = Get<KORO_FirmwareUpdateStepStartedCallbackHandle>(
                KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepStartedCallback, shared,
                +[](KORO_FirmwareUpdateStep, std::uint32_t, const char* description, std::size_t size, void* context) {
                    TextOf(description, size);
                    ++*static_cast<std::atomic<int>*>(context);
                },
                static_cast<void*>(&calls));
            std::this_thread::yield();
            Require(KORO_FirmwareUpdateProgressObserver_UnregisterUpdateStepStartedCallback(shared, callback));
        }
    });
    threads.Add(1, [&](std::size_t) {
        while (updating > 0)
        {
            Require(CollectAll(file.path));
            std::size_t found = 0;
            Require(KORO_FirmwareUpdater_GetNumFirmwareUpdateInformation(updater, &found));
            EXPECT_EQ(found, 1u);
            EXPECT_EQ(GetText(KORO_FirmwareUpdateInformation_GetVersion, information), "2.0");
        }
    });
    threads.Join();
}

TEST_F(FirmwareInThreads, ObserverEndsWhileItsUpdatesRun)
{
    const UpdateFileOnDisk file = FileWithSteps(firmware::UploadStep("a.bin"), {{"a.bin", "some bytes"}});
    Require(CollectAll(file.path));
    const auto information = Found();
    for (int round = 0; round < rounds; ++round)
    {
        std::atomic<int> finished{0};
        KORO_FirmwareUpdateProgressObserverHandle ending = nullptr;
        Require(KORO_FirmwareUpdateProgressObserver_Construct(&ending));
        Get<KORO_FirmwareUpdateFinishedCallbackHandle>(
            KORO_FirmwareUpdateProgressObserver_RegisterUpdateFinishedCallback, ending,
            +[](void* context) { ++*static_cast<std::atomic<int>*>(context); }, static_cast<void*>(&finished));
        std::atomic<int> updated{0};
        Threads threads;
        threads.Add(1, [&](std::size_t) {
            const auto outcome =
                Outcome(KORO_FirmwareUpdater_UpdateDevice(updater, tree.deviceDescriptor, information, ending));
            if (outcome == Error{})
                ++updated;
            else
                EXPECT_EQ(outcome, InvalidHandle("firmwareUpdateProgressObserverHandle"));
        });
        threads.Add(1, [&](std::size_t) { Require(KORO_FirmwareUpdateProgressObserver_Destruct(ending)); });
        threads.Join();
        EXPECT_EQ(finished, updated);
    }
}
