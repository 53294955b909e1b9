#include "producers/simulator/face/system.h"

#include "producers/simulator/camera/descriptions.h"
#include "producers/simulator/camera/producer_facts.h"
#include "producers/simulator/face/library.h"

#include <algorithm>
#include <system_register_names.h>
#include <utility>

namespace koro::simulator
{
namespace
{

// The registers that the kit adds are where the description expects them.
static_assert(registers::system::TLID.address == idRegister && registers::system::TLID.bytes == idRegisterBytes);
static_assert(registers::system::TLVendorName.address == vendorRegister);
static_assert(registers::system::TLModelName.address == modelRegister);
static_assert(registers::system::TLVersion.address == versionRegister);

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
    map->AddText(registers::system::TLDisplayName, library->Info(TL_INFO_DISPLAYNAME).bytes);
    map->AddInteger(registers::system::TLTypeReg, TransportTypeNumber(library->Facts().tlType));
    map->AddInteger(registers::system::GenTLVersionMajor, library->Facts().claimed.major);
    map->AddInteger(registers::system::GenTLVersionMinor, library->Facts().claimed.minor);
    map->AddInteger(registers::system::GenTLSFNCVersionMajor, sfncVersionMajor);
    map->AddInteger(registers::system::GenTLSFNCVersionMinor, sfncVersionMinor);
    map->AddAction(registers::system::InterfaceUpdateListReg, [this] { UpdateInterfaces(updateTimeout_ms); });
    map->AddInteger(
        registers::system::InterfaceUpdateTimeoutReg, [this] { return updateTimeout_ms; },
        [this](std::uint64_t value) { updateTimeout_ms = value; });
    map->AddText(registers::system::TLFileName, library->Info(TL_INFO_NAME).bytes);
    map->AddText(registers::system::TLPath, LoadedFile());
    AddInterfaceRegisters(*map);
    plugs.AddRegisters(*map);
    AddEventRegisters(*map, library->Facts().tlType);
    return {map, {LocalURL(systemDescription)}};
}

void System::AddInterfaceRegisters(RegisterMap& map)
{
    const auto maximum = [this]() -> std::uint64_t { return std::max<std::size_t>(NumInterfaces(), 1) - 1; };
    map.AddInteger(
        registers::system::InterfaceSelectorReg, [this] { return interfaceSelector; },
        [this, maximum](std::uint64_t value) {
            if (value > maximum()) RefuseValue("the list has fewer interfaces");
            interfaceSelector = value;
        });
    map.AddInteger(registers::system::InterfaceSelectorMax, maximum);
    map.AddInteger(registers::system::InterfaceCount, [this] { return NumInterfaces(); });
    map.AddInteger(registers::system::InterfaceIsGigEVision, [this]() -> std::uint64_t {
        return NumInterfaces() > 0 && SelectedInterface().tlType == "GEV" ? 1 : 0;
    });
    map.AddInteger(
        registers::system::InterfaceTypeReg, [this] { return TransportTypeNumber(SelectedInterface().tlType); });
    map.AddInteger(registers::system::GevInterfaceMACAddress, [this] { return SelectedInterface().network.mac; });
    map.AddInteger(registers::system::GevInterfaceDefaultIPAddress, [this] { return SelectedInterface().network.ip; });
    map.AddInteger(
        registers::system::GevInterfaceDefaultSubnetMask, [this] { return SelectedInterface().network.mask; });
    map.AddText(registers::system::InterfaceID, [this] { return SelectedInterface().id; });
    map.AddText(registers::system::InterfaceDisplayName, [this] { return SelectedInterface().displayName; });
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
