#include "nodes/node.h"

#include <Base/GCException.h>
#include <GenApi/Pointer.h>
#include <GenApi/SelectorSet.h>
#include <algorithm>
#include <exception>

namespace GENAPI_NAMESPACE
{

using GENICAM_NAMESPACE::gcstring;

namespace
{

const size_t maxSelectors = 256; // of one node

// One selector and its place on the walk.
template <class Interface>
class Digit : public ISelectorDigit
{
public:
    explicit Digit(Interface& selector) : selector(selector) {}

    gcstring ToString() override { return selector.ToString(); }
    void GetState(CSelectorState& state) override { state.AddSelector(selector); }
    void GetSelectorList(FeatureList_t& list, bool) override { list.push_back(&selector); }

protected:
    Interface& selector;
};

// From the minimum to the maximum by the increment, as they are at each step: outer selectors may change them.
class IntegerDigit final : public Digit<IInteger>
{
public:
    explicit IntegerDigit(IInteger& selector) : Digit(selector), former(selector.GetValue()), present(former) {}

    bool SetFirst() override { return Set(selector.GetMin()); }
    bool SetNext(bool Tick) override
    {
        if (!Tick) return Set(present);
        const int64_t min = selector.GetMin();
        if (present < min) return Set(min);
        const int64_t inc = selector.GetInc();
        if (inc <= 0)
        {
            throw LOGICAL_ERROR_EXCEPTION(
                "The increment of selector '%s' must be above 0", selector.GetNode()->GetName().c_str());
        }
        const uint64_t step = static_cast<uint64_t>(inc);
        const uint64_t steps = (static_cast<uint64_t>(present) - static_cast<uint64_t>(min)) / step;
        const uint64_t last = (static_cast<uint64_t>(selector.GetMax()) - static_cast<uint64_t>(min)) / step;
        if (present >= selector.GetMax() || steps >= last) return false;
        return Set(static_cast<int64_t>(static_cast<uint64_t>(min) + (steps + 1) * step));
    }
    void Restore() override { selector.SetValue(former); }

private:
    bool Set(int64_t value)
    {
        selector.SetValue(value);
        present = value;
        return true;
    }

    const int64_t former;
    int64_t present;
};

class EnumerationDigit final : public Digit<IEnumeration>
{
public:
    explicit EnumerationDigit(IEnumeration& selector) : Digit(selector), former(selector.ToString()), present(former)
    {
        selector.GetEntries(entries);
    }

    bool SetFirst() override
    {
        next = 0;
        return SetNext(true);
    }
    // Skips entries that are not available now.
    bool SetNext(bool Tick) override
    {
        if (!Tick) return Set(present);
        while (next < entries.size())
        {
            const CEnumEntryPtr entry(entries[next++]);
            if (IsAvailable(entry)) return Set(entry->GetSymbolic());
        }
        return false;
    }
    void Restore() override { selector.FromString(former); }

private:
    bool Set(const gcstring& value)
    {
        selector.FromString(value);
        present = value;
        return true;
    }

    const gcstring former;
    gcstring present;
    NodeList_t entries;
    size_t next = 0;
};

class BooleanDigit final : public Digit<IBoolean>
{
public:
    explicit BooleanDigit(IBoolean& selector) : Digit(selector), former(selector.GetValue()), present(former) {}

    bool SetFirst() override { return Set(false); }
    bool SetNext(bool Tick) override
    {
        if (!Tick) return Set(present);
        return !present && Set(true);
    }
    void Restore() override { selector.SetValue(former); }

private:
    bool Set(bool value)
    {
        selector.SetValue(value);
        present = value;
        return true;
    }

    const bool former;
    bool present;
};

std::unique_ptr<ISelectorDigit> MakeDigit(IValue& selector)
{
    const EAccessMode mode = selector.GetAccessMode();
    if (!IsReadable(mode) || !IsWritable(mode)) return nullptr;
    if (IEnumeration* const enumeration = dynamic_cast<IEnumeration*>(&selector))
    {
        return std::make_unique<EnumerationDigit>(*enumeration);
    }
    if (IBoolean* const boolean = dynamic_cast<IBoolean*>(&selector)) return std::make_unique<BooleanDigit>(*boolean);
    if (IInteger* const integer = dynamic_cast<IInteger*>(&selector)) return std::make_unique<IntegerDigit>(*integer);
    return nullptr;
}

FeatureList_t SelectingFeatures(IBase* base)
{
    FeatureList_t list;
    const CSelectorPtr selected(base);
    if (selected.IsValid()) selected->GetSelectingFeatures(list);
    return list;
}

bool Holds(const FeatureList_t& list, const IValue* value)
{
    return std::find(list.begin(), list.end(), value) != list.end();
}

// Whether the selector itself names the node as selected.
bool Names(IValue& selector, IBase* base)
{
    const runtime::Node* const selected = dynamic_cast<const runtime::Node*>(base);
    const runtime::Node* const selecting = dynamic_cast<const runtime::Node*>(&selector);
    return !selected || !selecting || selected->IsNamedBy(*selecting);
}

// All selectors, the direct ones first, and for each those that select it.
struct Selectors
{
    explicit Selectors(IBase* base) : list(SelectingFeatures(base))
    {
        for (size_t i = 0; i < list.size(); ++i)
        {
            if (list.size() > maxSelectors) throw RUNTIME_EXCEPTION("A node must not have more than 256 selectors");
            selecting.push_back(SelectingFeatures(list[i]));
            names.push_back(Names(*list[i], base));
            for (IValue* const outer : selecting.back())
            {
                if (!Holds(list, outer)) list.push_back(outer);
            }
        }
    }

