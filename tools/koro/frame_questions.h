// FrameQuestions: the questions about frames that the producer of a stream has answered so far.
//
// Producers need not know every answer. One that has answered a question before and refuses it now says that something
// is wrong with the frame. The error code counts only for what every producer has to answer, since many producers
// report a wrong one. One thread at a time.
#pragma once

#include "tools/koro/tool_error.h"
#include <koro/koro.hpp>

#include <cstdint>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace koro::tool
{

// The frame is not whole, regardless of what is made of it.
class BrokenFrame : public ToolError
{
public:
    using ToolError::ToolError;
};

struct FrameQuestion
{
    int32_t command;   // of the frame, or of the part
    uint32_t part = 0; // counted from 1; 0 for the whole frame
    bool operator<(const FrameQuestion& other) const
    {
        return std::pair(command, part) < std::pair(other.command, other.part);
    }
};

class FrameQuestions
{
public:
    // Runs `read`. Throws BrokenFrame when the producer refuses what it has answered before, and koro::Error when it
    // never has.
    template <typename Read>
    auto Ask(FrameQuestion question, const Read& read) -> decltype(read())
    {
        try
        {
            auto answer = read();
            answered.insert(question);
            return answer;
        }
        catch (const Error& error)
        {
            if (answered.count(question) != 0) throw BrokenFrame(error.what());
            throw;
        }
    }

    // As Ask; empty for what the producer has never answered.
    template <typename Read>
    auto AskIfKnown(FrameQuestion question, const Read& read) -> std::optional<decltype(read())>
    {
        try
        {
            return Ask(question, read);
        }
        catch (const Error&)
        {
            return std::nullopt;
        }
    }

    // As AskIfKnown, for what every producer has to answer: empty only where it says that it cannot.
    template <typename Read>
    auto AskRequired(FrameQuestion question, const Read& read) -> std::optional<decltype(read())>
    {
        try
        {
            return Ask(question, read);
        }
        catch (const Error& error)
        {
            if (SaysThatItCannot(error)) return std::nullopt;
            throw BrokenFrame(error.what());
        }
    }

private:
    // The return code is the same for all refused questions; the library's text has the producer's.
    static bool SaysThatItCannot(const Error& error)
    {
        const std::string_view text = error.what();
        const auto has = [&](std::string_view code) { return text.find(code) != text.npos; };
        return has("| Error-Code: -1003 (GC_ERR_NOT_IMPLEMENTED) |") ||
               has("| Error-Code: -1014 (GC_ERR_NOT_AVAILABLE) |");
    }

    std::set<FrameQuestion> answered;
};

} // namespace koro::tool
