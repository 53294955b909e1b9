# Writes a header with the facts of each register of a port, under the name that the descriptions give it: address, length,
# distance of the elements of an array, whether TLParamsLocked locks it, and the range where that is constant. So C++
# repeats no fact of a description. The entries of a structure share its register.
# Run by: cmake -DPARTS=a.xml,b.xml -DPORT=Device -DNAMESPACE=registers -DOUTPUT=... -P
cmake_minimum_required(VERSION 3.25)
string(REPLACE "," ";" files "${PARTS}")

# The text of a node's element, empty if the node has none.
macro(get_element result element)
    set(${result} "")
    if(node MATCHES "<${element}>([^<]+)</${element}>")
        set(${result} "${CMAKE_MATCH_1}")
    endif()
endmacro()

# The range that a feature of the description gives its register.
macro(read_feature)
    get_element(register pValue)
    get_element(lock pIsLocked)
    if(lock STREQUAL "TLParamsLocked")
        set(locked_${register} true)
    endif()
    get_element(least Min)
    get_element(most Max)
    get_element(increment Inc)
    if(node MATCHES "^<Boolean ")
        set(least 0)
        set(most 1)
    elseif(node MATCHES "^<Enumeration ")
        read_entries()
    endif()
    if(increment STREQUAL "")
        set(increment 1)
    endif()
    if(NOT least STREQUAL "" AND NOT most STREQUAL "")
        set(range_${register} "${least}, ${most}, ${increment}")
    endif()
endmacro()

# Numbers with gaps, as of pixel formats, are no range.
macro(read_entries)
    string(REGEX MATCHALL "<Value>[0-9]+</Value>" values "${node}")
    list(LENGTH values count)
    math(EXPR most "${count} - 1")
    set(least 0)
    foreach(value IN LISTS values)
        string(REGEX REPLACE "[^0-9]" "" value "${value}")
        if(value GREATER most)
            set(least "")
        endif()
    endforeach()
endmacro()

# Adds one register, which other transports may have too, at the same place.
macro(add_register name place)
    if(NOT DEFINED place_${name})
        set(place_${name} "${place}")
        set(kind_${name} "${kind}")
        list(APPEND names ${name})
    elseif(NOT place_${name} STREQUAL "${place}")
        message(FATAL_ERROR "${name} is at ${place_${name}} and at ${place}")
    endif()
endmacro()

macro(read_register)
    get_element(address Address)
    get_element(length Length)
    if(length STREQUAL "") # it is a feature
        set(length 0)
    endif()
    set(distance ${length})
    if(node MATCHES "<pIndex Offset=\"([0-9]+)\"")
        set(distance ${CMAKE_MATCH_1})
    endif()
    string(REGEX MATCH "^<([A-Za-z]+) " kind "${node}")
    set(kind ${CMAKE_MATCH_1})
    set(entries "${node}")
    if(kind STREQUAL "StructReg")
        string(REGEX MATCHALL "<StructEntry Name=\"[A-Za-z0-9]+" entries "${node}")
    else()
        string(REGEX MATCH "^<[A-Za-z]+ Name=\"[A-Za-z0-9]+" entries "${node}")
    endif()
    list(TRANSFORM entries REPLACE ".*\"" "")
    foreach(name IN LISTS entries)
        add_register(${name} "${address}, ${length}, ${distance}")
    endforeach()
endmacro()

set(names "")
set(registerKinds "StructReg|(Int|Float|String|MaskedInt)Reg|Register")
set(opening "<(${registerKinds}|Integer|Float|Boolean|Enumeration|Command|[A-Za-z]*(Knife|Converter)|Category|Port) ")
foreach(file IN LISTS files)
    file(READ ${file} text)
    string(REGEX REPLACE "<!--[^>]*-->" "" text "${text}")
    string(REPLACE ";" "," text "${text}")
    string(REGEX REPLACE "${opening}" ";\\0" nodes "${text}")
    foreach(node IN LISTS nodes)
        if(node MATCHES "^<(Integer|Float|Boolean|Enumeration) " AND node MATCHES "<pValue>")
            read_feature()
        elseif(node MATCHES "^<(${registerKinds}) " AND node MATCHES "<pPort>${PORT}</pPort>"
                AND node MATCHES "<Address>")
            read_register()
        endif()
    endforeach()
endforeach()

set(lines "")
foreach(name IN LISTS names)
    set(facts "{${place_${name}}}, false")
    if(locked_${name})
        set(facts "{${place_${name}}}, true")
    endif()
    set(type FeatureRegister)
    if(DEFINED range_${name} AND kind_${name} STREQUAL "FloatReg")
        set(type RealRegister)
        set(facts "{${facts}}, ${range_${name}}")
    elseif(DEFINED range_${name} AND NOT range_${name} MATCHES "[.-]")
        set(type NumberRegister)
        set(facts "{${facts}}, ${range_${name}}")
    endif()
    string(APPEND lines "inline constexpr ${type} ${name}{${facts}};\n")
endforeach()

file(CONFIGURE OUTPUT ${OUTPUT} CONTENT "// Made of the descriptions.
#pragma once

#include \"producers/simulator/feature_register.h\"

namespace koro::simulator::${NAMESPACE}
{

@lines@
} // namespace koro::simulator::${NAMESPACE}
" @ONLY)
