// Producer: a .cti file between GCInitLib and GCCloseLib.
//
// A producer of ours derives from it and hands a function that makes one to its Runtime. Any thread.
#pragma once

#include "producers/kit/call_watch.h"
#include "producers/kit/child_list.h"
#include "producers/kit/info_value.h"
#include "producers/kit/version.h"

#include <memory>
#include <string>

namespace koro::kit
{

class System;

// What the producer calls itself.
struct ProducerFacts
{
    std::string id;
    std::string vendor;
    std::string model;
    std::string version;
    std::string tlType;
    GenTLVersion claimed = newestVersion;
    bool answersNewerFunctions = false; // else functions that came after `claimed` are not implemented
};

class Producer : public std::enable_shared_from_this<Producer>
{
public:
    explicit Producer(ProducerFacts producerFacts);
    Producer(const Producer&) = delete;
    Producer& operator=(const Producer&) = delete;
    virtual ~Producer();

    const ProducerFacts& Facts() const noexcept { return facts; }
    // GCGetInfo and TLGetInfo.
    InfoValue Info(TL_INFO_CMD command) const;

    // TLOpen. The system may be open once.
    std::shared_ptr<System> OpenSystem();
    // Closes the system, if it is open; nothing opens any more afterwards.
    void Close();

    // A second GCInitLib fails; by default they count.
    virtual bool InitIsStrict() const noexcept { return false; }
    // Looks at each call. Null when none need to be looked at.
    virtual std::shared_ptr<CallWatch> Watch() const { return nullptr; }
    virtual GC_ERROR DeadHandleCode() const noexcept { return GC_ERR_INVALID_HANDLE; }
    // Bytes that one write to a port may have; 0: no bound but the usual one.
    virtual std::size_t PortWriteLimit() const noexcept { return 0; }

protected:
    virtual std::shared_ptr<System> MakeSystem() = 0;
    // The system has its handle by now. Throws what the opening fails with.
    virtual void OnOpened(System&) {}

private:
    friend class System;
    void Forget(const System& system);

    const ProducerFacts facts;
    ChildList<System> systems; // at most one
};

// The path of the file that this code was loaded from.
std::string LoadedFile();

} // namespace koro::kit
