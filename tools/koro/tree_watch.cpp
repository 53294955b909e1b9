#include "tools/koro/tree_watch.h"

#include "tools/koro/if_known.h"
#include "tools/koro/opened_producer.h"
#include "tools/koro/read_producer.h"

#include <exception>
#include <filesystem>
#include <mutex>
#include <optional>
#include <set>
#include <utility>

namespace koro::tool
{

namespace
{

std::string Describe(const DeviceDescriptor& camera)
{
    std::string text;
    const auto add = [&text](const std::optional<std::string>& more, const char* before) {
        if (more && !more->empty()) text += (text.empty() ? "" : before) + *more;
    };
    add(IfKnown([&] { return camera.VendorName(); }), "");
    add(IfKnown([&] { return camera.ModelName(); }), " ");
    add(IfKnown([&] { return camera.SerialNumber(); }), ", serial number ");
    add(IfKnown([&] { return camera.UserDefinedName(); }), ", ");
    return text;
}

} // namespace

struct TreeWatch::Teller
{
    std::function<void(const TreeChange&)> changed;
    std::mutex mutex; // one change at a time

    void Tell(const char* what, const std::string& place, const std::string& detail = {})
    {
        const std::lock_guard<std::mutex> lock(mutex);
        changed({what, place, detail});
    }
};

namespace
{

// A failure that comes with every update is told once.
class Attempt
{
public:
    template <typename Step, typename TellFailure>
    bool Try(const Step& step, const TellFailure& tell)
    {
        try
        {
            step();
            failure.clear();
            return true;
        }
        catch (const Error& error)
        {
            if (failure != error.what()) tell(error.what());
            failure = error.what();
            return false;
        }
    }

private:
    std::string failure;
};

} // namespace

// One producer: its open system and the interfaces below it.
class TreeWatch::Producer
{
public:
    Producer(const std::string& file, Teller& tell)
        : name(std::filesystem::path(file).filename().string()), teller(tell), path(file), producer(LoadProducer(path)),
          system(producer.System().OpenSystem()),
          found(system.OnInterfaceFound([this](const InterfaceDescriptor& descriptor) {
              teller.Tell("found", descriptor.ID(), IfKnown([&] { return descriptor.DisplayName(); }).value_or(""));
          })),
          lost(system.OnInterfaceLost([this](const std::string& id) { teller.Tell("lost", id); }))
    {}

    void Update()
    {
        ProducerWatch::OfProcess().Call(path);
        const bool isListed = listing.Try(
            [this] { system.UpdateInterfaces(updateTimeout_ms); },
            [this](const char* why) { teller.Tell("failed", name, why); });
        if (!isListed) return;
        std::set<std::string> present;
        for (const InterfaceDescriptor& descriptor : system.Interfaces())
        {
            const std::string id = descriptor.ID();
            present.insert(id);
            auto& branch = branches[id];
            if (!branch) branch = std::make_unique<Branch>(id, teller);
            NoteProgress();
            branch->Update(descriptor);
        }
        for (auto branch = branches.begin(); branch != branches.end();)
            branch = present.count(branch->first) == 0 ? branches.erase(branch) : std::next(branch);
    }

private:
    // One interface, open once it can be.
    class Branch
    {
    public:
        Branch(std::string interfaceID, Teller& tell) : id(std::move(interfaceID)), teller(tell) {}

        void Update(const InterfaceDescriptor& descriptor)
        {
            listing.Try(
                [&] {
                    if (!opened) Open(descriptor);
                    opened.UpdateDevices(updateTimeout_ms);
                },
                [this](const char* why) { teller.Tell("failed", id, why); });
        }

    private:
        void Open(const InterfaceDescriptor& descriptor)
        {
            Interface fresh = descriptor.OpenInterface();
            std::vector<Registration> made; // end before the interface
            const auto tell = [this](const char* what) {
                return [this, what](const DeviceDescriptor& camera) {
                    const auto cameraID = IfKnown([&] { return camera.ID(); });
                    teller.Tell(what, id + ":" + cameraID.value_or("?"), Describe(camera));
                };
            };
            made.push_back(fresh.OnDeviceFound(tell("found")));
            made.push_back(
                fresh.OnDeviceLost([this](const std::string& camera) { teller.Tell("lost", id + ":" + camera); }));
            made.push_back(fresh.OnDeviceDisconnected(tell("disconnected")));
            made.push_back(fresh.OnDeviceReconnected(
                [report = tell("reconnected")](
                    const DeviceDescriptor& camera, const KORO_DEVICE_RECONNECT_INFORMATION&) { report(camera); }));
            opened = std::move(fresh);
            registrations = std::move(made);
        }

        const std::string id;
        Teller& teller;
        Attempt listing;
        Interface opened;
        std::vector<Registration> registrations; // end before the interface
    };

    const std::string name;
    Teller& teller;
    const std::string path;
    Attempt listing;
    ProducerLibrary producer;
    System system;
    Registration found;
    Registration lost;
    std::map<std::string, std::unique_ptr<Branch>> branches;
};

TreeWatch::TreeWatch(const std::vector<std::string>& paths, std::function<void(const TreeChange&)> changed)
    : teller(std::make_unique<Teller>()), library(Library::Initialize())
{
    teller->changed = std::move(changed);
    std::exception_ptr failure;
    for (const std::string& path : paths)
    {
        try
        {
            producers.push_back(std::make_unique<Producer>(path, *teller));
        }
        catch (const Error& error)
        {
            teller->Tell("failed", path, error.what());
            failure = std::current_exception();
        }
    }
    if (producers.empty() && failure) std::rethrow_exception(failure);
}

TreeWatch::~TreeWatch() = default;

void TreeWatch::Update()
{
    for (const auto& producer : producers)
        producer->Update();
}

} // namespace koro::tool
