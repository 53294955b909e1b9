// InThread: runs a function on another thread and waits for its end; returns its result or throws its exception.
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
