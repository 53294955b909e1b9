// Reading a producer: its whole tree through the library, into plain values. Any thread.
#pragma once

#include "tools/koro/camera_tree.h"

#include <cstdint>
#include <functional>
#include <string>

namespace koro::tool
{

// Time that one list update may take.
constexpr uint64_t updateTimeout_ms = 1000;

// Loads the producer at `path`, walks its tree and closes everything, leaves first. `atStage` hears before each step
// what comes now: "load", "open", "list". Throws koro::Error when the producer cannot be loaded; what fails later
// is kept in the records. The library must be initialised.
ProducerRecord ReadProducer(const std::string& path, const std::function<void(const char*)>& atStage);

} // namespace koro::tool
