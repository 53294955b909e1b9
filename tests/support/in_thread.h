// InThread: runs a body on another thread and waits for its end; gives what it returns or throws what it throws.
#pragma once

#include <future>

namespace koro::test
{

template <class Body>
auto InThread(const Body& body)
{
    return std::async(std::launch::async, body).get();
}

} // namespace koro::test
