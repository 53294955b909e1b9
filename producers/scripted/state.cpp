#define GENTL_PRODUCER
#include "producers/scripted/state.h"

#include "producers/scripted/variant.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace scripted
{

using namespace GenTL;
using Lock = std::lock_guard<std::mutex>;

State& State::Get()
{
    static State state;
    return state;
}

void State::Reset()
{
    const Answers gone = Forget(); // ends without the lock, which threads of what was kept may wait for
    if (variant.behave) variant.behave(*this);
}

Answers State::Forget()
{
    const Lock lock(mutex);
    live.CloseAll();
    live.tree = MakeTree();
    live.initCount = 0;
    Answers gone = std::exchange(answers, Answers());
    if (variant.initResult) answers.plans["GCInitLib"].always = variant.initResult;
    if (variant.closeResult) answers.plans["GCCloseLib"].always = variant.closeResult;
    journal.clear();
    keepJournal = true;
    happened.notify_all();
    return gone;
}

void State::Answer(const std::string& function, GC_ERROR result)
{
    const Lock lock(mutex);
    answers.plans[function].always = result;
}

void State::AnswerAtCall(const std::string& function, std::uint64_t call, GC_ERROR result)
{
    const Lock lock(mutex);
    auto& plan = answers.plans[function];
    plan.atCall[plan.calls + call] = result;
}

void State::AnswerAsUsual(const std::string& function)
{
    const Lock lock(mutex);
    answers.plans.erase(function);
}

void State::SetLastError(const LastError& answer)
{
    const Lock lock(mutex);
    answers.lastError = answer;
}

void State::SetStrictInit(bool strict)
{
    const Lock lock(mutex);
    answers.strictInit = strict;
}

void State::SetInfo(
    const std::string& function, std::int32_t number, const Info& answer, std::optional<std::uint32_t> index)
{
    const Lock lock(mutex);
    answers.infos[{function, number, index}] = answer;
}

void State::SetCount(const std::string& function, std::uint32_t count)
{
    const Lock lock(mutex);
    answers.counts[function] = count;
}

void State::SetChanged(const std::string& function, std::optional<bool8_t> changed)
{
    const Lock lock(mutex);
    answers.changed[function] = changed;
}

void State::OnEntry(const std::string& function, std::function<void()> hook)
{
    const Lock lock(mutex);
    answers.hooks[function] = std::move(hook);
}

void State::Intercept(const std::string& function, Interceptor interceptor)
{
    const Lock lock(mutex);
    answers.interceptors[function].push_back(std::move(interceptor));
}

void State::Keep(std::shared_ptr<void> object)
{
    const Lock lock(mutex);
    answers.kept.push_back(std::move(object));
}

void State::Edit(const std::function<void(Tree&)>& edit)
{
    const Lock lock(mutex);
    edit(live.tree);
}

bool State::Deliver(const std::string& streamID, const Frame& frame)
{
    const Lock lock(mutex);
    Module* stream = live.FindByID(streamID);
    if (!stream || !stream->acquiring || stream->framesToCome == 0) return false;
    if (stream->input.empty())
    {
        ++stream->underruns;
        return false;
    }
    const auto buffer = stream->input.front();
    stream->input.pop_front();
    buffer->frame = frame;
    buffer->filled = std::min(frame.bytes.size(), buffer->size);
    std::memcpy(buffer->base, frame.bytes.data(), buffer->filled);
    buffer->newData = true;
    buffer->frameID = stream->started++;
    if (stream->framesToCome != GENTL_INFINITE) --stream->framesToCome;
    HandOut(*stream, buffer);
    return true;
}

void State::HandOut(Module& stream, const std::shared_ptr<Buffer>& buffer)
{
    buffer->place = Place::Output;
    const auto event = stream.events.find(EVENT_NEW_BUFFER);
    if (event == stream.events.end()) return;
    const EVENT_NEW_BUFFER_DATA block{buffer->handle, buffer->userPointer};
    event->second->queue.push_back({std::string(reinterpret_cast<const char*>(&block), sizeof block), buffer});
    ++event->second->fired;
    happened.notify_all();
}

bool State::Fire(const std::string& moduleID, EVENT_TYPE type, const std::string& block)
{
    const Lock lock(mutex);
    Module* module = live.FindByID(moduleID);
    if (!module || !module->events.contains(type)) return false;
    Event& event = *module->events[type];
    event.queue.push_back({block, nullptr});
    ++event.fired;
    happened.notify_all();
    return true;
}

void* State::HandleOf(const std::string& moduleID) const
{
    const Lock lock(mutex);
    const Module* const module = live.FindByID(moduleID);
    return module ? module->handle : nullptr;
}

void State::AwaitWaiters(std::size_t count)
{
    std::unique_lock lock(mutex);
    happened.wait(lock, [&] { return waiters >= count; });
}

std::vector<std::string> State::Journal() const
{
    const Lock lock(mutex);
    return journal;
}

void State::ClearJournal()
{
    const Lock lock(mutex);
    journal.clear();
}

void State::KeepJournal(bool keep)
{
    const Lock lock(mutex);
    keepJournal = keep;
}

std::vector<std::string> State::Open() const
{
    const Lock lock(mutex);
    return live.OpenNames();
}

std::int64_t State::InitCount() const
{
    const Lock lock(mutex);
    return live.initCount;
}

void State::Record(const char* function, std::initializer_list<std::string> arguments)
{
    if (!keepJournal) return;
    std::string line = std::string(function) + "(";
    for (const std::string& argument : arguments)
    {
        line += (line.back() == '(' ? "" : ", ") + argument;
    }
    journal.push_back(line + ")");
}

} // namespace scripted

extern "C" GC_API scripted::Script* KoroScript()
{
    return &scripted::State::Get();
}
