# The library stands under its three names, the tool finds it by itself and sees the simulated cameras.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

file(READ_SYMLINK ${LIBDIR}/libzvr_koro.so development)
file(READ_SYMLINK ${LIBDIR}/libzvr_koro.so.1 runtime)
Expect(${development} "^libzvr_koro\\.so\\.1$")
Expect(${runtime} "^libzvr_koro\\.so\\.${VERSION}$")

foreach(file IN ITEMS include/koro/koro.h include/koro/koro.hpp include/koro/cpp/nodes.hpp include/koro/cpp/buffer_contents.hpp include/koro/cpp/files.hpp include/koro/cpp/firmware.hpp share/doc/zvr_koro/LICENSE share/doc/zvr_koro/abi.md)
    if(NOT EXISTS ${PREFIX}/${file})
        message(FATAL_ERROR "not installed: ${file}")
    endif()
endforeach()
foreach(kind IN ITEMS gev u3v camera iidc cl)
    if(NOT EXISTS ${LIBDIR}/zvr_koro/koro_simulator_${kind}.xml)
        message(FATAL_ERROR "not installed: koro_simulator_${kind}.xml, a description that simulated cameras name")
    endif()
endforeach()

Run(${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH GENICAM_GENTL64_PATH=${LIBDIR}/zvr_koro ${PREFIX}/bin/koro list)
Expect("${output}" "zvr_koro_simulator\\.cti")
