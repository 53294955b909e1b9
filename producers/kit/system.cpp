#include "producers/kit/system.h"

namespace koro::kit
{

std::shared_ptr<const InterfaceFacts> System::FindInterface(const std::string& name) const
{
    for (const auto& found : PresentInterfaces(0))
        if (found->id == name || found->displayName == name) return found;
    throw Failure(GC_ERR_INVALID_ID, "there is no interface '" + name + "'");
}

std::shared_ptr<Interface> System::OpenInterface(const std::string& name)
{
    const auto found = FindInterface(name);
    return open.Open(found->id, [&] { return MakeInterface(found); });
}

std::shared_ptr<Interface> System::FindOpen(const std::string& id) const
{
    return open.Find(id);
}

void System::Forget(const Interface& interface)
{
    open.Forget(interface);
}

void System::OnClose()
{
    open.CloseAll();
    producer->Forget(*this);
}

} // namespace koro::kit
