// TGenTLChildManager: the list of the children of a module in the producer's tree.
//
// An update queries the producer for the current children and compares their keys with the stored ones. It keeps the
// object of a child that is still there, and reports lost and found children. Only the keys are compared. Thread-safe;
// `listMutex` is held during the producer calls of an update, never during a callback. Reports are delivered in the
// order of the updates that made them, so a child is reported as found before it is reported as lost.
#pragma once

#include "base/callback_registry.h"
#include "gentl/bounds.h"
#include "gentl/gentl_caller.h"
#include "gentl/report_queue.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace koro::internal
{

template <class Descriptor, class Key, class Index, class Parent>
class TGenTLChildManager
{
public:
    using FoundCallbacks = TCallbackManager<std::shared_ptr<Descriptor>>;
    using LostCallbacks = TCallbackManager<Key>;
    using ChildList = std::vector<std::shared_ptr<Descriptor>>;

    TGenTLChildManager(const TGenTLChildManager&) = delete;
    TGenTLChildManager& operator=(const TGenTLChildManager&) = delete;
    virtual ~TGenTLChildManager() = default;

    // Reads the producer's list at the first call and whenever the producer reports a change. The new list is published
    // before the first callback; all lost callbacks come before all found callbacks, and found ones in the producer's
    // order. A failure leaves the published list and reports nothing. Inside a found or lost callback the update
    // returns before its reports are delivered, and throws the standard deadlock error when too many updates from
    // inside callbacks have found something; see gentl/report_queue.h. After the owner has been ended, for example by a
    // callback, no further callback begins, and the update succeeds nevertheless.
    void UpdateChildren(std::uint64_t timeout_ms)
    {
        const auto parent = HoldParent();
        reports.RefuseEndlessAdditions();
        if (WalkIfChanged(timeout_ms)) reports.Deliver();
    }

    // The published list, without an update; never null. An update publishes a new list, so that asking for each child
    // of a long one copies nothing.
    std::shared_ptr<const ChildList> Children() const
    {
        const auto parent = HoldParent();
        return ListedChildren();
    }
    // Whether the child is in the published list. The time does not grow with the list.
    bool IsListed(const Descriptor& child) const
    {
        const auto parent = HoldParent();
        const std::lock_guard lock(listMutex);
        return publishedChildren.contains(&child);
    }

    typename FoundCallbacks::Handle RegisterFoundCallback(typename FoundCallbacks::Function function)
    {
        const auto parent = HoldParent();
        return foundCallbacks.RegisterCallback(std::move(function));
    }
    void UnregisterFoundCallback(typename FoundCallbacks::Handle handle)
    {
        const auto parent = HoldParent();
        foundCallbacks.UnregisterCallback(handle);
    }

    typename LostCallbacks::Handle RegisterLostCallback(typename LostCallbacks::Function function)
    {
        const auto parent = HoldParent();
        return lostCallbacks.RegisterCallback(std::move(function));
    }
    void UnregisterLostCallback(typename LostCallbacks::Handle handle)
    {
        const auto parent = HoldParent();
        lostCallbacks.UnregisterCallback(handle);
    }

protected:
    explicit TGenTLChildManager(GenTLCaller genTLCaller) : caller(std::move(genTLCaller)) {}

    // The same for the owner itself, which may be the last object that holds its parent.
    std::shared_ptr<const ChildList> ListedChildren() const
    {
        const std::lock_guard lock(listMutex);
        return children;
    }

    // Functions that the owner supplies. The names appear in error messages.
    virtual GenTL::GC_ERROR ProducerUpdateChildren(GenTL::bool8_t* changed, std::uint64_t timeout_ms) = 0;
    virtual GenTL::GC_ERROR ProducerNumChildren(std::uint32_t* count) = 0;
    virtual GenTL::GC_ERROR ProducerChildID(Index index, Key* id) = 0;
    virtual const char* UpdateFunctionName() const = 0;
    virtual const char* NumChildrenFunctionName() const = 0;
    virtual const char* ChildIDFunctionName() const = 0;
    // The parent of the owner, held during each public operation; throws when it has ended.
    virtual std::shared_ptr<const void> HoldParent() const = 0;
    // The owner itself; throws std::bad_weak_ptr when it is being destroyed.
    virtual std::shared_ptr<Parent> SharedOwner() = 0;
    // Whether the owner is alive only for running calls.
    virtual bool IsOwnerEnded() const = 0;

private:
    using ChildMap = std::unordered_map<Key, std::shared_ptr<Descriptor>>;

    // Whether there is something to report.
    bool WalkIfChanged(std::uint64_t timeout_ms)
    {
        const std::lock_guard lock(listMutex);
        GenTL::bool8_t changed = 0;
        Check(UpdateFunctionName(), ProducerUpdateChildren(&changed, timeout_ms));
        if (updatedOnce && !changed) return false;

        std::uint32_t count = 0;
        Check(NumChildrenFunctionName(), ProducerNumChildren(&count));
        CheckClaim(childrenBound, count, NumChildrenFunctionName());
        return Walk(count);
    }

    // A child that is still there is removed from `childrenByKey` at once. After a failure in the middle the next
    // update therefore takes the children that were matched before for new ones: they are reported as found, and their
    // old objects end without a lost report.
    bool Walk(std::uint32_t count)
    {
        std::vector<ReportQueue::Report> found;
        const auto newList = std::make_shared<ChildList>();
        std::unordered_set<const Descriptor*> newlyListed;
        ChildMap newMap;
        for (Index index = 0; index < count; ++index)
        {
            Key id{};
            Check(ChildIDFunctionName(), ProducerChildID(index, &id));
            std::shared_ptr<Descriptor> descriptor;
            if (const auto stayed = childrenByKey.find(id); stayed != childrenByKey.end())
            {
                descriptor = std::move(stayed->second);
                childrenByKey.erase(stayed);
            }
            else
            {
                descriptor = std::make_shared<Descriptor>(id, SharedOwner(), caller.Proxy());
                found.push_back([this, descriptor] { Trigger(foundCallbacks, descriptor); });
            }
            newList->push_back(descriptor);
            newlyListed.insert(descriptor.get());
            newMap.emplace(id, std::move(descriptor)); // the first of two equal keys stays
        }
        auto news = LostReports();
        std::move(found.begin(), found.end(), std::back_inserter(news));
        const bool hasNews = !news.empty();
        reports.Add(std::move(news));
        childrenByKey = std::move(newMap);
        children = newList;
        publishedChildren = std::move(newlyListed);
        updatedOnce = true;
        return hasNews;
    }

    // The reports of the remaining children, which end with their reports, outside of the lock.
    std::vector<ReportQueue::Report> LostReports()
    {
        std::vector<ReportQueue::Report> lost;
        for (const auto& [key, descriptor] : childrenByKey)
            lost.push_back([this, key = key, descriptor = descriptor] { Trigger(lostCallbacks, key); });
        return lost;
    }

    template <class Callbacks, class Subject>
    void Trigger(Callbacks& callbacks, const Subject& subject)
    {
        callbacks.TriggerCallbackWhile([this] { return !IsOwnerEnded(); }, subject);
    }

    void Check(const char* function, GenTL::GC_ERROR result) const { CheckResult(function, result, *caller.Proxy()); }

    const GenTLCaller caller;
    // In the producer's order; the list does not change.
    std::shared_ptr<const ChildList> children = std::make_shared<ChildList>();
    std::unordered_set<const Descriptor*> publishedChildren; // the same children
    ChildMap childrenByKey;
    FoundCallbacks foundCallbacks;
    LostCallbacks lostCallbacks;
    ReportQueue reports;
    // Guards children, publishedChildren and childrenByKey. The only lock of the library that is taken under it is that
    // of `reports`.
    mutable std::mutex listMutex;
    std::atomic<bool> updatedOnce{false};
};

// The id of a child as a string, by the rules of the standard: one query for the size, one for the text. `query(buffer,
// size)` is the producer's function with all other arguments bound.
template <class Query>
GenTL::GC_ERROR QueryTextID(Query&& query, const char* function, std::string* id)
{
    std::size_t size = 0;
    if (const auto result = query(nullptr, &size); result != GenTL::GC_ERR_SUCCESS) return result;
    CheckClaim(textBound, size, function);
    std::vector<char> text(size);
    if (const auto result = query(text.data(), &size); result != GenTL::GC_ERR_SUCCESS) return result;
    id->assign(text.begin(), std::find(text.begin(), text.end(), '\0'));
    return GenTL::GC_ERR_SUCCESS;
}

} // namespace koro::internal
