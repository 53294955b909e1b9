# ExpectPicture(program [variable=value ...]): raw_to_ppm, as a stranger built it, converts a frame of 2 x 2 pixels.
function(ExpectPicture program)
    file(WRITE ${WORK_DIR}/frame.raw "abbc")
    Run(${CMAKE_COMMAND} -E env ${ARGN} ${program} ${WORK_DIR}/frame.raw BayerRG8 2 2)
    Expect("${output}" "^P6\n2 2\n255\nabcabcabcabc$")
endfunction()
