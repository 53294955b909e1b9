// EnvironmentVariable: sets or removes one variable of the process and restores it when the object is destroyed.
//
// Owned by the test; destroy nested objects in reverse order. Not thread-safe, like the environment itself.
#pragma once

#include <optional>
#include <string>

namespace koro::test
{

class EnvironmentVariable
{
public:
    // An empty optional removes the variable.
    EnvironmentVariable(const std::string& name, const std::optional<std::string>& value);
    ~EnvironmentVariable();
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

    void Set(const std::optional<std::string>& value) const;

private:
    std::string name;
    std::optional<std::string> before;
};

} // namespace koro::test
