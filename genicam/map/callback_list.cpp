#include "map/callback_list.h"

#include "map/node_map.h"

#include <utility>

namespace GENAPI_NAMESPACE::runtime
{

CallbackList::CallbackList(NodeMap& owner, std::vector<CNodeCallback*> called)
    : map(&owner), callbacks(std::move(called))
{
    map->BeginCalling();
}

CallbackList::CallbackList(CallbackList&& other) noexcept
    : map(std::exchange(other.map, nullptr)), callbacks(std::move(other.callbacks))
{}

CallbackList& CallbackList::operator=(CallbackList&& other) noexcept
{
    Release();
    map = std::exchange(other.map, nullptr);
    callbacks = std::move(other.callbacks);
    return *this;
}

CallbackList::~CallbackList()
{
    Release();
}

void CallbackList::Call(ECallbackType type) const
{
    for (CNodeCallback* const callback : callbacks)
    {
        if (map->IsRegistered(callback)) (*callback)(type);
    }
}

void CallbackList::Release()
{
    if (map) map->EndCalling();
    map = nullptr;
}

} // namespace GENAPI_NAMESPACE::runtime
