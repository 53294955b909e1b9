# The switch to another runtime: installs genicam/ as if it were an SDK tree and builds the library against that tree alone.
#
#     cmake -D SOURCE=<checkout> -D WORK=<folder> -D EXPAT=<library> -D ZLIB=<library> -D LAUNCHER=<or empty> -P sdk_tree_test.cmake
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${ARGN}\n${output}")
    endif()
endfunction()

set(common -G Ninja -D CMAKE_BUILD_TYPE=Debug -D CMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} -D CMAKE_C_COMPILER_LAUNCHER=${LAUNCHER})
file(REMOVE_RECURSE ${WORK})
# Without the last part of the name spaces, as in the tree that this stands for.
run(${CMAKE_COMMAND} -S ${SOURCE}/genicam -B ${WORK}/sdk ${common} -D KORO_GENICAM_SUFFIX=)
run(${CMAKE_COMMAND} --build ${WORK}/sdk)
run(${CMAKE_COMMAND} --install ${WORK}/sdk --component genicam-sdk --prefix ${WORK}/tree)

run(${CMAKE_COMMAND} -S ${SOURCE} -B ${WORK}/library ${common} -D CMAKE_EXPORT_COMPILE_COMMANDS=ON
    -D KORO_DEVELOPER=OFF -D KORO_GENICAM=reference -D GENICAM_ROOT=${WORK}/tree
    "-DGENICAM_LIBRARIES=${WORK}/tree/lib/libkoro_genicam.a;${EXPAT};${ZLIB}")
run(${CMAKE_COMMAND} --build ${WORK}/library --target zvr_koro)

file(READ ${WORK}/library/compile_commands.json commands)
if(commands MATCHES "${SOURCE}/genicam")
    message(FATAL_ERROR "The library was built with a path into genicam/")
endif()
if(NOT commands MATCHES "${WORK}/tree/include")
    message(FATAL_ERROR "The library was built without the headers of the tree")
endif()
