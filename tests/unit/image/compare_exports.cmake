# The header HEADER, the export map MAP and the symbols of LIBRARY have the same names, and the library needs no other
# one of this project.
file(READ ${HEADER} text)
string(REGEX MATCHALL "KIMG_ReturnCode[ \n]+KIMG_[A-Za-z0-9]+_[A-Za-z0-9]+\\(" declared "${text}")
list(TRANSFORM declared REPLACE "^KIMG_ReturnCode[ \n]+" "")
list(TRANSFORM declared REPLACE "\\(" "")
list(SORT declared)
list(LENGTH declared count)
if(count LESS 15 OR count GREATER 30)
    message(SEND_ERROR "The header declares ${count} functions")
endif()

file(STRINGS ${MAP} listed REGEX "^ *KIMG_")
list(TRANSFORM listed REPLACE "[ ;]" "")

execute_process(COMMAND ${NM} -D --defined-only ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCHALL "[^\n]+" symbols "${symbols}")
list(TRANSFORM symbols REPLACE "^.* " "")
list(SORT symbols)

foreach(names IN ITEMS listed symbols)
    if(NOT declared STREQUAL ${names})
        message(SEND_ERROR "declared: ${declared}\n${names}: ${${names}}")
    endif()
endforeach()

execute_process(COMMAND ${OBJDUMP} -p ${LIBRARY} OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
if(headers MATCHES "NEEDED +libzvr")
    message(SEND_ERROR "The library needs another one of this project")
endif()
if(NOT headers MATCHES "SONAME +libzvr_koro_image\\.so\\.1\n")
    message(SEND_ERROR "The library has another SONAME than libzvr_koro_image.so.1")
endif()
