# C++14 gets one error, which names what is needed.
file(WRITE ${WORK_DIR}/older.cpp "#include <koro/koro.hpp>\nint main() {}\n")
execute_process(COMMAND ${CXX} -std=c++14 -fsyntax-only -I${INCLUDE} ${WORK_DIR}/older.cpp
    ERROR_VARIABLE errors RESULT_VARIABLE status)
if(status EQUAL 0)
    message(FATAL_ERROR "the face compiles as C++14")
endif()
string(REGEX MATCHALL "error: [^\n]*" found "${errors}")
list(LENGTH found number)
if(NOT number EQUAL 1 OR NOT errors MATCHES "needs C\\+\\+17 or later")
    message(FATAL_ERROR "C++14 is not refused by one error that asks for C++17:\n${errors}")
endif()
execute_process(COMMAND ${CXX} -std=c++17 -fsyntax-only -I${INCLUDE} ${WORK_DIR}/older.cpp COMMAND_ERROR_IS_FATAL ANY)
