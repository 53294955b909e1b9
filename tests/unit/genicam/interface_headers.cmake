# Each header of the runtime compiles as the first include of a translation unit: as C++11 and as C++20, with and without a
# last part of the name spaces, and without their aliases. Headers that are added join by themselves.
set(include ${PROJECT_SOURCE_DIR}/genicam/include)
file(GLOB_RECURSE headers RELATIVE ${include} CONFIGURE_DEPENDS ${include}/*.h)
set(plain "")
set(unaliased "")
foreach(header IN LISTS headers)
    string(REGEX REPLACE "[/.]" "_" name ${header})
    file(CONFIGURE OUTPUT headers/${name}.cpp CONTENT "#include <@header@>\n" @ONLY)
    # A name space can only be opened where no alias took its name.
    file(CONFIGURE OUTPUT headers/${name}_unaliased.cpp @ONLY
        CONTENT "#include <@header@>\nnamespace GenICam\n{}\nnamespace GenApi\n{}\n")
    list(APPEND plain ${CMAKE_CURRENT_BINARY_DIR}/headers/${name}.cpp)
    list(APPEND unaliased ${CMAKE_CURRENT_BINARY_DIR}/headers/${name}_unaliased.cpp)
endforeach()

function(koro_add_genicam_header_check target standard)
    cmake_parse_arguments(ARG "" "" "SOURCES;DEFINITIONS" ${ARGN})
    add_library(${target} OBJECT ${ARG_SOURCES})
    set_target_properties(${target} PROPERTIES CXX_STANDARD ${standard} UNITY_BUILD OFF)
    target_include_directories(${target} PRIVATE ${include})
    target_compile_definitions(${target} PRIVATE ${ARG_DEFINITIONS})
    target_compile_options(${target} PRIVATE -O0 -g0 -Wall -Wextra -pedantic -Wshadow -Wconversion -Wsign-conversion
        -Wnon-virtual-dtor -Werror)
    koro_label_tests(${target} quick)
endfunction()
koro_add_genicam_header_check(genicam_headers_cpp11 11 SOURCES ${plain})
koro_add_genicam_header_check(genicam_headers_cpp20 20 SOURCES ${plain} DEFINITIONS GENICAM_COMPANY_SUFFIX=OTHER)
koro_add_genicam_header_check(genicam_headers_unaliased 11 SOURCES ${unaliased}
    DEFINITIONS GENICAM_SUPPRESS_NAMESPACE_ALIAS)

# Name spaces that are set before win over the versioned ones.
file(CONFIGURE OUTPUT headers/own_name_spaces.cpp @ONLY
    CONTENT "#include <GenICam.h>\nOwn::gcstring text;\nOwnApi::INode* node;\nstatic_assert(sizeof(GenICam::gcstring) == sizeof(text), \"\");\n")
koro_add_genicam_header_check(genicam_headers_own_name_spaces 11 SOURCES ${CMAKE_CURRENT_BINARY_DIR}/headers/own_name_spaces.cpp
    DEFINITIONS GENICAM_NAMESPACE_DEFINED GENICAM_NAMESPACE=Own GENAPI_NAMESPACE_DEFINED GENAPI_NAMESPACE=OwnApi)
