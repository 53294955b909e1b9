#include "producers/simulator/system.h"

#include "producers/simulator/library.h"
#include "producers/simulator/producer_facts.h"

#include <utility>

namespace koro::simulator
{
namespace
{

constexpr std::uint64_t pathRegister = 0x200;
constexpr std::size_t pathRegisterBytes = 256;

} // namespace

System::System(std::shared_ptr<Library> owningLibrary)
    : library(std::move(owningLibrary)),
      port(
          {library->Id(), vendorName, modelName, library->TLType(), "TLSystem", "TLPort", producerVersion},
          &systemDescription)
{
    port.Registers().AddText(pathRegister, pathRegisterBytes, Library::PathName(), RegisterAccess::ReadOnly);
}

const std::string& System::Id() const noexcept
{
    return library->Id();
}

bool System::UpdateInterfaces()
{
    const std::lock_guard lock(mutex);
    const bool changed = !isListed && !library->Interfaces().empty();
    isListed = true;
    return changed;
}

std::size_t System::NumInterfaces() const
{
    const std::lock_guard lock(mutex);
    return isListed ? library->Interfaces().size() : 0;
}

std::string System::InterfaceIdAt(std::uint32_t index) const
{
    const std::size_t number = NumInterfaces();
    if (index >= number) throw Failure(GC_ERR_INVALID_INDEX, "the list has " + std::to_string(number) + " interfaces");
    return library->Interfaces()[index]->id;
}

std::shared_ptr<const InterfaceModel> System::FindInterface(const std::string& name) const
{
    for (const auto& model : library->Interfaces())
        if (model->id == name || model->displayName == name) return model;
    throw Failure(GC_ERR_INVALID_ID, "there is no interface '" + name + "'");
}

std::shared_ptr<Interface> System::OpenInterface(const std::string& name)
{
    const auto model = FindInterface(name);
    return interfaces.Open(model->id, [&] {
        return std::make_shared<Interface>(std::static_pointer_cast<System>(shared_from_this()), model);
    });
}

void System::OnClose()
{
    interfaces.CloseAll();
    library->Forget(*this);
}

} // namespace koro::simulator
