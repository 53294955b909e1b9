# A stranger's C programs, built only by the compiler with what pkg-config answers.
include(${CMAKE_CURRENT_LIST_DIR}/run.cmake)
include(${CMAKE_CURRENT_LIST_DIR}/picture.cmake)

set(ENV{PKG_CONFIG_PATH} ${LIBDIR}/pkgconfig)
Run(pkg-config --modversion zvr_koro)
Expect(${output} "^${VERSION}$")
Run(pkg-config --variable=producerdir zvr_koro)
set(producers ${output})
Run(pkg-config --cflags --libs zvr_koro)
separate_arguments(flags UNIX_COMMAND "${output}")

Run(${CC} -std=c11 -pedantic -Werror ${SOURCE_DIR}/examples/first_program.c -o ${WORK_DIR}/program ${flags})
Run(${CMAKE_COMMAND} -E env LD_LIBRARY_PATH=${LIBDIR} GENICAM_GENTL64_PATH=${producers} ${WORK_DIR}/program)
Expect("${output}" "^[1-9][0-9]* x [1-9][0-9]* pixels$")

# The image library without the other one.
Run(pkg-config --modversion zvr_koro_image)
Expect(${output} "^${VERSION}$")
Run(pkg-config --cflags --libs zvr_koro_image)
separate_arguments(flags UNIX_COMMAND "${output}")
Run(${CC} -std=c11 -pedantic -Werror ${SOURCE_DIR}/examples/raw_to_ppm.c -o ${WORK_DIR}/raw_to_ppm ${flags})
ExpectPicture(${WORK_DIR}/raw_to_ppm LD_LIBRARY_PATH=${LIBDIR})
