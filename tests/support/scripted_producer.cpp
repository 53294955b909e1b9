#include "tests/support/scripted_producer.h"

#include "tests/support/elf_file.h"

#include <cstdlib>
#include <dlfcn.h>
#include <stdexcept>

namespace koro::test
{

std::string BuiltProducer(const std::string& variant)
{
    const char* folder = std::getenv("KORO_TEST_PRODUCERS");
    if (!folder) throw std::runtime_error("KORO_TEST_PRODUCERS is not set: run the test by ctest");
    return std::string(folder) + "/" + variant + ".cti";
}

bool IsMapped(const std::string& path)
{
    void* const loaded = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (loaded) dlclose(loaded);
    return loaded != nullptr;
}

ScriptedProducer::ScriptedProducer(const std::string& variant, std::initializer_list<std::string> lacking)
    : path(folder.MakeCopy(BuiltProducer(variant), variant + ".cti"))
{
    for (const std::string& function : lacking)
        RemoveExport(path, function);
    library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) throw std::runtime_error(dlerror());
    const auto getScript = reinterpret_cast<scripted::GetScript>(dlsym(library, scripted::getScriptName));
    if (!getScript) throw std::runtime_error(path + " has no script");
    script = getScript();
}

ScriptedProducer::~ScriptedProducer()
{
    Unload();
}

bool ScriptedProducer::IsLoadedByOthers()
{
    Unload();
    return IsMapped(path);
}

void ScriptedProducer::Unload()
{
    if (library) dlclose(library);
    library = nullptr;
    script = nullptr;
}

} // namespace koro::test
