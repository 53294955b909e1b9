// System: the opened producer with its interfaces.
//
// A producer derives from it. The virtual functions are called on any thread, and the kit holds no lock, except
// in MakeInterface, where it holds the lock of the list of open interfaces.
#pragma once

#include "producers/kit/child_list.h"
#include "producers/kit/found_list.h"
#include "producers/kit/interface.h"
#include "producers/kit/module.h"
#include "producers/kit/producer.h"

#include <memory>
#include <string>

namespace koro::kit
{

class System : public Module
{
public:
    using Interfaces = FoundList<const InterfaceFacts>::Entries;

    explicit System(std::shared_ptr<Producer> openedProducer) : producer(std::move(openedProducer)) {}

    const std::string& Id() const noexcept { return producer->Facts().id; }
    InfoValue Info(TL_INFO_CMD command) const { return producer->Info(command); }

    // Whether the list differs from the one before; it is empty until the first update.
    bool UpdateInterfaces(std::uint64_t timeout_ms) { return listed.Replace(PresentInterfaces(timeout_ms)); }
    std::size_t NumInterfaces() const { return listed.Size(); }
    std::string InterfaceIdAt(std::uint32_t index) const { return listed.At(index)->id; }
    // By id or display name, listed or not. Throws GC_ERR_INVALID_ID.
    std::shared_ptr<const InterfaceFacts> FindInterface(const std::string& name) const;
    std::shared_ptr<Interface> OpenInterface(const std::string& name);

protected:
    // Those that are there now. FindInterface calls it with a time-out of 0.
    virtual Interfaces PresentInterfaces(std::uint64_t timeout_ms) const = 0;
    virtual std::shared_ptr<Interface> MakeInterface(const std::shared_ptr<const InterfaceFacts>& found) = 0;
    void OnClose() override;

    std::shared_ptr<const InterfaceFacts> ListedInterface(std::size_t index) const { return listed.Find(index); }
    // Null when it is not open.
    std::shared_ptr<Interface> FindOpen(const std::string& id) const;

private:
    friend class Interface;
    void Forget(const Interface& interface);

    const std::shared_ptr<Producer> producer;
    FoundList<const InterfaceFacts> listed{"interfaces"};
    ChildList<Interface> open;
};

} // namespace koro::kit
