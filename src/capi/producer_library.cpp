#include "modules/producer_library.h"

#include "capi/arguments.h"
#include "modules/system.h"
#include "modules/system_descriptor.h"
#include <koro/producer_library.h>

#include <memory>
#include <string>

using namespace koro::internal;

KORO_ReturnCode KORO_ProducerLibrary_Construct(
    const char* ctiPath, size_t ctiPathSize, KORO_ProducerLibraryHandle* producerLibraryHandle)
{
    return ExecuteAndMapExceptions([&] {
        if (!ctiPath) return InvalidPointer(KORO_ARG(ctiPath));
        if (!producerLibraryHandle) return InvalidPointer(KORO_ARG(producerLibraryHandle));

        // The size is trusted as given: if it does not include the terminator, the last character is lost.
        const std::string path(ctiPath, ctiPathSize - 1);
        *producerLibraryHandle = Table<ProducerLibrary>().Add(std::make_shared<ProducerLibrary>(path));
        return success;
    });
}

KORO_ReturnCode KORO_ProducerLibrary_Destruct(KORO_ProducerLibraryHandle producerLibraryHandle)
{
    return Destruct(KORO_ARG(producerLibraryHandle));
}

KORO_ReturnCode KORO_ProducerLibrary_GetKey(
    KORO_ProducerLibraryHandle producerLibraryHandle, char* key, size_t* keySize)
{
    return GetString(KORO_ARG(producerLibraryHandle), KORO_ARG(key), keySize, &ProducerLibrary::Key);
}

KORO_ReturnCode KORO_ProducerLibrary_GetSystem(
    KORO_ProducerLibraryHandle producerLibraryHandle, KORO_SystemDescriptorHandle* systemDescriptorHandle)
{
    return GetHandle(KORO_ARG(producerLibraryHandle), KORO_ARG(systemDescriptorHandle), [](const auto& library) {
        return Table<SystemDescriptor>().Add(library->GetSystem(), library);
    });
}
