// FileSizeLimit: limits the size of files that this process and its children write, as on a full disk: the write fails
// with EFBIG.
//
// Owned by the test. Used by one thread.
#pragma once

#include <csignal>
#include <sys/resource.h>

namespace koro::test
{

class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes) : handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &before);
        const rlimit limit{bytes, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, handler);
    }

private:
    void (*handler)(int);
    rlimit before = {};
};

} // namespace koro::test
