#include "gentl/environment_inspector.h"

#include "capi/arguments.h"
#include "modules/producer_library.h"
#include <koro/environment_inspector.h>

#include <string>

using namespace koro::internal;

namespace
{

// A producer that is in use is accepted without a test, regardless of the path by which it was opened; any other one is
// loaded, started and ended again.
bool IsUsable(const std::string& ctiPath)
{
    const auto isOfThisFile = [&](const ProducerLibrary& library) {
        return library.Key() == ctiPath || StoredPathForm(library.CanonicalPath()) == ctiPath;
    };
    if (Table<ProducerLibrary>().AnyOf(isOfThisFile)) return true;

    const ProducerLibrary trial(ctiPath);
    return true;
}

} // namespace

KORO_ReturnCode KORO_EnvironmentInspector_UpdateCTIPaths()
{
    return ExecuteAndMapExceptions([] {
        EnvironmentInspector::Shared().UpdateCTIPaths(IsUsable);
        return success;
    });
}

KORO_ReturnCode KORO_EnvironmentInspector_GetNumCTIPaths(size_t* numCtiPaths)
{
    return ExecuteAndMapExceptions([&] {
        const auto paths = EnvironmentInspector::Shared().CTIPaths();
        return CopyScalarOut(paths.size(), numCtiPaths, "numCtiPaths");
    });
}

KORO_ReturnCode KORO_EnvironmentInspector_GetCTIPath(size_t index, char* ctiPath, size_t* ctiPathSize)
{
    return ExecuteAndMapExceptions([&] {
        const auto paths = EnvironmentInspector::Shared().CTIPaths();
        if (index >= paths.size()) return IndexOutOfRange();
        return CopyStringOut(paths[index], ctiPath, ctiPathSize, "ctiPath");
    });
}
