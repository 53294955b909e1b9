# Provides the GenICam runtime as one target, `genicam`, to which the other targets link.
#
# KORO_GENICAM=bundled builds genicam/. KORO_GENICAM=reference uses the SDK tree below GENICAM_ROOT instead: its headers, and
# its libraries GenApi, GCBase and FirmwareUpdate, or those that GENICAM_LIBRARIES names.
add_library(genicam INTERFACE)

if(KORO_GENICAM STREQUAL "bundled")
    add_subdirectory(${PROJECT_SOURCE_DIR}/genicam)
    target_link_libraries(genicam INTERFACE koro_genicam)
elseif(KORO_GENICAM STREQUAL "reference")
    set(GENICAM_ROOT "" CACHE PATH "SDK tree of the reference runtime, for KORO_GENICAM=reference")
    set(GENICAM_LIBRARIES "" CACHE STRING "Libraries of that tree; empty: GenApi and GCBase are searched")
    if(NOT GENICAM_ROOT)
        message(FATAL_ERROR "KORO_GENICAM=reference needs GENICAM_ROOT")
    endif()

    find_path(GENICAM_INCLUDE_DIR GenICam.h REQUIRED NO_DEFAULT_PATH
        PATHS ${GENICAM_ROOT} PATH_SUFFIXES include library/CPP/include)
    set(libraries ${GENICAM_LIBRARIES})
    if(NOT libraries)
        # Their names carry compiler and version: libGenApi_gcc_v3_4.so.
        file(GLOB_RECURSE libraries LIST_DIRECTORIES false
            ${GENICAM_ROOT}/libGenApi*.so ${GENICAM_ROOT}/libGCBase*.so ${GENICAM_ROOT}/libFirmwareUpdate*.so)
    endif()
    if(NOT libraries)
        message(FATAL_ERROR "No library GenApi or GCBase below GENICAM_ROOT (${GENICAM_ROOT}); GENICAM_LIBRARIES names others")
    endif()
    target_include_directories(genicam SYSTEM INTERFACE ${GENICAM_INCLUDE_DIR})
    target_link_libraries(genicam INTERFACE ${libraries})
else()
    message(FATAL_ERROR "KORO_GENICAM is '${KORO_GENICAM}'; it is 'bundled' or 'reference'")
endif()
