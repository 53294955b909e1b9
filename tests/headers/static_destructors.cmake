# Looks for static objects in LIBRARY whose destructors run at its end. There is one, which frees empty tables.
#
# Each such object registers its destructor, at load or when a function first comes to it. The four lines before name
# the destructor.
execute_process(
    COMMAND ${OBJDUMP} --disassemble --demangle --no-show-raw-insn --section .text ${LIBRARY}
    COMMAND grep -E -B 4 "(call|jmp|bl|b)[[:space:]].*<__cxa_atexit"
    OUTPUT_VARIABLE registrations COMMAND_ERROR_IS_FATAL ANY)

string(REGEX MATCHALL "<__cxa_atexit" count "${registrations}")
list(LENGTH count count)
if(NOT count EQUAL 1 OR NOT registrations MATCHES "UnloadGuard::~UnloadGuard")
    message(FATAL_ERROR "${count} static destructors instead of the one of UnloadGuard:\n${registrations}")
endif()
