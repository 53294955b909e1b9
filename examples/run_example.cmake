# Runs PROGRAM with ARGUMENTS and compares what it prints with the regular expression EXPECT.
execute_process(COMMAND ${PROGRAM} ${ARGUMENTS} OUTPUT_VARIABLE output RESULT_VARIABLE status)
message("${output}")
if(NOT status EQUAL 0)
    message(FATAL_ERROR "${PROGRAM} ended with ${status}")
endif()
if(NOT output MATCHES "${EXPECT}")
    message(FATAL_ERROR "the output does not match: ${EXPECT}")
endif()
