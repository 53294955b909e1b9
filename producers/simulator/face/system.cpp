#include "producers/simulator/face/system.h"

#include "producers/simulator/camera/descriptions.h"
#include "producers/simulator/camera/producer_facts.h"
#include "producers/simulator/face/library.h"

#include <algorithm>
#include <utility>

namespace koro::simulator
{
namespace
{

PortFacts FactsOf(const Library& library)
{
    const ProducerFacts& facts = library.Facts();
    return {facts.id, facts.vendor, facts.model, facts.tlType, "TLSystem", "TLPort", facts.version};
}

} // namespace

System::System(std::shared_ptr<Library> owningLibrary)
    : kit::System(owningLibrary), library(std::move(owningLibrary)), plugs(*this, *library),
      port(FactsOf(*library), MakeRegisters())
{}

PortRegisters System::MakeRegisters()
{
    auto map = std::make_shared<RegisterMap>();
    AddCommonRegisters(*map, FactsOf(*library), systemDescription);
    map->AddText(0x100, 64, library->Info(TL_INFO_DISPLAYNAME).bytes);
    map->AddInteger(0x140, 4, TransportTypeNumber(library->Facts().tlType));
    map->AddInteger(0x144, 4, library->Facts().claimed.major);
    map->AddInteger(0x148, 4, library->Facts().claimed.minor);
    map->AddInteger(0x14C, 4, sfncVersionMajor);
    map->AddInteger(0x150, 4, sfncVersionMinor);
    map->AddAction(0x160, [this] { UpdateInterfaces(updateTimeout_ms); });
    map->AddInteger(
        0x164, 4, [this] { return updateTimeout_ms; }, [this](std::uint64_t value) { updateTimeout_ms = value; });
    map->AddText(0x1100, 256, library->Info(TL_INFO_NAME).bytes);
    map->AddText(0x2000, 4096, LoadedFile());
    AddInterfaceRegisters(*map);
    plugs.AddRegisters(*map);
    AddEventRegisters(*map, library->Facts().tlType);
    return {map, {LocalURL(systemDescription)}};
}

void System::AddInterfaceRegisters(RegisterMap& map)
{
    const auto maximum = [this]() -> std::uint64_t { return std::max<std::size_t>(NumInterfaces(), 1) - 1; };
    map.AddInteger(
        0x168, 4, [this] { return interfaceSelector; },
        [this, maximum](std::uint64_t value) {
            if (value > maximum()) RefuseValue("the list has fewer interfaces");
            interfaceSelector = value;
        });
    map.AddInteger(0x16C, 4, maximum);
    map.AddInteger(0x170, 4, [this] { return NumInterfaces(); });
    map.AddInteger(0x174, 4, [this]() -> std::uint64_t {
        return NumInterfaces() > 0 && SelectedInterface().tlType == "GEV" ? 1 : 0;
    });
    map.AddInteger(0x178, 4, [this] { return TransportTypeNumber(SelectedInterface().tlType); });
    map.AddInteger(0x180, 8, [this] { return SelectedInterface().network.mac; });
    map.AddInteger(0x188, 4, [this] { return SelectedInterface().network.ip; });
    map.AddInteger(0x18C, 4, [this] { return SelectedInterface().network.mask; });
    map.AddText(0x1200, 256, [this] { return SelectedInterface().id; });
    map.AddText(0x1300, 256, [this] { return SelectedInterface().displayName; });
}

const InterfaceModel& System::SelectedInterface() const
{
    if (interfaceSelector >= NumInterfaces()) throw Failure(GC_ERR_NOT_AVAILABLE, "the list was not updated yet");
    return *library->Interfaces()[interfaceSelector];
}

kit::System::Interfaces System::PresentInterfaces(std::uint64_t) const
{
    return {library->Interfaces().begin(), library->Interfaces().end()};
}

std::shared_ptr<kit::Interface> System::MakeInterface(const std::shared_ptr<const InterfaceFacts>& found)
{
    return std::make_shared<Interface>(
        std::static_pointer_cast<System>(shared_from_this()), std::static_pointer_cast<const InterfaceModel>(found));
}

std::shared_ptr<Interface> System::FindOpenInterface(const std::string& id) const
{
    return std::static_pointer_cast<Interface>(FindOpen(id));
}

bool System::SupportsEvent(EVENT_TYPE type) const noexcept
{
    return (type == connectionEvent && plugs.RecordBytes() > 0) || Module::SupportsEvent(type);
}

std::size_t System::MaxBlockBytes(EVENT_TYPE type) const noexcept
{
    return type == connectionEvent ? plugs.RecordBytes() : Module::MaxBlockBytes(type);
}

void System::OnClose()
{
    plugs.Stop();
    kit::System::OnClose();
}

} // namespace koro::simulator