    // No selector is placed outside of one that selects it. Of two independent selectors the one that names the node is
    // placed outside of one that reaches it through other nodes; otherwise the later one is placed outside of the
    // earlier one.
    std::vector<IValue*> InnermostFirst()
    {
        std::vector<IValue*> ordered;
        std::vector<bool> taken(list.size());
        while (ordered.size() < list.size())
        {
            const size_t innermost = NextInnermost(taken);
            taken[innermost] = true;
            ordered.push_back(list[innermost]);
        }
        return ordered;
    }

private:
    size_t NextInnermost(const std::vector<bool>& taken) const
    {
        for (const bool named : {false, true})
        {
            for (size_t i = 0; i < list.size(); ++i)
            {
                if (!taken[i] && names[i] == named && !SelectsAnother(i, taken)) return i;
            }
        }
        throw LOGICAL_ERROR_EXCEPTION("Selectors select each other"); // a description that does so is not loaded
    }

    bool SelectsAnother(size_t selector, const std::vector<bool>& taken) const
    {
        for (size_t i = 0; i < list.size(); ++i)
        {
            if (!taken[i] && i != selector && Holds(selecting[i], list[selector])) return true;
        }
        return false;
    }

    FeatureList_t list;
    std::vector<FeatureList_t> selecting;
    std::vector<bool> names; // the node itself as selected
};

} // namespace

CSelectorSet::CSelectorSet(IBase* pBase) : outermostMoved(0), moved(false)
{
    std::vector<IValue*> selectors = Selectors(pBase).InnermostFirst();
    std::reverse(selectors.begin(), selectors.end());
    for (IValue* const selector : selectors)
    {
        if (std::unique_ptr<ISelectorDigit> digit = MakeDigit(*selector)) digits.push_back(std::move(digit));
    }
}

CSelectorSet::~CSelectorSet() {}

bool CSelectorSet::SetFirst()
{
    moved = true;
    outermostMoved = 0;
    bool good = !digits.empty();
    for (const std::unique_ptr<ISelectorDigit>& digit : digits)
        good = digit->SetFirst() && good;
    return good;
}

// A digit that is at its end goes back to its first value before the next outer one moves on.
bool CSelectorSet::SetNext(bool Tick)
{
    if (!Tick)
    {
        bool good = !digits.empty();
        for (const std::unique_ptr<ISelectorDigit>& digit : digits)
            good = digit->SetNext(false) && good;
        return good;
    }
    moved = true;
    for (size_t i = digits.size(); i-- > 0;)
    {
        outermostMoved = i;
        if (digits[i]->SetNext()) return true;
        if (i > 0) digits[i]->SetFirst();
    }
    return false;
}

void CSelectorSet::Restore()
{
    if (!moved) return;
    std::exception_ptr failure;
    for (const std::unique_ptr<ISelectorDigit>& digit : digits)
    {
        try
        {
            digit->Restore();
        }
        catch (const GENICAM_NAMESPACE::GenericException&)
        {
            if (!failure) failure = std::current_exception();
        }
    }
    if (failure) std::rethrow_exception(failure);
    moved = false;
}

gcstring CSelectorSet::ToString()
{
    CSelectorState state;
    GetState(state);
    gcstring text;
    for (bool more = state.SetFirst(); more; more = state.SetNext())
        text += (text.empty() ? "" : ", ") + state.GetNodeName() + "=" + state.GetNodeValue();
    return text;
}

void CSelectorSet::GetState(CSelectorState& state)
{
    for (const std::unique_ptr<ISelectorDigit>& digit : digits)
        digit->GetState(state);
}

void CSelectorSet::GetSelectorList(FeatureList_t& list, bool Incremental)
{
    for (size_t i = Incremental ? outermostMoved : 0; i < digits.size(); ++i)
        digits[i]->GetSelectorList(list);
}

} // namespace GENAPI_NAMESPACE
