// UpdateListener: found and lost callbacks of one module, registered for the object's life; records their arguments.
//
// The exports of the family are its template arguments.
#pragma once

#include "tests/support/boundary.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace koro::test
{

template <
    class Parent, class Descriptor, class FoundHandle, class LostHandle, auto RegisterFound, auto UnregisterFound,
    auto RegisterLost, auto UnregisterLost, auto GetKey>
class UpdateListener
{
public:
    static constexpr auto registerFound = RegisterFound;
    static constexpr auto unregisterFound = UnregisterFound;
    static constexpr auto registerLost = RegisterLost;
    static constexpr auto unregisterLost = UnregisterLost;

    explicit UpdateListener(Parent parentHandle) : parent(parentHandle)
    {
        Require(RegisterFound(parent, OnFound, this, &foundHandle));
        Require(RegisterLost(parent, OnLost, this, &lostHandle));
    }
    ~UpdateListener() { Unregister(); }
    UpdateListener(const UpdateListener&) = delete;
    UpdateListener& operator=(const UpdateListener&) = delete;

    // Harmless when it was done before, or when the parent has gone.
    void Unregister() const
    {
        UnregisterFound(parent, foundHandle);
        UnregisterLost(parent, lostHandle);
    }

    FoundHandle foundHandle = nullptr;
    LostHandle lostHandle = nullptr;
    std::vector<Descriptor> found;
    std::vector<std::string> reports; // "found <key>" and "lost <id> (<size>)"
    std::function<void()> onFound;
    std::function<void()> onLost;
    std::function<void()> onReport;

private:
    static void OnFound(Descriptor descriptor, void* context)
    {
        auto& listener = *static_cast<UpdateListener*>(context);
        listener.found.push_back(descriptor);
        listener.Report("found " + GetText(GetKey, descriptor), listener.onFound);
    }

    static void OnLost(const char* id, std::size_t size, void* context)
    {
        auto& listener = *static_cast<UpdateListener*>(context);
        listener.Report("lost " + std::string(id) + " (" + std::to_string(size) + ")", listener.onLost);
    }

    void Report(const std::string& report, const std::function<void()>& reaction)
    {
        reports.push_back(report);
        if (reaction) reaction();
        if (onReport) onReport();
    }

    const Parent parent;
};

} // namespace koro::test
