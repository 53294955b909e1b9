/*
 * The search for producers: the .cti files in the directories of the environment variable GENICAM_GENTL64_PATH.
 *
 * There is one list per process. It is empty before the first update and outlives KORO_Library_Close. Any thread may
 * call these functions. An update loads each new candidate once to find out whether it can be used; readers wait
 * meanwhile.
 */
#ifndef KORO_ENVIRONMENT_INSPECTOR_H
#define KORO_ENVIRONMENT_INSPECTOR_H

#include <koro/return_codes.h>
#include <koro/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Searches the directories of GENICAM_GENTL64_PATH, which are separated by ":" or ";". Files that cannot be used are
 * left out silently.
 * @return KORO_RETURN_CODE_NOT_FOUND when the variable is not set; the list is not changed then
 */
KORO_API KORO_ReturnCode KORO_EnvironmentInspector_UpdateCTIPaths(void);

/**
 * Returns the number of producers that the last update found.
 * @param[out] numCtiPaths number of paths
 */
KORO_API KORO_ReturnCode KORO_EnvironmentInspector_GetNumCTIPaths(size_t* numCtiPaths);

/**
 * Returns the canonical path of one producer, for KORO_ProducerLibrary_Construct.
 * @param[in]  index                0 to the number of paths minus 1
 * @param[out] ctiPath, ctiPathSize the path
 * @return KORO_RETURN_CODE_OUT_OF_RANGE for an index beyond the list; always before the first update
 */
KORO_API KORO_ReturnCode KORO_EnvironmentInspector_GetCTIPath(size_t index, char* ctiPath, size_t* ctiPathSize);

#ifdef __cplusplus
}
#endif

#endif
