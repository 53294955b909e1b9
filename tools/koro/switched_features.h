// SwitchedFeatures: features that are switched on for one run of a command and switched back at its end.
//
// Owned by one command; one thread at a time. The node map outlives it.
#pragma once

#include <koro/koro.hpp>

#include <string>
#include <vector>

namespace koro::tool
{

class SwitchedFeatures
{
public:
    explicit SwitchedFeatures(const NodeMap& map) : nodes(map) {}
    SwitchedFeatures(const SwitchedFeatures&) = delete;
    SwitchedFeatures& operator=(const SwitchedFeatures&) = delete;
    // Switches back in reverse order; what the camera refuses by then is left.
    ~SwitchedFeatures();

    // A feature to `on`, unless it is that already. Throws koro::Error, or ToolError when there is no such feature.
    void Switch(const std::string& feature, const std::string& on);
    // The feature to `on` for these entries of its selector. Throws ToolError for an entry that the selector does not
    // have, and koro::Error.
    void SwitchEntries(
        const std::string& selector, const std::string& feature, const std::string& on,
        const std::vector<std::string>& entries);
    // The same for all entries, but for those that cannot be chosen or switched.
    void SwitchAllEntries(const std::string& selector, const std::string& feature, const std::string& on);
    // Nothing is switched back: the camera does not answer, and each access would wait for it.
    void Forget() { changes.clear(); }

private:
    struct Change
    {
        std::string feature;
        std::string before;
        std::string selector; // empty for a feature without
        std::string entry;
    };

    void SwitchEntry(
        const std::string& selector, const std::string& entry, const std::string& feature, const std::string& on);
    void Restore(const Change& change) const;

    NodeMap nodes;
    std::vector<Change> changes;
};

} // namespace koro::tool
