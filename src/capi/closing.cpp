#include "capi/closing.h"

#include <algorithm>
#include <cstddef>
#include <mutex>
#include <unordered_set>
#include <utility>
#include <vector>

namespace koro::internal
{

namespace
{

constinit std::mutex
    endMutex; // who is inside is worked out by one thread at a time; nothing is called or closed under it

// The holds of objects that end, and of all that is below them; each before what is below it.
class Subtree
{
public:
    // For an end it marks the objects before it looks, so that no handle is missed that another thread makes meanwhile.
    explicit Subtree(Instance::Holds roots, const EndingScope* ofEnd = nullptr) : end(ofEnd), numRoots(roots.size())
    {
        for (auto& root : roots)
            parts.push_back({std::move(root)});
        for (std::size_t index = 0; index < numRoots; ++index)
            AddBelow(index);
    }

    // Between the first end of waits and threads and the hiding, others may have opened and begun more.
    void EndActivityThatCameMeanwhile() const
    {
        for (const auto& part : parts)
            part.hold->Object().EndWaits();
        for (const auto& part : parts)
            part.hold->Object().EndThreads();
    }
    std::vector<std::weak_ptr<Hold>> WeakHolds() const
    {
        std::vector<std::weak_ptr<Hold>> holds;
        for (const auto& part : parts)
            holds.push_back(part.hold);
        return holds;
    }

    // From now on no call gets inside, but those of this thread. What keeps the hold above
    // already is about to be closed by the library's close on another thread.
    void Hide()
    {
        for (std::size_t index = 0; index < parts.size(); ++index)
        {
            auto& [hold, above, isUsed] = parts[index];
            isUsed = index < numRoots ? hold->HideEntry() : hold->HideEntryWithParent();
            if (hold->KeepsAbove()) isUsed = true;
        }
    }
    // For the library's close: it takes the entries out kind by kind, and is inside what it closes.
    void CountAllAsUsed()
    {
        for (auto& part : parts)
            part.isUsed = true;
    }

    // Where a call is inside further down, all that is below the roots keeps what is above it: also what was idle when
    // it was hidden, since EndActivity on another thread may have come to it afterwards, and may be the last to leave
    // it. So do the roots, which this thread is inside.
    void KeepAbove()
    {
        const std::size_t numKeeping = IsUsedBelow() ? parts.size() : numRoots;
        for (std::size_t index = 0; index < numKeeping; ++index)
        {
            auto& [hold, above, isUsed] = parts[index];
            hold->Keep(index < numRoots ? hold->HoldAbove() : parts[above].hold);
        }
    }

    // Ends the entries of the roots; of what is below them too, if a call is inside anywhere. Where nobody is inside
    // further down than the roots, each object takes what is below it to its own end.
    void RemoveEntries()
    {
        const bool isUsed = IsUsedFrom(0);
        for (std::size_t index = 0; index < parts.size(); ++index)
        {
            if (isUsed || index < numRoots)
                parts[index].hold->RemoveEntry();
            else
                parts[index].hold->LeaveToObjectAbove();
        }
        if (isUsed && !IsUsedBelow()) GiveToObjectsAbove();
    }
    // What nobody is inside closes here, from the leaves. Where the entries below have stayed, these go with the roots.
    void Drop()
    {
        while (!parts.empty())
            parts.pop_back();
    }

private:
    struct Part
    {
        std::shared_ptr<Hold> hold;
        std::size_t above = 0; // its place in the list
        bool isUsed = false;   // by a call
    };

    bool IsUsedFrom(std::size_t first) const
    {
        return std::any_of(parts.begin() + static_cast<std::ptrdiff_t>(first), parts.end(), [](const Part& part) {
            return part.isUsed;
        });
    }
    bool IsUsedBelow() const { return IsUsedFrom(numRoots); }

    // An object may have several holds: what is below it comes once.
    void AddBelow(std::size_t index)
    {
        Instance& object = parts[index].hold->Object();
        if (!seen.insert(&object).second) return;
        if (end) object.MarkEnded(*end);
        for (auto& hold : object.HoldsBelow())
        {
            parts.push_back({std::move(hold), index});
            AddBelow(parts.size() - 1);
        }
    }

    // Each to its own, so that the order is the one without a call. The references here stay for what comes before the
    // drop, and are not the last ones then.
    void GiveToObjectsAbove() const
    {
        for (std::size_t index = numRoots; index < parts.size(); ++index)
            parts[parts[index].above].hold->Object().KeepUntilItsEnd(parts[index].hold);
    }

    const EndingScope* const end;
    const std::size_t numRoots;
    std::vector<Part> parts;
    std::unordered_set<const Instance*> seen;
};

// One after the other, since a thread may take its time to end: whoever else is closing meanwhile finds no references
// of this one. A reference to what has been hidden meanwhile was not counted as a call, and need not be: either what is
// below keeps what is above, see KeepAbove, or an object closes after those above it anyway.
template <class Step>
void ForEachObject(const std::vector<std::weak_ptr<Hold>>& holds, Step&& step)
{
    for (const auto& weakHold : holds)
    {
        if (const auto hold = weakHold.lock()) step(hold->Object());
    }
}

// Not before the waits have ended: another thread may have made further handles meanwhile.
Instance::Holds OwnHoldsAt(const EndingScope& end, std::shared_ptr<Hold> hold)
{
    hold->Object().MarkEnded(end);
    return hold->Object().OwnHolds();
}

} // namespace

void EndActivity(const Instance::Holds& roots)
{
    const auto holds = Subtree(roots).WeakHolds();
    ForEachObject(holds, [](const Instance& object) { object.RefuseEndInCallback(); });
    ForEachObject(holds, [](Instance& object) { object.EndWaits(); });
    ForEachObject(holds, [](Instance& object) { object.EndThreads(); });
}

void EndObject(std::shared_ptr<Hold> hold)
{
    EndActivity({hold});

    const EndingScope scope;
    std::unique_lock lock(endMutex);
    Subtree subtree(OwnHoldsAt(scope, std::move(hold)), &scope);
    subtree.Hide();
    subtree.KeepAbove();
    subtree.RemoveEntries();
    lock.unlock();
    subtree.EndActivityThatCameMeanwhile();
    subtree.Drop();
}

EndOfAll::EndOfAll(const Instance::Holds& roots)
{
    std::unique_lock lock(endMutex);
    Subtree subtree(roots, &scope);
    subtree.Hide();
    subtree.CountAllAsUsed();
    subtree.KeepAbove();
    lock.unlock();
    subtree.EndActivityThatCameMeanwhile();
}

} // namespace koro::internal
