# The API reference, which Doxygen generates from the public headers: the target `koro_reference`, and a test that
# builds it. A comment that does not match its declaration is an error.

find_package(Doxygen)
if(NOT DOXYGEN_FOUND)
    message(STATUS "Doxygen is not installed, so the API reference is left out")
    return()
endif()

set(KORO_REFERENCE_FOLDER ${PROJECT_BINARY_DIR}/reference)
string(CONCAT KORO_REFERENCE_INPUT "${PROJECT_SOURCE_DIR}/include/koro ${PROJECT_SOURCE_DIR}/image/include/koro "
    "${PROJECT_SOURCE_DIR}/cmake/doxygen/main.md")
configure_file(${CMAKE_CURRENT_LIST_DIR}/doxygen/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
file(MAKE_DIRECTORY ${KORO_REFERENCE_FOLDER})
add_custom_target(koro_reference COMMAND Doxygen::doxygen ${PROJECT_BINARY_DIR}/Doxyfile VERBATIM
    COMMENT "Writing the API reference into ${KORO_REFERENCE_FOLDER}/html")

if(KORO_DEVELOPER AND NOT KORO_SANITIZE)
    add_test(NAME api_reference COMMAND Doxygen::doxygen ${PROJECT_BINARY_DIR}/Doxyfile)
    set_tests_properties(api_reference PROPERTIES LABELS quick)
endif()
