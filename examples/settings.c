/*
 * Stores the settings of the camera in a file and writes them back. A load that fails has written all values that it
 * could; the C++ program of the same name tries again and reports the lines that still fail.
 */
#include "example.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

int main(int argc, char** argv)
{
    if (argc != 2)
    {
        fprintf(stderr, "usage: %s SETTINGS-FILE\n", argv[0]);
        return EXIT_FAILURE;
    }
    Check(KORO_Library_Initialize());
    Camera camera = OpenFirstCamera();
    const int64_t width = GetInteger(camera.features, "Width");
    Check(KORO_NodeMap_StoreToFile(camera.features, argv[1], strlen(argv[1]) + 1));
    SetInteger(camera.features, "Width", width / 2);
    printf("width %lld", (long long)GetInteger(camera.features, "Width"));
    Check(KORO_NodeMap_LoadFromFile(camera.features, argv[1], strlen(argv[1]) + 1));
    printf(", loaded %lld\n", (long long)GetInteger(camera.features, "Width"));
    CloseCamera(&camera);
    return KORO_Library_Close();
}
