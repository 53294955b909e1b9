// FileSizeLimit: no file that this process, or one that it starts, writes gets longer, as on a disk without room: the
// write fails with EFBIG.
//
// Owned by the test. One thread.
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
