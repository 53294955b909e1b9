/*
 * What is inside when the process ends: an exit handler that is older than the library runs after the library's own
 * destructors. It lets a call go on whose object was closed meanwhile; the call must find what it needs on its way out.
 */
#define _GNU_SOURCE /* RTLD_NEXT */
#include "check.h"
#include <koro/firmware_updater.h>
#include <koro/return_codes.h>

#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

static const char updateFile[] = "exit_test.guf";
static sem_t callIsInside;
static sem_t callMayGoOn;
static void* library;
static pthread_t thread;
static KORO_FirmwareUpdaterHandle updater;
static KORO_ReturnCode code = KORO_RETURN_CODE_SUCCESS;

/* The library's, too: it opens the update file here. */
FILE* fopen(const char* path, const char* mode)
{
    FILE* (*next)(const char*, const char*) = NULL;
    *(void**)&next = dlsym(RTLD_NEXT, "fopen");
    if (strcmp(path, updateFile) == 0 && strcmp(mode, "rb") == 0)
    {
        sem_post(&callIsInside);
        sem_wait(&callMayGoOn);
    }
    return next(path, mode);
}

static void* Find(const char* function)
{
    void* const found = dlsym(library, function);
    CHECK(found != NULL);
    return found;
}

static void Call(const char* function)
{
    KORO_ReturnCode (*called)(void) = NULL;
    *(void**)&called = Find(function);
    CHECK(called() == KORO_RETURN_CODE_SUCCESS);
}

static void ConstructUpdater(void)
{
    KORO_ReturnCode (*construct)(KORO_FirmwareUpdaterHandle*) = NULL;
    *(void**)&construct = Find("KORO_FirmwareUpdater_Construct");
    CHECK(construct(&updater) == KORO_RETURN_CODE_SUCCESS);
}

static void* Collect(void* unused)
{
    KORO_ReturnCode (*collect)(KORO_FirmwareUpdaterHandle, const char*, size_t) = NULL;
    *(void**)&collect = Find("KORO_FirmwareUpdater_CollectAllFirmwareUpdateInformation");
    code = collect(updater, updateFile, sizeof updateFile);
    return unused;
}

/* Not by exit, which is running. */
static void LetTheCallGo(void)
{
    sem_post(&callMayGoOn);
    if (pthread_join(thread, NULL) != 0 || code == KORO_RETURN_CODE_SUCCESS)
    {
        fprintf(stderr, "the call returned %d\n", (int)code);
        _exit(EXIT_FAILURE);
    }
}

int main(int count, char** arguments)
{
    CHECK(count == 2);
    FILE* const file = fopen(updateFile, "wb"); /* no update is in it: the call fails */
    CHECK(file != NULL && fclose(file) == 0);
    CHECK(sem_init(&callIsInside, 0, 0) == 0);
    CHECK(sem_init(&callMayGoOn, 0, 0) == 0);
    CHECK(atexit(LetTheCallGo) == 0);
    library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
    CHECK(library != NULL);

    Call("KORO_Library_Initialize");
    ConstructUpdater();
    CHECK(pthread_create(&thread, NULL, Collect, NULL) == 0);
    CHECK(sem_wait(&callIsInside) == 0);
    Call("KORO_Library_Close");
    return 0;
}
