#include "tests/support/environment_variable.h"

#include <cstdlib>

namespace koro::test
{

EnvironmentVariable::EnvironmentVariable(const std::string& variable, const std::optional<std::string>& value)
    : name(variable)
{
    if (const char* current = std::getenv(name.c_str()))
    {
        before = current;
    }
    Set(value);
}

EnvironmentVariable::~EnvironmentVariable()
{
    Set(before);
}

void EnvironmentVariable::Set(const std::optional<std::string>& value) const
{
    if (value)
    {
        setenv(name.c_str(), value->c_str(), 1);
    }
    else
    {
        unsetenv(name.c_str());
    }
}

} // namespace koro::test
