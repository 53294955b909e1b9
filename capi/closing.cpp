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
    explicit Subtree(Instance::Holds roots) : numRoots(roots.size())
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

    // From now on no call gets inside, but those of this thread while it is ending objects.
    void Hide()
    {
        for (std::size_t index = 0; index < parts.size(); ++index)
        {
            auto& [hold, above, isUsed] = parts[index];
            hold->Object().MarkEnded();
            isUsed = index < numRoots ? hold->HideEntry() : hold->HideEntryWithParent();
        }
    }

    // What a call is inside keeps what is above it, and that in turn what is above; so do the roots, which this thread
    // is inside.
    void KeepAbove()
    {
        for (std::size_t index = parts.size(); index-- > numRoots;)
        {
            if (!parts[index].isUsed) continue;
            isUsedBelow = true;
            Part& above = parts[parts[index].above];
            above.isUsed = true;
            parts[index].hold->Keep(above.hold);
        }
        for (std::size_t index = 0; index < numRoots; ++index)
            parts[index].hold->Keep(parts[index].hold->HoldAbove());
    }

    bool IsUsed() const
    {
        return std::any_of(parts.begin(), parts.end(), [](const Part& part) { return part.isUsed; });
    }
    // Ends the entries of the roots; of what is below them too, if a call is inside anywhere. Then what is below one
    // root, and nobody is inside, goes after its own close.
    void RemoveEntries()
    {
        const bool isUsed = IsUsed();
        for (std::size_t index = 0; index < (isUsed ? parts.size() : numRoots); ++index)
            parts[index].hold->RemoveEntry();
        if (isUsed && !isUsedBelow) parts.front().hold->Object().KeepUntilItsEnd(TakeBelow());
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
        bool isUsed = false;   // by a call, or by a part below
    };

    // An object may have several holds: what is below it comes once.
    void AddBelow(std::size_t index)
    {
        const Instance& object = parts[index].hold->Object();
        if (!seen.insert(&object).second) return;
        for (auto& hold : object.HoldsBelow())
        {
            parts.push_back({std::move(hold), index});
            AddBelow(parts.size() - 1);
        }
    }

    Instance::Holds TakeBelow()
    {
        Instance::Holds below;
        for (std::size_t index = numRoots; index < parts.size(); ++index)
            below.push_back(std::move(parts[index].hold));
        parts.resize(numRoots);
        return below;
    }

    const std::size_t numRoots;
    std::vector<Part> parts;
    std::unordered_set<const Instance*> seen;
    bool isUsedBelow = false;
};

// One after the other, since a thread may take its time to end: whoever else is closing meanwhile finds no references
// of this one.
template <class Step>
void ForEachObject(const std::vector<std::weak_ptr<Hold>>& holds, Step&& step)
{
    for (const auto& weakHold : holds)
    {
        if (const auto hold = weakHold.lock()) step(hold->Object());
    }
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
    auto roots = hold->Object().OwnHolds();
    hold.reset();
    EndActivity(roots);

    std::unique_lock lock(endMutex);
    Subtree subtree(std::move(roots));
    subtree.Hide();
    subtree.KeepAbove();
    subtree.RemoveEntries();
    lock.unlock();
    const EndingScope scope;
    subtree.EndActivityThatCameMeanwhile();
    subtree.Drop();
}

EndOfAll::EndOfAll(const Instance::Holds& roots)
{
    std::unique_lock lock(endMutex);
    Subtree subtree(roots);
    subtree.Hide();
    subtree.KeepAbove();
    lock.unlock();
    subtree.EndActivityThatCameMeanwhile();
}

} // namespace koro::internal
