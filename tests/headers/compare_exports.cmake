# Compares the names of DECLARED, of MAP and of the symbols that LIBRARY exports.
file(STRINGS ${DECLARED} declared)

file(STRINGS ${MAP} listed REGEX "^ *KORO_")
list(TRANSFORM listed REPLACE "[ ;]" "")

execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" symbols "${symbols}")
list(TRANSFORM symbols REPLACE "^.* " "")

function(expect_same what names)
    set(missing ${declared})
    list(REMOVE_ITEM missing ${names})
    set(superfluous ${names})
    list(REMOVE_ITEM superfluous ${declared})
    if(missing OR superfluous)
        message(SEND_ERROR "${what}: missing '${missing}', superfluous '${superfluous}'")
    endif()
endfunction()
expect_same("Names of the export map" "${listed}")
expect_same("Symbols of the library" "${symbols}")
