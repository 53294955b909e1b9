// Entry points of the library itself.
#define GENTL_PRODUCER
#include "producers/kit/last_error.h"
#include "producers/scripted/call.h"
#include "producers/scripted/lingering_thread.h"
#include "producers/scripted/variant.h"

#include <dlfcn.h>
#include <string>

using namespace GenTL;
using namespace scripted;

namespace
{

std::string PathOfThisFile()
{
    Dl_info info{};
    dladdr(reinterpret_cast<void*>(&PathOfThisFile), &info);
    return info.dli_fname ? info.dli_fname : "";
}

Info VersionNumber(std::uint32_t number)
{
    return variant.versionResult ? Failing(variant.versionResult) : UInt32(number);
}

// What the tree says, and what the file knows about itself.
Infos LibraryInfos(const State& state)
{
    const std::string path = PathOfThisFile();
    Infos infos = state.live.tree.info;
    infos.try_emplace(TL_INFO_NAME, Text(path.substr(path.rfind('/') + 1)));
    infos.try_emplace(TL_INFO_PATHNAME, Text(path));
    infos.try_emplace(TL_INFO_GENTL_VER_MAJOR, VersionNumber(variant.versionMajor));
    infos.try_emplace(TL_INFO_GENTL_VER_MINOR, VersionNumber(variant.versionMinor));
    return infos;
}

} // namespace

GC_ERROR GenTL::GCInitLib()
{
    return Call("GCInitLib", [](State& state, Lock&) {
        if (state.answers.strictInit && state.live.initCount > 0) return GC_ERR_RESOURCE_IN_USE;
        ++state.live.initCount;
        if (variant.leavesThreads) StartLingeringThread();
        return GC_ERR_SUCCESS;
    });
}

GC_ERROR GenTL::GCCloseLib()
{
    return Call("GCCloseLib", [](State& state, Lock&) {
        if (--state.live.initCount == 0) state.live.CloseAll();
        state.happened.notify_all();
        return GC_ERR_SUCCESS;
    });
}

GC_ERROR GenTL::GCGetInfo(TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return Call(
        "GCGetInfo",
        [&](State& state, Lock&) {
            return AnswerInfo(Choose(state, "GCGetInfo", LibraryInfos(state), iInfoCmd), piType, pBuffer, piSize);
        },
        iInfoCmd, Half{pBuffer});
}

GC_ERROR GenTL::TLGetInfo(TL_HANDLE hSystem, TL_INFO_CMD iInfoCmd, INFO_DATATYPE* piType, void* pBuffer, size_t* piSize)
{
    return CallOn(
        Kind::System, "TLGetInfo", hSystem,
        [&](State& state, Module&) {
            return AnswerInfo(Choose(state, "TLGetInfo", LibraryInfos(state), iInfoCmd), piType, pBuffer, piSize);
        },
        iInfoCmd, Half{pBuffer});
}

GC_ERROR GenTL::GCGetLastError(GC_ERROR* piErrorCode, char* sErrorText, size_t* piSize)
{
    return Call(
        "GCGetLastError",
        [&](State& state, Lock&) -> GC_ERROR {
            if (!piErrorCode || !piSize) return GC_ERR_INVALID_PARAMETER;
            const LastError answer = state.answers.lastError.value_or(LastError());
            Info text = Text(answer.text.value_or(koro::kit::LastErrorText()));
            if (!answer.terminated) text.bytes.pop_back();
            text.claimedSize = answer.claimedSize;
            if (answer.writesCode) *piErrorCode = answer.code.value_or(koro::kit::LastErrorCode());
            return AnswerInfo(text, nullptr, sErrorText, piSize);
        },
        Half{sErrorText});
}
