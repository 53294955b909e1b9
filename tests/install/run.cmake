# Run(command...): the command's output, without its last line's end; the script fails when the command does.
function(Run)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status
        OUTPUT_STRIP_TRAILING_WHITESPACE)
    if(NOT status EQUAL 0)
        message(FATAL_ERROR "failed: ${ARGN}\n${output}\n${errors}")
    endif()
    set(output "${output}" PARENT_SCOPE)
endfunction()

# Expect(text regular-expression)
function(Expect text expression)
    if(NOT text MATCHES "${expression}")
        message(FATAL_ERROR "'${text}' does not match '${expression}'")
    endif()
endfunction()

# A fresh folder for whatever the script makes.
if(DEFINED WORK_DIR)
    file(REMOVE_RECURSE ${WORK_DIR})
    file(MAKE_DIRECTORY ${WORK_DIR})
endif()
