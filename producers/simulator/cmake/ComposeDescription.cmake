# Puts a camera's description together: the parts into the frame, byte order and bit numbers into the registers. Bit n of the
# parts counts from the least significant bit; in big-endian registers the schema counts from the other end. Comments are
# for docs/simulator.md and not for the cameras' users.
# Run by: cmake -DFRAME=... -DPARTS=a.xml,b.xml -DMODEL=... -DGUID=... -DORDER=BigEndian
# -DEVENTORDER=LittleEndian -DCHUNKTAIL=... -DOUTPUT=... -P
cmake_minimum_required(VERSION 3.25) # which leaves @...@ alone
string(REPLACE "," ";" files "${PARTS}")
set(parts "")
foreach(file IN LISTS files)
    file(READ ${file} part)
    string(REGEX REPLACE " *<!--[^>]*-->\n" "" part "${part}")
    string(APPEND parts "${part}")
endforeach()
string(REGEX REPLACE "\n$" "" parts "${parts}")
file(READ ${FRAME} text)
string(REPLACE "@PARTS@" "${parts}" text "${text}")
string(REPLACE "@PORT@" "${PORT}" text "${text}")
string(REPLACE "@MODEL@" "${MODEL}" text "${text}")
string(REPLACE "@GUID@" "${GUID}" text "${text}")
string(REPLACE "@ENDIANESS@" "${ORDER}" text "${text}")
string(REPLACE "@EVENTENDIANESS@" "${EVENTORDER}" text "${text}")
string(REPLACE "@CHUNKTAIL@" "${CHUNKTAIL}" text "${text}")
foreach(bit RANGE 31)
    set(number ${bit})
    if(ORDER STREQUAL "BigEndian")
        math(EXPR number "31 - ${bit}")
    endif()
    string(REPLACE "@BIT${bit}@" "${number}" text "${text}")
endforeach()
file(WRITE ${OUTPUT} "${text}")
