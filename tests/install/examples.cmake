# The installed examples build by themselves, with what pkg-config answers; one of each language runs.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/picture.cmake)

set(ENV{PKG_CONFIG_PATH} ${LIBDIR}/pkgconfig)
Run(pkg-config --cflags --libs zvr_koro)
separate_arguments(flags UNIX_COMMAND "${output}")
set(examples ${PREFIX}/share/doc/zvr_koro/examples)

Run(${CC} -std=c11 -c ${examples}/example.c -o ${WORK_DIR}/example.o ${flags})
file(GLOB programs RELATIVE ${examples} ${examples}/*.c)
list(REMOVE_ITEM programs example.c raw_to_ppm.c)
foreach(program IN LISTS programs)
    Run(${CC} -std=c11 -Wall -Werror ${examples}/${program} ${WORK_DIR}/example.o -o ${WORK_DIR}/${program}.out
        ${flags} -pthread)
endforeach()
file(GLOB programs RELATIVE ${examples} ${examples}/*.cpp)
foreach(program IN LISTS programs)
    Run(${CXX} -std=c++17 -Wall -Werror ${examples}/${program} -o ${WORK_DIR}/${program}.out ${flags})
endforeach()

# One is for the image library.
Run(pkg-config --cflags --libs zvr_koro_image)
separate_arguments(flags UNIX_COMMAND "${output}")
Run(${CC} -std=c11 -Wall -Werror ${examples}/raw_to_ppm.c -o ${WORK_DIR}/raw_to_ppm.out ${flags})
ExpectPicture(${WORK_DIR}/raw_to_ppm.out LD_LIBRARY_PATH=${LIBDIR})

foreach(program IN ITEMS triggers.c triggers.cpp)
    Run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${LIBDIR} GENICAM_GENTL64_PATH=${LIBDIR}/zvr_koro
        ${WORK_DIR}/${program}.out)
    Expect("${output}" "frame of trigger 3$")
endforeach()
