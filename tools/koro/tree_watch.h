// TreeWatch: what comes and goes below the producers: interfaces and cameras found and lost, by the lists; cameras
// disconnected and reconnected, by what a producer reports itself.
//
// Owned by one command; one thread at a time, while reports come on threads of the library.
#pragma once

#include "tools/koro/producer_watch.h"
#include <koro/koro.hpp>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace koro::tool
{

struct TreeChange
{
    const char* what;   // "found", "lost", "disconnected", "reconnected", "failed"
    std::string place;  // "producer file", "interface", "interface:camera"
    std::string detail; // for people: what it is, or why it failed
};

class TreeWatch
{
public:
    // `changed` is called for each change, on this thread or one of the library; never by two at a time. Throws
    // koro::Error when none of the producers can be opened.
    TreeWatch(const std::vector<std::string>& producers, std::function<void(const TreeChange&)> changed);
    TreeWatch(const TreeWatch&) = delete;
    TreeWatch& operator=(const TreeWatch&) = delete;
    ~TreeWatch();

    // Reads all lists anew; the first time everything that is there is found. What fails is a change, told once until
    // it works again.
    void Update();

private:
    class Producer;
    struct Teller;

    WatchedWork work; // ends when all below is closed
    std::unique_ptr<Teller> teller;
    Library library;
    std::vector<std::unique_ptr<Producer>> producers;
    ClosingMark mark; // last
};

} // namespace koro::tool
