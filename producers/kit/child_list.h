// ChildList: the open children of a module. Any thread; no child's code runs under the lock but its constructor.
#pragma once

#include "producers/kit/failure.h"
#include "producers/kit/handle_registry.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace koro::kit
{

// Child has Id().
template <typename Child>
class ChildList
{
public:
    // `make` opens the child; a child of that id may be open once.
    template <typename Make>
    std::shared_ptr<Child> Open(const std::string& id, const Make& make)
    {
        const std::lock_guard lock(mutex);
        if (closed) throw Failure(GC_ERR_INVALID_HANDLE, "the parent was closed meanwhile");
        if (FindLocked(id)) throw Failure(GC_ERR_RESOURCE_IN_USE, "'" + id + "' is open already");
        std::shared_ptr<Child> child = make();
        children.push_back(child);
        Handles().Add(child);
        return child;
    }

    std::shared_ptr<Child> Find(const std::string& id) const
    {
        const std::lock_guard lock(mutex);
        return FindLocked(id);
    }

    void Forget(const Child& child)
    {
        std::shared_ptr<Child> last; // released behind the lock
        const std::lock_guard lock(mutex);
        const auto found =
            std::find_if(children.begin(), children.end(), [&](const auto& entry) { return entry.get() == &child; });
        if (found == children.end()) return;
        last = std::move(*found);
        children.erase(found);
    }

    // Nothing opens any more afterwards.
    void CloseAll()
    {
        std::vector<std::shared_ptr<Child>> closing;
        {
            const std::lock_guard lock(mutex);
            closed = true;
            closing.swap(children);
        }
        for (const auto& child : closing)
            child->Close();
    }

private:
    std::shared_ptr<Child> FindLocked(const std::string& id) const
    {
        for (const auto& child : children)
            if (child->Id() == id) return child;
        return nullptr;
    }

    mutable std::mutex mutex;
    std::vector<std::shared_ptr<Child>> children;
    bool closed = false;
};

} // namespace koro::kit
