// `_exit` and `_Exit` as everything in this process meets them: the tool exports them, so the loader binds the calls of
// the producers and their libraries here. Neither runs a handler, so there is no other place to notice such an end. The
// tool itself calls EndNow().
#include "tools/koro/accidents.h"

#include <cstdlib>
#include <unistd.h>

extern "C" {
[[gnu::visibility("default"), noreturn]] void _exit(int status)
{
    koro::tool::EndForOthers(status);
}

[[gnu::visibility("default"), noreturn]] void _Exit(int status) noexcept
{
    koro::tool::EndForOthers(status);
}
}
