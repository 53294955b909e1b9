# Target helpers: flags live on one interface target, every folder lists its own files by name.

find_package(Threads REQUIRED)

# A compiler cache is used if one is installed; a launcher that the user has set is kept.
find_program(KORO_CCACHE ccache)
if(KORO_CCACHE AND PROJECT_IS_TOP_LEVEL)
    foreach(language C CXX)
        if(NOT CMAKE_${language}_COMPILER_LAUNCHER)
            set(CMAKE_${language}_COMPILER_LAUNCHER ${KORO_CCACHE})
        endif()
    endforeach()
endif()

add_library(koro_options INTERFACE)
target_include_directories(koro_options INTERFACE
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src> $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>)
# A constructor's parameters have the names of the members that they initialise, so only what hides a local name is worth a
# warning. clang's -Wshadow excepts such constructors by itself.
set(shadowing -Wshadow)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT CMAKE_UNITY_BUILD) # see below
    set(shadowing -Wshadow=local)
endif()
target_compile_options(koro_options INTERFACE
    -Wall -Wextra -Wpedantic ${shadowing} -Wconversion -Wsign-conversion -Wformat=2
    $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor -Woverloaded-virtual>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    # g++ 12 takes text + std::string for overlapping memory when it optimises.
    target_compile_options(koro_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>)
endif()
if(KORO_DEVELOPER)
    target_compile_options(koro_options INTERFACE -Werror)
endif()
target_link_libraries(koro_options INTERFACE Threads::Threads)

if(KORO_SANITIZE)
    # Signed overflow and the like end the test; a report that only scrolls by would be missed.
    add_compile_options(-fsanitize=${KORO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${KORO_SANITIZE})
endif()
if(KORO_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()

# What CI builds joins several files into one, which takes less than half the time. Two names without linkage that meet in one
# compilation have to differ then, or one of the files is compiled by itself.
if(CMAKE_UNITY_BUILD)
    set(CMAKE_UNITY_BUILD_BATCH_SIZE 7 CACHE STRING "How many files are compiled as one; 0 joins all of a target")
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # Both would judge neighbours; each file by itself is judged by every other build.
        target_compile_options(koro_options INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-Wno-shadow -Wno-subobject-linkage>)
    endif()
endif()
function(koro_compile_by_itself)
    set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

# Hidden symbols and no unique ones: unique symbols would make unloading impossible.
function(koro_hide_symbols target)
    set_target_properties(${target} PROPERTIES
        C_VISIBILITY_PRESET hidden CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(${target} PRIVATE $<$<COMPILE_LANGUAGE:CXX>:-fno-gnu-unique>)
    endif()
endfunction()

function(koro_add_object_library target)
    add_library(${target} OBJECT)
    target_link_libraries(${target} PUBLIC koro_options)
    koro_hide_symbols(${target})
endfunction()

# koro_add_producer(target SOURCES a.cpp [DEFINITIONS X=1] [OUTPUT_NAME name]): a loadable producer, <name>.cti.
function(koro_add_producer target)
    cmake_parse_arguments(ARG "" "OUTPUT_NAME" "SOURCES;DEFINITIONS" ${ARGN})
    add_library(${target} MODULE ${ARG_SOURCES})
    target_link_libraries(${target} PRIVATE koro_options)
    target_compile_definitions(${target} PRIVATE ${ARG_DEFINITIONS})
    koro_hide_symbols(${target})
    if(NOT ARG_OUTPUT_NAME)
        set(ARG_OUTPUT_NAME ${target})
    endif()
    set_target_properties(${target} PROPERTIES PREFIX "" SUFFIX ".cti" OUTPUT_NAME ${ARG_OUTPUT_NAME}
        LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/producers)
endfunction()

# One target for each label builds the tests that bear it: koro_tests_<label>.
function(koro_label_tests name)
    foreach(label ${ARGN})
        if(NOT TARGET koro_tests_${label})
            add_custom_target(koro_tests_${label})
        endif()
        add_dependencies(koro_tests_${label} ${name})
    endforeach()
endfunction()

# For what gains nothing from optimisation but a third of the build's time, under sanitizers two thirds.
function(koro_build_quickly target)
    target_compile_options(${target} PRIVATE -O0)
endfunction()

# koro_add_test_program(name SOURCES ... LIBRARIES ... [LABELS ...] [PRODUCERS targets...]): one GoogleTest program, built
# with the tests of its labels; the producers are built before it.
function(koro_add_test_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES;LABELS;PRODUCERS" ${ARGN})
    find_package(GTest REQUIRED)
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE koro_options ${ARG_LIBRARIES} GTest::gmock GTest::gtest_main)
    koro_build_quickly(${name})
    if(KORO_SANITIZE MATCHES "undefined")
        # The checks belong into what is tested; in the test's own statements they cost a quarter of the build's time.
        target_compile_options(${name} PRIVATE -fno-sanitize=undefined)
    endif()
    if(ARG_PRODUCERS)
        add_dependencies(${name} ${ARG_PRODUCERS})
    endif()
    koro_label_tests(${name} ${ARG_LABELS})
endfunction()

# koro_run_test(name COMMAND program arguments... [LABELS ...] [ENVIRONMENT ...]): one CTest entry with a folder of its own;
# the folder of the producers is in the environment variable KORO_TEST_PRODUCERS.
function(koro_run_test name)
    cmake_parse_arguments(ARG "" "" "COMMAND;LABELS;ENVIRONMENT" ${ARGN})
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/${name}.run)
    file(MAKE_DIRECTORY ${folder})
    add_test(NAME ${name} COMMAND ${ARG_COMMAND} WORKING_DIRECTORY ${folder})
    set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABELS}" TIMEOUT 600
        ENVIRONMENT "KORO_TEST_PRODUCERS=${PROJECT_BINARY_DIR}/producers;${ARG_ENVIRONMENT}")
endfunction()

# koro_add_test(name SOURCES ... LIBRARIES ... [LABELS ...] [PRODUCERS targets...] [ENVIRONMENT ...]): one GoogleTest program
# and the CTest entry of this name that runs it.
function(koro_add_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES;LABELS;PRODUCERS;ENVIRONMENT" ${ARGN})
    koro_add_test_program(${name}
        SOURCES ${ARG_SOURCES} LIBRARIES ${ARG_LIBRARIES} LABELS ${ARG_LABELS} PRODUCERS ${ARG_PRODUCERS})
    koro_run_test(${name} COMMAND ${name} LABELS ${ARG_LABELS} ENVIRONMENT ${ARG_ENVIRONMENT})
endfunction()

# The longest ones, which CTest starts first: begun last, one of them would keep one processor busy and the other idle.
function(koro_start_early)
    set_tests_properties(${ARGN} PROPERTIES COST 100)
endfunction()

# A test of classes: links the object library and sees everything.
function(koro_add_unit_test name)
    koro_add_test(${name} LIBRARIES koro_objects koro_test_support ${ARGN})
endfunction()

# A test of the exports: sees include/ and the finished library alone.
function(koro_add_boundary_test name)
    koro_add_test(${name} LIBRARIES zvr_koro koro_test_support ${ARGN})
endfunction()
