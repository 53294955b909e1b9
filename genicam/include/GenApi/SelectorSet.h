// CSelectorSet: iterates over all combinations of the values of a node's selectors; the outermost selector changes
// slowest.
//
// Used for one iteration over a map that must outlive it; hold the lock of the map meanwhile. The selectors really
// change their values; only Restore sets them back.
#pragma once

#include <GenApi/SelectorState.h>
#include <GenApi/Types.h>
#include <memory>
#include <vector>

namespace GENAPI_NAMESPACE
{

GENICAM_INTERFACE GENAPI_DECL_ABSTRACT ISelectorDigit
{
    virtual bool SetFirst() = 0;
    // Returns false past the last value. Without Tick the current value is written again.
    virtual bool SetNext(bool Tick = true) = 0;
    virtual void Restore() = 0;
    virtual GENICAM_NAMESPACE::gcstring ToString() = 0;
    virtual void GetState(CSelectorState&) = 0;
    // Incremental: only the selectors that the last step changed.
    virtual void GetSelectorList(FeatureList_t&, bool Incremental = false) = 0;
    virtual ~ISelectorDigit() {}
};

class GENAPI_DECL CSelectorSet : public ISelectorDigit
{
public:
    // Uses the nodes that select this one, directly or through each other. A selector that cannot be read and written
    // now is left out.
    CSelectorSet(IBase* pBase);
    ~CSelectorSet() override;
    CSelectorSet(const CSelectorSet&) = delete;
    CSelectorSet& operator=(const CSelectorSet&) = delete;

    bool IsEmpty() const { return digits.empty(); }
    bool SetFirst() override;
    bool SetNext(bool Tick = true) override;
    // Writes the previous values, outermost first. A value that is refused does not prevent the others; its exception
    // is thrown at the end. Writes nothing when nothing was changed.
    void Restore() override;
    // "Outer=1, Inner=2"
    GENICAM_NAMESPACE::gcstring ToString() override;
    void GetState(CSelectorState& state) override;
    void GetSelectorList(FeatureList_t& list, bool Incremental = false) override;

private:
    std::vector<std::unique_ptr<ISelectorDigit>> digits; // outermost first
    size_t outermostMoved;
    bool moved;
};

} // namespace GENAPI_NAMESPACE
