# A project that takes the sources as a folder gets the library and nothing else: no tests, no tool, no test producers.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)

Run(${CMAKE_COMMAND} -G ${GENERATOR} -S ${CMAKE_CURRENT_LIST_DIR}/added -B ${WORK_DIR} -DCMAKE_C_COMPILER=${CC}
    -DCMAKE_CXX_COMPILER=${CXX} -DKORO_SOURCE_DIR=${SOURCE_DIR} -DPROGRAM=${SOURCE_DIR}/examples/first_program.c)
Run(${CMAKE_CTEST_COMMAND} --test-dir ${WORK_DIR} --show-only)
Expect("${output}" "Total Tests: 0")
