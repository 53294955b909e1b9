// State: the one instance behind all entry points of a scripted producer; the other side of Script.
//
// Made at load, gone at unload. One mutex guards everything; a wait inside EventGetData gives it up.
#pragma once

#include "producers/scripted/answers.h"
#include "producers/scripted/live.h"
#include "producers/scripted/script.h"

#include <condition_variable>
#include <initializer_list>
#include <mutex>
#include <string>
#include <vector>

namespace scripted
{

class State final : public Script
{
public:
    static State& Get();

    State() { Reset(); }
    // What is kept may have threads that use the rest.
    ~State() { answers = Answers(); }

    void Reset() override;
    void Answer(const std::string& function, GenTL::GC_ERROR result) override;
    void AnswerAtCall(const std::string& function, std::uint64_t call, GenTL::GC_ERROR result) override;
    void AnswerAsUsual(const std::string& function) override;
    void SetLastError(const LastError& answer) override;
    void SetStrictInit(bool strict) override;
    void SetInfo(
        const std::string& function, std::int32_t number, const Info& answer,
        std::optional<std::uint32_t> index) override;
    void SetCount(const std::string& function, std::uint32_t count) override;
    void SetChanged(const std::string& function, std::optional<GenTL::bool8_t> changed) override;
    void OnEntry(const std::string& function, std::function<void()> hook) override;
    void Intercept(const std::string& function, Interceptor interceptor) override;
    void Keep(std::shared_ptr<void> object) override;
    void Edit(const std::function<void(Tree&)>& edit) override;
    bool Deliver(const std::string& streamID, const Frame& frame) override;
    bool Fire(const std::string& moduleID, GenTL::EVENT_TYPE type, const std::string& block) override;
    void* HandleOf(const std::string& moduleID) const override;
    void AwaitWaiters(std::size_t count) override;
    std::vector<std::string> Journal() const override;
    void ClearJournal() override;
    void KeepJournal(bool keep) override;
    std::vector<std::string> Open() const override;
    std::int64_t InitCount() const override;

    // For the entry points; they hold `mutex` and notify `happened` of everything that a waiter may wait for.
    Live live;
    Answers answers;
    std::size_t waiters = 0;
    std::condition_variable happened;
    mutable std::mutex mutex;

    void Record(const char* function, std::initializer_list<std::string> arguments);
    // Puts the buffer into the output queue, with an entry if the new-buffer event is registered.
    void HandOut(Module& stream, const std::shared_ptr<Buffer>& buffer);

private:
    // Brings back the producer that no test has spoken to; gives the answers that it had.
    Answers Forget();

    bool keepJournal = true;
    std::vector<std::string> journal;
};

} // namespace scripted
