# The switch to another runtime: installs genicam/ as if it were an SDK tree and builds the library against that tree alone.
#
#     cmake -D SOURCE=<checkout> -D WORK=<folder> -D EXPAT=<library> -D ZLIB=<library> -D PCRE2=<library>
#         -D LAUNCHER=<or empty> -D NINJA=<program> -D NM=<program> -P sdk_tree_test.cmake
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${ARGN}\n${output}")
    endif()
endfunction()

# Configures the library, which has to fail with a text.
function(expect_refusal text)
    execute_process(COMMAND ${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/refused ${common} -D KORO_DEVELOPER=OFF ${ARGN}
        RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    string(REGEX REPLACE "[ \n]+" " " output "${output}")
    string(FIND "${output}" "${text}" found)
    if(result EQUAL 0 OR found EQUAL -1)
        message(FATAL_ERROR "Expected '${text}', got:\n${output}")
    endif()
    file(REMOVE_RECURSE ${WORK}/refused)
endfunction()

# Files are joined since this is about paths and names, and takes a third of the time so.
set(common -G Ninja -D CMAKE_UNITY_BUILD=ON -D CMAKE_BUILD_TYPE=Debug -D CMAKE_CXX_FLAGS_DEBUG= -D CMAKE_C_FLAGS_DEBUG=
    -D CMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} -D CMAKE_C_COMPILER_LAUNCHER=${LAUNCHER})
file(REMOVE_RECURSE ${WORK})
# Without the last part of the name spaces, as in the tree that this stands for.
run(${CMAKE_COMMAND} -S ${SOURCE}/genicam -B ${WORK}/sdk ${common} -D KORO_GENICAM_SUFFIX=)
run(${CMAKE_COMMAND} --build ${WORK}/sdk)
run(${CMAKE_COMMAND} --install ${WORK}/sdk --component genicam-sdk --prefix ${WORK}/tree)

expect_refusal("KORO_GENICAM is 'other'; it is 'bundled' or 'reference'" -D KORO_GENICAM=other)
expect_refusal("KORO_GENICAM=reference needs GENICAM_ROOT" -D KORO_GENICAM=reference)
expect_refusal("Could not find GENICAM_INCLUDE_DIR" -D KORO_GENICAM=reference -D GENICAM_ROOT=${WORK}/sdk)
expect_refusal("No library GenApi or GCBase below GENICAM_ROOT (${WORK}/tree)"
    -D KORO_GENICAM=reference -D GENICAM_ROOT=${WORK}/tree)

run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/library ${common} -D CMAKE_EXPORT_COMPILE_COMMANDS=ON
    -D KORO_DEVELOPER=OFF -D KORO_GENICAM=reference -D GENICAM_ROOT=${WORK}/tree
    "-DGENICAM_LIBRARIES=${WORK}/tree/lib/libkoro_genicam.a\\;${EXPAT}\\;${ZLIB}\\;${PCRE2}")
run(${CMAKE_COMMAND} --build ${WORK}/library --target zvr_koro)

# What was asked for: no path into genicam/ but that of the checkout itself, the parent of both.
file(READ ${WORK}/library/compile_commands.json commands)
if(commands MATCHES "${SOURCE}/genicam")
    message(FATAL_ERROR "The library was built with a path into genicam/")
endif()

# What was opened: headers of the tree alone.
execute_process(COMMAND ${NINJA} -t deps WORKING_DIRECTORY ${WORK}/library OUTPUT_VARIABLE opened COMMAND_ERROR_IS_FATAL ANY)
if(opened MATCHES "genicam/include/[^\n]*")
    message(FATAL_ERROR "The library opened ${CMAKE_MATCH_0}")
endif()
if(NOT opened MATCHES "tree/include/GenApi/INodeMap.h" OR NOT opened MATCHES "tree/include/Base/GCException.h")
    message(FATAL_ERROR "The library was built without the headers of the tree")
endif()

# What was linked: the runtime of the tree, whose name spaces end with the version, and nothing of it leaves the library.
execute_process(COMMAND ${NM} -C ${WORK}/library/src/capi/libzvr_koro.so OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
if(NOT symbols MATCHES "GenApi_3_4::CNodeMapFactory::CreateNodeMap" OR symbols MATCHES "GenApi_3_4_")
    message(FATAL_ERROR "The library was not linked with the runtime of the tree")
endif()
execute_process(COMMAND ${NM} -DC --defined-only ${WORK}/library/src/capi/libzvr_koro.so OUTPUT_VARIABLE exported COMMAND_ERROR_IS_FATAL ANY)
if(exported MATCHES "(GenApi|GenICam)_3_4[^\n]*")
    message(FATAL_ERROR "The library exports ${CMAKE_MATCH_0}")
endif()
