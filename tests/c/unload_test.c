/* What a living thread's last error means for unloading: the library stays mapped until the thread has ended. */
#include "check.h"
#include <koro/return_codes.h>
#include <koro/types.h>

#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>

static const char* libraryPath;
static sem_t threadHasFailed;
static sem_t threadMayEnd;

static void* Load(void)
{
    void* const library = dlopen(libraryPath, RTLD_NOW | RTLD_LOCAL);
    CHECK(library != NULL);
    return library;
}

static KORO_ReturnCode Call(void* library, const char* function)
{
    KORO_ReturnCode (*called)(void) = NULL;
    *(void**)&called = dlsym(library, function);
    CHECK(called != NULL);
    return called();
}

static int IsMapped(void)
{
    void* const library = dlopen(libraryPath, RTLD_NOW | RTLD_NOLOAD);
    if (library) dlclose(library);
    return library != NULL;
}

static void UnloadsWhenNoThreadHasALastError(void)
{
    void* const library = Load();
    CHECK(Call(library, "KORO_Library_Initialize") == KORO_RETURN_CODE_SUCCESS);
    CHECK(Call(library, "KORO_Library_Close") == KORO_RETURN_CODE_SUCCESS);
    CHECK(dlclose(library) == 0);
    CHECK(!IsMapped());
}

static void* FailAndLiveOn(void* library)
{
    KORO_ReturnCode (*destruct)(KORO_SystemHandle) = NULL;
    *(void**)&destruct = dlsym(library, "KORO_System_Destruct");
    CHECK(destruct != NULL);
    CHECK(destruct(NULL) == KORO_RETURN_CODE_NOT_INITIALIZED);
    CHECK(sem_post(&threadHasFailed) == 0);
    CHECK(sem_wait(&threadMayEnd) == 0);
    return NULL;
}

static void StaysMappedUntilTheThreadEnds(void)
{
    void* const library = Load();
    pthread_t thread;
    CHECK(pthread_create(&thread, NULL, FailAndLiveOn, library) == 0);
    CHECK(sem_wait(&threadHasFailed) == 0);

    CHECK(dlclose(library) == 0);
    CHECK(IsMapped());

    /* The record's destructor runs here; in unmapped code it would crash. */
    CHECK(sem_post(&threadMayEnd) == 0);
    CHECK(pthread_join(thread, NULL) == 0);

    CHECK(dlclose(Load()) == 0);
    CHECK(!IsMapped());
}

int main(int count, char** arguments)
{
    CHECK(count == 2);
    libraryPath = arguments[1];
    CHECK(sem_init(&threadHasFailed, 0, 0) == 0);
    CHECK(sem_init(&threadMayEnd, 0, 0) == 0);
    UnloadsWhenNoThreadHasALastError();
    StaysMappedUntilTheThreadEnds();
    return 0;
}
