/*
 * Updates the firmware of the first camera. The update runs on the calling thread and returns when it is done;
 * callbacks report its progress. The camera must not be open: the update opens it, and finds it again after a reset.
 */
#include "example.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef KORO_ReturnCode (*TextGetter)(KORO_FirmwareUpdateInformationHandle, char*, size_t*);

static void Print(const char* what, TextGetter get, KORO_FirmwareUpdateInformationHandle update)
{
    char text[1024];
    size_t textSize = sizeof text;
    Check(get(update, text, &textSize));
    printf("%s%s\n", what, text);
}

static void ShowStep(
    KORO_FirmwareUpdateStep step, uint32_t expectedDuration_ms, const char* description, size_t descriptionSize,
    void* context)
{
    (void)descriptionSize;
    (void)context;
    printf("step %d, about %u ms: %s\n", (int)step, (unsigned)expectedDuration_ms, description);
}

static void ShowProgress(KORO_FirmwareUpdateStep step, double percent, void* context)
{
    (void)step;
    (void)context;
    printf("%.0f %%\n", percent);
}

static KORO_FirmwareUpdateProgressObserverHandle MakeObserver(void)
{
    KORO_FirmwareUpdateProgressObserverHandle observer = NULL;
    KORO_FirmwareUpdateStepStartedCallbackHandle step = NULL;
    KORO_FirmwareUpdateStepProgressChangedCallbackHandle progress = NULL;
    Check(KORO_FirmwareUpdateProgressObserver_Construct(&observer));
    Check(KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepStartedCallback(observer, ShowStep, NULL, &step));
    Check(KORO_FirmwareUpdateProgressObserver_RegisterUpdateStepProgressChangedCallback(
        observer, ShowProgress, NULL, &progress));
    return observer;
}

/* The first update of the file that fits the camera. */
static KORO_FirmwareUpdateInformationHandle FindUpdate(
    KORO_FirmwareUpdaterHandle updater, const char* path, KORO_DeviceDescriptorHandle camera)
{
    size_t numUpdates = 0;
    KORO_FirmwareUpdateInformationHandle update = NULL;
    Check(KORO_FirmwareUpdater_CollectFirmwareUpdateInformation(updater, path, strlen(path) + 1, camera));
    Check(KORO_FirmwareUpdater_GetNumFirmwareUpdateInformation(updater, &numUpdates));
    if (numUpdates == 0)
    {
        Fail("No update of the file fits the camera.");
    }
    Check(KORO_FirmwareUpdater_GetFirmwareUpdateInformation(updater, 0, &update));
    return update;
}

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        fprintf(stderr, "usage: %s UPDATE-FILE\n", argv[0]);
        return EXIT_FAILURE;
    }
    Check(KORO_Library_Initialize());
    const Camera opened = OpenFirstInterface();
    KORO_DeviceDescriptorHandle camera = NULL;
    Check(KORO_Interface_GetDevice(opened.interface, 0, &camera));

    KORO_FirmwareUpdaterHandle updater = NULL;
    Check(KORO_FirmwareUpdater_Construct(&updater));
    KORO_FirmwareUpdateInformationHandle update = FindUpdate(updater, argv[1], camera);
    Print("", KORO_FirmwareUpdateInformation_GetDescription, update);
    Print("version ", KORO_FirmwareUpdateInformation_GetVersion, update);

    KORO_FirmwareUpdateProgressObserverHandle observer = MakeObserver();
    Check(KORO_FirmwareUpdater_UpdateDevice(updater, camera, update, observer));
    /* The camera may have disappeared from the list and returned: its descriptor would have to be fetched again. */
    printf("done\n");

    Check(KORO_FirmwareUpdateProgressObserver_Destruct(observer));
    Check(KORO_FirmwareUpdater_Destruct(updater));
    Check(KORO_Interface_Destruct(opened.interface));
    Check(KORO_System_Destruct(opened.system));
    Check(KORO_ProducerLibrary_Destruct(opened.producer));
    return KORO_Library_Close();
}
