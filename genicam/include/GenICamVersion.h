// GenICamVersion.h: the version of the interface that this runtime offers.
#pragma once

#define GENICAM_VERSION_MAJOR 3
#define GENICAM_VERSION_MINOR 4
#define GENICAM_VERSION_SUBMINOR 0
#define GENICAM_VERSION_BUILD 0

#define GENICAM_VERSION_MAJOR_STR "3"
#define GENICAM_VERSION_MINOR_STR "4"
#define GENICAM_VERSION_SUBMINOR_STR "0"
#define GENICAM_VERSION_BUILD_STR "0"
