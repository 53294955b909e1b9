# Compares the names of DECLARED with the symbols that LIBRARY exports. Those of RELEASED must be among them: a program
# that was built against a release goes on working.
file(STRINGS ${DECLARED} declared)
file(STRINGS ${RELEASED} released REGEX "^KORO_")

execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" symbols "${symbols}")
list(TRANSFORM symbols REPLACE "^.* " "")

function(expect_none what names)
    if(names)
        message(SEND_ERROR "${what}: ${names}")
    endif()
endfunction()
set(not_exported ${declared})
list(REMOVE_ITEM not_exported ${symbols})
expect_none("Declared, but not exported" "${not_exported}")
set(not_declared ${symbols})
list(REMOVE_ITEM not_declared ${declared})
expect_none("Exported, but not declared" "${not_declared}")
list(REMOVE_ITEM released ${symbols})
expect_none("Released before, but not exported any more" "${released}")
