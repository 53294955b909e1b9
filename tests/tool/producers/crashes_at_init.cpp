// A producer that loads and then ends its process by a signal, where the probing of candidates has to survive it.
#include "gentl/api/gentl.h"

#include <csignal>

extern "C" __attribute__((visibility("default"))) GenTL::GC_ERROR GCInitLib()
{
    // The default handling, even if a sanitizer has installed its own: the process must end by the signal.
    std::signal(SIGSEGV, SIG_DFL);
    std::raise(SIGSEGV);
    return GenTL::GC_ERR_ERROR;
}
