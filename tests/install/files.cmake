# The library stands under its three names, the tool finds it by itself and sees the simulated cameras.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

file(READ_SYMLINK ${LIBDIR}/libzvr_koro.so development)
file(READ_SYMLINK ${LIBDIR}/libzvr_koro.so.1 runtime)
Expect(${development} "^libzvr_koro\\.so\\.1$")
Expect(${runtime} "^libzvr_koro\\.so\\.${VERSION}$")

foreach(file IN ITEMS share/man/man1/koro.1 share/man/man1/koro-grab.1 share/bash-completion/completions/koro
    include/koro/koro.h include/koro/koro.hpp share/doc/zvr_koro/LICENSE share/doc/zvr_koro/docs/abi.md)
    if(NOT EXISTS ${PREFIX}/${file})
        message(FATAL_ERROR "not installed: ${file}")
    endif()
endforeach()
file(GLOB_RECURSE sources RELATIVE ${SOURCE_DIR} ${SOURCE_DIR}/include/koro/*.h ${SOURCE_DIR}/include/koro/*.hpp)
foreach(file IN LISTS sources)
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
