// A producer that takes the process with it when it is loaded; for those who look at it from another process.
#include <stdexcept>

namespace
{

[[noreturn]] int Throw()
{
    throw std::runtime_error("thrown while loading");
}

[[maybe_unused]] const int thrown = Throw();

} // namespace
