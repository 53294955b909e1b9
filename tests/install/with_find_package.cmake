# A stranger's CMake project, in C and in C++.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/picture.cmake)

Run(${CMAKE_COMMAND} -G ${GENERATOR} -S ${CMAKE_CURRENT_LIST_DIR}/found -B ${WORK_DIR} -DCMAKE_PREFIX_PATH=${PREFIX}
    -DCMAKE_C_COMPILER=${CC} -DCMAKE_CXX_COMPILER=${CXX} -DPROGRAM=${SOURCE_DIR}/examples/first_program.c -DIMAGE_PROGRAM=${SOURCE_DIR}/examples/raw_to_ppm.c -DWANTED=${VERSION})
Run(${CMAKE_COMMAND} --build ${WORK_DIR})
foreach(program IN ITEMS in_c in_cpp)
    Run(${CMAKE_COMMAND} -E env GENICAM_GENTL64_PATH=${LIBDIR}/zvr_koro ${WORK_DIR}/${program})
    Expect("${output}" "^[1-9][0-9]* x [1-9][0-9]* pixels$|^1 producer$")
endforeach()
Run(${CMAKE_COMMAND} -E env --unset=LD_LIBRARY_PATH ${WORK_DIR}/image_in_cpp)
Expect("${output}" "^1 to 8, mean 4.5\nThe samples have more than 16 bits")
ExpectPicture(${WORK_DIR}/image_in_c)

# A later major version is none of ours.
execute_process(COMMAND ${CMAKE_COMMAND} -G ${GENERATOR} -S ${CMAKE_CURRENT_LIST_DIR}/found -B ${WORK_DIR}/later
    -DCMAKE_PREFIX_PATH=${PREFIX} -DCMAKE_C_COMPILER=${CC} -DCMAKE_CXX_COMPILER=${CXX} -DWANTED=2.0
    OUTPUT_QUIET ERROR_VARIABLE errors RESULT_VARIABLE status)
Expect("${errors}" "compatible with requested version")
