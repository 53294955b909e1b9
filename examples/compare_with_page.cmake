# The block of C on PAGE must be PROGRAM, byte for byte.
file(READ ${PAGE} page)
file(READ ${PROGRAM} program)
string(FIND "${page}" "```c\n${program}```\n" position)
if(position EQUAL -1)
    message(FATAL_ERROR "${PAGE} does not hold the text of ${PROGRAM}")
endif()
