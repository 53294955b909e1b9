# The README's block of C must be the program, byte for byte.
file(READ ${README} readme)
file(READ ${PROGRAM} program)
string(FIND "${readme}" "```c\n${program}```\n" position)
if(position EQUAL -1)
    message(FATAL_ERROR "README.md does not hold the text of ${PROGRAM}")
endif()
