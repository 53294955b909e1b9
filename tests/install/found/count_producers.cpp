// The C++ face from outside: finds the producers and counts them.
#include <koro/koro.hpp>

#include <cstdio>

int main()
{
    const auto library = koro::Library::Initialize();
    koro::EnvironmentInspector::Update();
    std::printf("%zu producer\n", koro::EnvironmentInspector::CTIPaths().size());
}
