// Reading a producer: its whole tree through the library, into plain values. Any thread.
#pragma once

#include "tools/koro/camera_tree.h"

#include <cstdint>
#include <functional>
#include <string>

namespace koro::tool
{

// Time that one list may be asked for.
constexpr uint64_t updateTimeout_ms = 1000;

// Loads the producer at `path`, walks its tree and closes everything, leaves first. With `wanted`, the name of a camera,
// the walk ends as soon as that is certain to be found. `atStage` hears before each step what comes now: "load",
// "open", "list". Throws koro::Error when the producer cannot be loaded; what fails later is kept in the records.
ProducerRecord ReadProducer(
    const std::string& path, const std::string& wanted, const std::function<void(const char*)>& atStage);

} // namespace koro::tool
