// A producer whose loading never ends.
#include <unistd.h>

namespace
{

struct Hang
{
    Hang()
    {
        for (;;)
            pause();
    }
};

const Hang hang;

} // namespace
