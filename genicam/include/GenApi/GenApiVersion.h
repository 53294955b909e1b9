// GenApiVersion.h: the version of GenApi, which is that of the whole runtime.
#pragma once

#include <GenICamVersion.h>

#define GENAPI_VERSION_MAJOR GENICAM_VERSION_MAJOR
#define GENAPI_VERSION_MINOR GENICAM_VERSION_MINOR
#define GENAPI_VERSION_SUBMINOR GENICAM_VERSION_SUBMINOR
#define GENAPI_VERSION_BUILD GENICAM_VERSION_BUILD
